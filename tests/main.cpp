// The test program's main. By itself it is Catch2's. With --worker it runs the cases whose names it reads, one a line,
// from its standard input, and says after each how it ended: so tools/testrun.py spreads the cases over a handful of
// processes and knows at any moment which one a process is in.
#include <catch2/catch_session.hpp>

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

namespace
{

/// The name as a test specification that means this case and no other.
std::string Escaped(const std::string& strName)
{
    std::string strSpec;
    for (const char c : strName)
    {
        if (std::strchr("\\,[]\"*~", c) != nullptr)
        {
            strSpec += '\\';
        }
        strSpec += c;
    }
    return strSpec;
}

/// Runs cases until the input ends.
int Work(Catch::Session& session)
{
    std::printf("\x01ready\n");
    std::string strName;
    while (std::getline(std::cin, strName))
    {
        Catch::ConfigData config;
        config.testsOrTags = {Escaped(strName)};
        session.useConfigData(config);
        const int iResult = session.run();
        std::cout << std::flush;
        // A line of its own, whatever the case wrote.
        std::printf("\n\x01%d\n", iResult);
        std::fflush(stdout);
    }
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    // A fault must end the process, never open a dialog.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    Catch::Session session;
    if (argc == 2 && std::strcmp(argv[1], "--worker") == 0)
    {
        return Work(session);
    }
    return session.run(argc, argv);
}
