// A process that has nothing but kernel32, advapi32 and msvcrt before it loads the module, so that tests see what the
// module brings along. Usage:
//   barehost MODULE VIEW RESULTS ACTION ...
// VIEW is the key below HKEY_CURRENT_USER that takes the place of HKEY_LOCAL_MACHINE. The actions are done one by one,
// and each leaves a line in the file RESULTS:
//   load, unload      the module; whether it could be done
//   loads=N           N times load, a capability and unload; whether each could be done
//   size              DC_SIZE, as the module answers it
//   convert           a record conversion (CDM_CONVERT); its result
//   default           the default record (CDM_DRIVER_DEFAULT); its result
//   sheet             a document sheet's INIT and DESTROY; the result of INIT and the number of pages
//   modules           the full paths of all libraries in the process, in lower case, a bar between them
//   state             the free thread-local and fiber-local indexes and the next handle
//   memory            bytes in use of the process's heap and of the C run-time's
//   user=NAME         makes Windows name another user
//   also=FILE         loads another library; whether it could be done
//   release=NAME      gives one reference to a library back; whether it is gone with it
//   output=FILE       leads the standard output into a file; whether it could be done
//   context=FILE      activates the manifest's activation context; whether it could be done
//   atexit            asks for DC_SIZE again when the process ends; the answer becomes the exit code

#include "settings/DriverDevmode.h"
#include "support/module/PrinterInterface.h"
#include "tests/common/Handles.h"
#include "tests/common/HeapUse.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <tlhelp32.h>
#include <vector>

namespace
{

const wchar_t* s_pszModule = nullptr;
HMODULE s_hModule = nullptr;

/// An export of the module's, by the type of its declaration.
template <typename Function>
Function* Entry(const char* pszName)
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(s_hModule, pszName)));
}

bool Load()
{
    s_hModule = LoadLibraryW(s_pszModule);
    return s_hModule != nullptr;
}

bool Unload()
{
    return FreeLibrary(s_hModule) && GetModuleHandleW(s_pszModule) == nullptr;
}

DWORD Size()
{
    return Entry<decltype(DrvDeviceCapabilities)>("DrvDeviceCapabilities")(nullptr, nullptr, DC_SIZE, nullptr, nullptr);
}

bool LoadOften(int iTimes)
{
    bool bGood = true;
    for (int i = 0; i < iTimes; ++i)
    {
        bGood = Load() && Size() == kDevmodeSize && Unload() && bGood;
    }
    return bGood;
}

/// A record that declares its sizes and is 0 otherwise.
stuDrvDevmode Record()
{
    stuDrvDevmode record = {};
    record.stuDevmode.dmSize = kDevmodeSize;
    record.stuDevmode.dmDriverExtra = kDriverExtra;
    return record;
}

BOOL Convert(DWORD dwMode)
{
    stuDrvDevmode in = Record();
    stuDrvDevmode out = Record();
    LONG cbOut = sizeof(out);
    wchar_t szPrinter[] = L"VelPrinter";
    return Entry<decltype(DrvConvertDevMode)>("DrvConvertDevMode")(szPrinter, &in.stuDevmode, &out.stuDevmode, &cbOut,
                                                                   dwMode);
}

/// The sheet library's part: counts the pages that it is offered.
LONG_PTR CALLBACK TakePage(HANDLE hPages, UINT uiFunction, LPARAM lParam, LPARAM)
{
    if (uiFunction != CPSFUNC_ADD_HPROPSHEETPAGE)
    {
        return 0;
    }
    ++*static_cast<int*>(hPages);
    return lParam;
}

std::string OpenSheet()
{
    stuDrvDevmode in = Record();
    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof(header);
    header.fMode = DM_IN_BUFFER | DM_IN_PROMPT;
    header.pdmIn = &in.stuDevmode;
    int iPages = 0;
    PROPSHEETUI_INFO info = {};
    info.cbSize = sizeof(info);
    info.Version = 0x0100;
    info.Flags = PSUIINFO_UNICODE;
    info.Reason = PROPSHEETUI_REASON_INIT;
    info.hComPropSheet = &iPages;
    info.pfnComPropSheet = &TakePage;
    info.lParamInit = reinterpret_cast<LPARAM>(&header);
    const auto pfnSheets = Entry<decltype(DrvDocumentPropertySheets)>("DrvDocumentPropertySheets");
    const LONG lResult = pfnSheets(&info, reinterpret_cast<LPARAM>(&header));
    info.Reason = PROPSHEETUI_REASON_DESTROY;
    pfnSheets(&info, 1);
    return std::to_string(lResult) + " " + std::to_string(iPages);
}

std::string Modules()
{
    std::string strModules;
    const HANDLE hSnapshot = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, 0);
    MODULEENTRY32 entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL bMore = Module32First(hSnapshot, &entry); bMore; bMore = Module32Next(hSnapshot, &entry))
    {
        for (const wchar_t* p = entry.szExePath; *p != L'\0'; ++p)
        {
            strModules += static_cast<char>(*p >= L'A' && *p <= L'Z' ? *p + (L'a' - L'A') : *p);
        }
        strModules += '|';
    }
    CloseHandle(hSnapshot);
    return strModules;
}

/// How many indexes can be taken, which are then given back.
template <typename Take, typename Give>
size_t FreeIndexes(Take take, Give give)
{
    std::vector<DWORD> taken;
    for (DWORD dw = take(); dw != TLS_OUT_OF_INDEXES && taken.size() < 5000; dw = take())
    {
        taken.push_back(dw);
    }
    for (const DWORD dw : taken)
    {
        give(dw);
    }
    return taken.size();
}

std::string State()
{
    return std::to_string(FreeIndexes(&TlsAlloc, &TlsFree)) + " " +
           std::to_string(FreeIndexes([] { return FlsAlloc(nullptr); }, &FlsFree)) + " " + std::to_string(NextHandle());
}

std::string Memory()
{
    const HANDLE hProcess = GetProcessHeap();
    const HANDLE hRuntime = reinterpret_cast<HANDLE>(_get_heap_handle());
    return std::to_string(HeapInUse(hProcess) + (hRuntime == hProcess ? 0 : HeapInUse(hRuntime)));
}

bool Activate(const wchar_t* pszManifest)
{
    ACTCTXW context = {};
    context.cbSize = sizeof(context);
    context.lpSource = pszManifest;
    const HANDLE hContext = CreateActCtxW(&context);
    ULONG_PTR ulCookie = 0;
    return hContext != INVALID_HANDLE_VALUE && ActivateActCtx(hContext, &ulCookie);
}

bool Release(const wchar_t* pszName)
{
    return FreeLibrary(GetModuleHandleW(pszName)) && GetModuleHandleW(pszName) == nullptr;
}

void AskAtEnd()
{
    _exit(static_cast<int>(Size()));
}

std::string Told(bool bDone)
{
    return bDone ? "done" : "failed";
}

/// What each action does with the word behind its equals sign, and what it leaves in the results.
const std::map<std::wstring, std::function<std::string(const wchar_t*)>> kActions = {
    {L"load", [](const wchar_t*) { return Told(Load()); }},
    {L"unload", [](const wchar_t*) { return Told(Unload()); }},
    {L"loads", [](const wchar_t* pszTimes) { return Told(LoadOften(_wtoi(pszTimes))); }},
    {L"size", [](const wchar_t*) { return std::to_string(Size()); }},
    {L"convert", [](const wchar_t*) { return std::to_string(Convert(CDM_CONVERT)); }},
    {L"default", [](const wchar_t*) { return std::to_string(Convert(CDM_DRIVER_DEFAULT)); }},
    {L"sheet", [](const wchar_t*) { return OpenSheet(); }},
    {L"modules", [](const wchar_t*) { return Modules(); }},
    {L"state", [](const wchar_t*) { return State(); }},
    {L"memory", [](const wchar_t*) { return Memory(); }},
    {L"user", [](const wchar_t* pszName) { return Told(SetEnvironmentVariableW(L"WINEUSERNAME", pszName)); }},
    {L"also", [](const wchar_t* pszFile) { return Told(LoadLibraryW(pszFile) != nullptr); }},
    {L"release", [](const wchar_t* pszName) { return Told(Release(pszName)); }},
    {L"output", [](const wchar_t* pszFile) { return Told(_wfreopen(pszFile, L"w", stdout) != nullptr); }},
    {L"context", [](const wchar_t* pszManifest) { return Told(Activate(pszManifest)); }},
    {L"atexit", [](const wchar_t*) { return Told(std::atexit(&AskAtEnd) == 0); }},
};

/// Does one action. @return its line.
std::string Do(const std::wstring& strAction)
{
    const size_t uiEquals = strAction.find(L'=');
    const auto action = kActions.find(strAction.substr(0, uiEquals));
    const wchar_t* const pszObject = uiEquals == std::wstring::npos ? L"" : strAction.c_str() + uiEquals + 1;
    return action == kActions.end() ? "unknown" : action->second(pszObject);
}

} // namespace

extern "C" int wmain(int argc, wchar_t* argv[])
{
    HKEY hView = nullptr;
    if (argc < 5 || RegOpenKeyExW(HKEY_CURRENT_USER, argv[2], 0, KEY_ALL_ACCESS, &hView) != ERROR_SUCCESS ||
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, hView) != ERROR_SUCCESS)
    {
        return 2;
    }
    s_pszModule = argv[1];
    for (int i = 4; i < argc; ++i)
    {
        const std::string strResult = Do(argv[i]);
        FILE* const pFile = _wfopen(argv[3], L"a");
        if (pFile == nullptr)
        {
            return 2;
        }
        std::fprintf(pFile, "%s\n", strResult.c_str());
        std::fclose(pFile);
    }
    return 0;
}
