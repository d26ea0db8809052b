// Brings log4cpp, and with it the C++ run-time's streams, into a module that otherwise does nothing: what loading them
// costs by itself.

#include <log4cpp/PropertyConfigurator.hh>

/// Never called; exported, so that the linker keeps what it needs.
extern "C" __declspec(dllexport) void UseLibraries(const char* pszConfigFile)
{
    log4cpp::PropertyConfigurator::configure(pszConfigFile);
}
