# The project's commands. Each installs what is missing (Debian 12 or 13, as root) and can be run again in seconds.
.DEFAULT_GOAL := help
.PHONY: help setup configure build run test package quick coverage mutants fuzz stress bench check clean

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

run: build ## install the driver into a Wine spooler, ask for its capabilities, show its document sheet, print a page
	@tools/run.sh

test: configure ## build the module plain and with traps for undefined behaviour, try the package, run all tests on both
	@echo "== building the module, the host program and the tests"
	@cmake --build --preset release -j $(JOBS) --target veltests veltests_checked
	@tools/package-test.sh
	@tools/test.sh

package: configure ## build/VelUI-<version>-x64.zip: module, host program, documents, licences, selftest (docs/package.md)
	@cmake --build --preset release -j $(JOBS) --target VelUI velhost veltests
	@tools/package.py

quick: configure ## FOLDER=state: the plain build and the tests of one folder, for the change at hand
	@[ -n "$(FOLDER)" ] || { echo "which tests? make quick FOLDER=state (a folder of tests/)" >&2; exit 1; }
	@cmake --build --preset release -j $(JOBS) --target veltests
	@tools/test.sh --only plain --folder "$(FOLDER)"

coverage: configure ## which lines and branches of the module the tests run; at least 98 % and 90 %
	@tools/setup.sh coverage
	@tools/coverage.sh

mutants: setup ## MUTANTS=100 SEED=7 FOLDER=state: faults in the product's code, one at a time; which of them no test notices
	@tools/mutants.py --count $(or $(MUTANTS),100) $(if $(SEED),--seed $(SEED)) $(if $(FOLDER),--folder $(FOLDER)) \
	    $(if $(AGAIN),--again) $(if $(REACH),--measure)

fuzz: configure ## the fuzz tests at length (hours); a failing case is kept in build/release/fuzz.replay
	@cmake --build --preset release -j $(JOBS) --target veltests
	@cd $(BUILD) && VELUI_FUZZ_LONG=1 ../../tools/wine.sh --session ../../tools/wine.sh veltests.exe "[fuzz]"

stress: configure ## 60 seconds of contention over the store's files
	@cmake --build --preset release -j $(JOBS) --target veltests
	@cd $(BUILD) && VELUI_STRESS_SECONDS=60 ../../tools/wine.sh --session ../../tools/wine.sh veltests.exe "[contention]"

bench: configure ## measure against the floor (docs/performance.md), all on one processor; draws the figures
	@tools/setup.sh bench
	@cmake --build --preset release -j $(JOBS) --target velbench VelUI
	@cd $(BUILD) && taskset -c $$(($$(nproc) - 1)) ../../tools/wine.sh --session ../../tools/wine.sh velbench.exe $(BENCH)
	@tools/plot-bench.py $(BUILD)/velbench.json $(BUILD)/velbench.svg

check: ## format, static analysis, drift
	@tools/setup.sh check
	@$(MAKE) --no-print-directory configure
	@tools/check.sh

clean: ## remove build/ (the cached log4cpp archive stays)
	@[ ! -d build/wine ] || tools/wine.sh --stop
	@rm -rf build
