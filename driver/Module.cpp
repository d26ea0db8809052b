#include "driver/Module.h"

#include "diag/LogSite.h"
#include "driver/LogConfigFile.h"

HMODULE g_hModule = nullptr;

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

int SubLoadString(UINT uiId, std::wstring& strText)
{
    TRACE_FUNCTION("SubLoadString");
    wchar_t szText[100];
    if (LoadStringW(g_hModule, uiId, szText, static_cast<int>(std::size(szText))) == 0)
    {
        return 0;
    }
    strText = szText;
    return 1;
}
