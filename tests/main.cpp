// Catch2's main: slow to compile, so alone in its file.
#define CATCH_CONFIG_RUNNER
#include <catch2/catch.hpp>

#include <windows.h>

#include <cstdio>

int main(int argc, char* argv[])
{
    // A fault must end the process, never open a dialog.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    return Catch::Session().run(argc, argv);
}
