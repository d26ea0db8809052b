# The project's commands. Each installs what is missing (Debian 12, as root) and can be run again in seconds.
.DEFAULT_GOAL := help
.PHONY: help setup configure build run test coverage fuzz stress bench check clean

BUILD := build/release
JOBS := $(shell nproc)

help: ## show these commands
	@grep -hE '^[a-z]+:.*##' $(MAKEFILE_LIST) | sed -E 's/^([a-z]+):.*## /  make \1\t/' | expand -t 18

setup:
	@tools/setup.sh

configure: setup
	@if [ ! -f $(BUILD)/build.ninja ]; then echo "== configuring $(BUILD)"; cmake --preset release > $(BUILD).log || { cat $(BUILD).log; exit 1; }; fi

build: configure ## build/release/VelUI.dll and velhost.exe
	@echo "== building the module and its host program"
	@cmake --build --preset release -j $(JOBS) --target VelUI velhost
	@ls -l $(BUILD)/VelUI.dll $(BUILD)/velhost.exe

run: build ## install the driver into a Wine spooler, ask for its capabilities, show its document sheet
	@tools/run.sh

test: configure ## build everything twice, plain and with traps for undefined behaviour, and run all tests of both
	@echo "== building the module, the host program and the tests"
	@cmake --build --preset release -j $(JOBS)
	@tools/test.sh
	@echo "== building the same with traps for undefined behaviour, checks of the C++ library and guarded stacks"
	@if [ ! -f build/checked/build.ninja ]; then cmake --preset checked > build/checked.log || { cat build/checked.log; exit 1; }; fi
	@cmake --build --preset checked -j $(JOBS)
	@VELUI_BUILD=checked tools/test.sh

coverage: configure ## which lines and branches of the module the tests run; at least 98 % and 90 %
	@tools/setup.sh coverage
	@tools/coverage.sh

fuzz: configure ## the fuzz tests at length (hours); a failing case is kept in build/release/fuzz.replay
	@cmake --build --preset release -j $(JOBS) --target veltests
	@cd $(BUILD) && VELUI_FUZZ_LONG=1 ../../tools/wine.sh --session ../../tools/wine.sh veltests.exe "[fuzz]"

stress: configure ## 60 seconds of contention over the store's files
	@cmake --build --preset release -j $(JOBS) --target veltests
	@cd $(BUILD) && VELUI_STRESS_SECONDS=60 ../../tools/wine.sh --session ../../tools/wine.sh veltests.exe "[contention]"

bench: configure ## measure against the floor (docs/performance.md), all on one processor
	@cmake --build --preset release -j $(JOBS) --target velbench VelUI
	@cd $(BUILD) && taskset -c $$(($$(nproc) - 1)) ../../tools/wine.sh --session ../../tools/wine.sh velbench.exe $(BENCH)

check: ## format, static analysis, drift
	@tools/setup.sh check
	@$(MAKE) --no-print-directory configure
	@tools/check.sh

clean: ## remove build/ (the cached log4cpp archive stays)
	@[ ! -d build/wine ] || tools/wine.sh --stop
	@rm -rf build
