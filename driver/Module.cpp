#include "driver/Module.h"

#include "diag/LogSite.h"
#include "driver/LogConfigFile.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID /*lpvReserved*/)
{
    g_hModule = hinstDLL;
    switch (fdwReason)
    {
    case DLL_PROCESS_ATTACH:
    {
        const std::string strConfigFile = GetLogConfigFile();
        StartLogging(strConfigFile.c_str());
        // Required: no predicate in front. No trace scope is open here, so the line reaches no log.
        LogFatal("Log4cpp config file : %s", strConfigFile.c_str());
        break;
    }
    case DLL_PROCESS_DETACH:
        StopLogging();
        break;
    default:
        break;
    }
    return 1;
}
