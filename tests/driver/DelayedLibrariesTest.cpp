// The libraries of Windows that the module takes at its first call to them: which ones and when, from where, what
// happens without one, and that nothing of them stays behind.

#include "tests/common/BuiltModule.h"
#include "tests/common/ChildCase.h"
#include "tests/common/ClientFixture.h"
#include "tests/common/HeapUse.h"
#include "tests/common/ImportHook.h"
#include "tests/driver/SheetCalls.h"

#include <catch2/catch_test_macros.hpp>

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <set>
#include <sstream>
#include <vector>

namespace
{

using Lines = std::vector<std::string>;

Lines LinesOf(const std::string& strText, char cEnd)
{
    Lines lines;
    std::istringstream stream(strText);
    for (std::string strLine; std::getline(stream, strLine, cEnd);)
    {
        strLine.erase(std::remove(strLine.begin(), strLine.end(), '\r'), strLine.end());
        lines.push_back(strLine);
    }
    return lines;
}

/// A client, and a bare process that loads the module: tests/driver/BareHost.cpp. Its folder holds the program alone.
class BareFixture : public ScratchClient
{
public:
    BareFixture()
    {
        std::filesystem::create_directory(hostFolder);
        std::filesystem::copy_file(BesideTests(L"barehost.exe"), hostFolder / L"barehost.exe");
    }

    /// Runs the host. @return what each action left, in their order.
    Lines Do(const std::vector<std::wstring>& actions) const
    {
        const std::wstring strResults = folder.File(L"results.txt");
        DeleteFileW(strResults.c_str());
        std::vector<std::wstring> arguments = {ModulePath(), registry.Root(), strResults};
        arguments.insert(arguments.end(), actions.begin(), actions.end());
        dwExitCode = ChildProcess((hostFolder / L"barehost.exe").wstring(), arguments).Wait(300000);
        Lines results = LinesOf(ReadFileBytes(strResults), '\n');
        CHECK(results.size() == actions.size());
        results.resize(actions.size());
        return results;
    }

    const std::filesystem::path hostFolder = folder.File(L"host");
    mutable DWORD dwExitCode = 0;
};

/// The libraries that a host's second list has beyond its first.
std::set<std::string> Added(const std::string& strBefore, const std::string& strAfter)
{
    const Lines before = LinesOf(strBefore, '|');
    std::set<std::string> added;
    for (const std::string& strFile : LinesOf(strAfter, '|'))
    {
        if (std::find(before.begin(), before.end(), strFile) == before.end())
        {
            added.insert(strFile);
        }
    }
    return added;
}

/// The paths in a host's list that end in a name.
Lines PathsOf(const std::string& strModules, const std::string& strName)
{
    Lines paths;
    for (const std::string& strFile : LinesOf(strModules, '|'))
    {
        if (strFile.size() > strName.size() && strFile.substr(strFile.size() - strName.size() - 1) == '\\' + strName)
        {
            paths.push_back(strFile);
        }
    }
    return paths;
}

std::string Lower(const std::wstring& strPath)
{
    std::string strLower;
    for (const wchar_t c : strPath)
    {
        strLower += static_cast<char>(c >= L'A' && c <= L'Z' ? c + (L'a' - L'A') : c);
    }
    return strLower;
}

} // namespace

TEST_CASE_METHOD(BareFixture, "the module comes without a library of its own, for conversions and SYSTEM's queries too",
                 "[driver][delay]")
{
    const Lines results = Do({L"user=SYSTEM", L"modules", L"load", L"modules", L"size", L"convert", L"modules"});
    CHECK(results[2] == "done");
    CHECK(Added(results[1], results[3]) == std::set<std::string>{Lower(ModulePath())});
    CHECK(results[4] == "220");
    CHECK(results[5] == "1");
    CHECK(results[6] == results[3]);
}

TEST_CASE_METHOD(BareFixture, "a person's first query loads what shell32 needs and the second nothing",
                 "[driver][delay]")
{
    const Lines shell = Do({L"modules", L"also=C:\\windows\\system32\\shell32.dll", L"modules"});
    const Lines results = Do({L"load", L"modules", L"size", L"modules", L"size", L"modules"});
    CHECK(results[2] == "220");
    CHECK(Added(results[1], results[3]) == Added(shell[0], shell[2]));
    CHECK(PathsOf(results[3], "shell32.dll") == Lines{"c:\\windows\\system32\\shell32.dll"});
    CHECK(results[4] == "220");
    CHECK(results[5] == results[3]);
}

TEST_CASE_METHOD(BareFixture, "the libraries that the module took go with it", "[driver][delay]")
{
    const Lines results =
        Do({L"load", L"size", L"default", L"sheet", L"modules", L"unload", L"modules", L"load", L"size"});
    CHECK(results[3] == "1 3");
    CHECK(PathsOf(results[4], "shell32.dll").size() == 1);
    CHECK(PathsOf(results[4], "comctl32.dll").size() == 1);
    CHECK(results[5] == "done");
    CHECK(PathsOf(results[6], "shell32.dll").empty());
    CHECK(PathsOf(results[6], "comctl32.dll").empty());
    CHECK(results[8] == "220");
}

TEST_CASE_METHOD(BareFixture,
                 "3,000 loads with a person's query leave libraries, indexes, handles and memory as before",
                 "[driver][delay][load][once]")
{
    const std::wstring strShell = L"also=C:\\windows\\system32\\shell32.dll";
    const Lines results = Do({
        L"loads=50", strShell, L"release=shell32.dll", // what the platform itself keeps after the first ones
        L"modules", L"state", L"memory",               // 3 to 5
        L"loads=200", L"modules", L"state", L"memory", // 6 to 9: shell32 comes and goes with each
        // With a reference of the host's to shell32 the others are quicker; one that stayed behind would keep it there
        // when the host gives its own back.
        strShell, L"loads=2000", L"memory", L"loads=1000", L"memory", L"release=shell32.dll", // 10 to 15
        L"modules", L"state",                                                                 // 16, 17
    });
    for (const size_t uiAction : {0, 2, 6, 11, 13, 15})
    {
        CHECK(results[uiAction] == "done");
    }
    CHECK(PathsOf(results[3], "shell32.dll").empty());
    CHECK(results[7] == results[3]);
    CHECK(results[16] == results[3]);
    CHECK(results[8] == results[4]);
    CHECK(results[17] == results[4]);
    // A block lost at each load would show as more than this; less is the heap's own noise. Wine 10's heap fills a
    // stock of its own in the first 2,000 loads, so it is those behind them that count.
    CHECK(std::stoull(results[9]) < std::stoull(results[5]) + 200 * 16);
    CHECK(std::stoull(results[14]) < std::stoull(results[12]) + 1000 * 16);
    CHECK(std::stoull(results[14]) < std::stoull(results[5]) + kHeapsStock);
}

namespace
{

/// How Wine finds libraries in the bare host, for the length of a scope.
class LoadOrder
{
public:
    /// @param pszOrder "native,builtin" takes what lies beside the host, where the platform is let, and not Wine's own
    /// in
    ///                 its place; an empty text makes the libraries unobtainable.
    LoadOrder(const std::vector<std::wstring>& names, const wchar_t* pszOrder)
    {
        HKEY hKey = nullptr;
        REQUIRE(RegCreateKeyExW(HKEY_CURRENT_USER, kSetting, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &hKey, nullptr) ==
                ERROR_SUCCESS);
        for (const std::wstring& strName : names)
        {
            RegSetValueExW(hKey, strName.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(pszOrder),
                           static_cast<DWORD>((std::wcslen(pszOrder) + 1) * sizeof(wchar_t)));
        }
        RegCloseKey(hKey);
    }
    ~LoadOrder() { RegDeleteTreeW(HKEY_CURRENT_USER, kSetting); }
    LoadOrder(const LoadOrder&) = delete;
    LoadOrder& operator=(const LoadOrder&) = delete;

private:
    static constexpr wchar_t kSetting[] = L"Software\\Wine\\AppDefaults\\barehost.exe\\DllOverrides";
};

} // namespace

TEST_CASE_METHOD(BareFixture, "libraries that lie beside the host are not taken", "[driver][delay][security]")
{
    const std::vector<std::wstring> names = {L"comctl32", L"gdi32", L"shell32", L"shlwapi", L"ws2_32"};
    for (const std::wstring& strName : names)
    {
        std::filesystem::copy_file(BesideTests(L"latecaller.dll"), hostFolder / (strName + L".dll"));
    }
    const LoadOrder planted(names, L"native,builtin");
    const std::wstring strPlanted = (hostFolder / L"comctl32.dll").wstring();
    SECTION("that the host does not load either")
    {
        const Lines results = Do({L"load", L"size", L"sheet", L"modules"});
        CHECK(results[1] == "220");
        CHECK(results[2] == "1 3");
        CHECK(PathsOf(results[3], "comctl32.dll") == Lines{"c:\\windows\\system32\\comctl32.dll"});
        CHECK(PathsOf(results[3], "shell32.dll") == Lines{"c:\\windows\\system32\\shell32.dll"});
        // What the module's libraries import in their turn.
        CHECK(PathsOf(results[3], "shlwapi.dll") == Lines{"c:\\windows\\system32\\shlwapi.dll"});
        CHECK(PathsOf(results[3], "gdi32.dll") == Lines{"c:\\windows\\system32\\gdi32.dll"});
    }
    SECTION("that the host has loaded for itself")
    {
        const Lines results = Do({L"also=comctl32.dll", L"modules", L"load", L"sheet", L"modules"});
        REQUIRE(PathsOf(results[1], "comctl32.dll") == Lines{Lower(strPlanted)});
        CHECK(results[3] == "1 3");
        CHECK(PathsOf(results[4], "comctl32.dll") == Lines{Lower(strPlanted), "c:\\windows\\system32\\comctl32.dll"});
    }
}

TEST_CASE_METHOD(BareFixture, "the version of comctl32 that the host's activation context asks for is taken",
                 "[driver][delay]")
{
    const std::wstring strManifest = folder.File(L"host.manifest");
    WriteFileBytes(strManifest,
                   "<assembly xmlns='urn:schemas-microsoft-com:asm.v1' manifestVersion='1.0'>"
                   "<dependency><dependentAssembly><assemblyIdentity type='win32' "
                   "name='Microsoft.Windows.Common-Controls' version='6.0.0.0' processorArchitecture='amd64' "
                   "publicKeyToken='6595b64144ccf1df' language='*'/></dependentAssembly></dependency></assembly>");
    const Lines results = Do({L"load", L"context=" + strManifest, L"sheet", L"modules"});
    CHECK(results[1] == "done");
    CHECK(results[2] == "1 3");
    const Lines paths = PathsOf(results[3], "comctl32.dll");
    REQUIRE(paths.size() == 1);
    CHECK(paths[0].find("c:\\windows\\winsxs\\") == 0);
}

namespace
{

/// A variable that child processes see, for the length of a scope.
class Variable
{
public:
    Variable(const wchar_t* pszName, const std::wstring& strValue) : m_pszName(pszName)
    {
        SetEnvironmentVariableW(pszName, strValue.c_str());
    }
    ~Variable() { SetEnvironmentVariableW(m_pszName, nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const wchar_t* m_pszName;
};

} // namespace

TEST_CASE_METHOD(BareFixture, "a process may end with the module's libraries loaded, and ask once more from there",
                 "[driver][delay]")
{
    const std::wstring strLate = folder.File(L"late.txt");
    const Variable late(L"VELUI_LATE", strLate);
    const std::wstring strAlso = L"also=" + BesideTests(L"latecaller.dll");
    SECTION("behind main, where libraries may still be loaded")
    {
        CHECK(Do({L"load", L"atexit"}) == Lines{"done", "done"});
        CHECK(dwExitCode == 220);
    }
    SECTION("from a library's end, where none is loaded any more")
    {
        const Variable asks(L"VELUI_LATE_ASKS", L"1");
        Do({L"load", strAlso});
        CHECK(dwExitCode == 0);
        CHECK(LinesOf(ReadFileBytes(strLate), '\n') == Lines{"220", "no shell32"});
    }
    SECTION("and behind the module's own end its libraries are still there")
    {
        Do({strAlso, L"load", L"size"});
        CHECK(dwExitCode == 0);
        CHECK(LinesOf(ReadFileBytes(strLate), '\n') == Lines{"shell32"});
    }
}

namespace
{

/// A client whose log goes to another machine and into a file.
class FarLogFixture : public BareFixture
{
public:
    FarLogFixture()
    {
        const std::string strLog = std::filesystem::path(folder.File(L"log.txt")).string();
        WriteFileBytes(folder.File(L"LogConfig.conf"), "rootCategory=ERROR\n"
                                                       "category.VelUI_dll=DEBUG, far, near\n"
                                                       "appender.far=SyslogAppender\n"
                                                       "appender.far.syslogHost=127.0.0.1\n"
                                                       "appender.far.layout=BasicLayout\n"
                                                       "appender.near=FileAppender\n"
                                                       "appender.near.fileName=" +
                                                           strLog +
                                                           "\n"
                                                           "appender.near.layout=BasicLayout\n");
    }
    /// How often a result was logged into the file.
    size_t ResultsLogged() const
    {
        size_t uiLogged = 0;
        for (const std::string& strLine : LinesOf(ReadFileBytes(folder.File(L"log.txt")), '\n'))
        {
            uiLogged += strLine.find("dwReturn = 220") != std::string::npos ? 1 : 0;
        }
        return uiLogged;
    }
};

} // namespace

// The module starts its log while the loader loads it.
TEST_CASE_METHOD(FarLogFixture, "a log that goes to another machine takes ws2_32 at load and gives it back at unload",
                 "[driver][delay][diag]")
{
    const Lines results = Do({L"user=SYSTEM", L"load", L"modules", L"size", L"unload", L"modules", L"load", L"size"});
    CHECK(PathsOf(results[2], "ws2_32.dll").size() == 1);
    CHECK(results[3] == "220");
    CHECK(results[4] == "done");
    CHECK(PathsOf(results[5], "ws2_32.dll").empty());
    CHECK(results[7] == "220");
    CHECK(dwExitCode == 0);
    CHECK(ResultsLogged() == 2);
}

TEST_CASE_METHOD(FarLogFixture, "where ws2_32 can't be had the log that needs it is silent and the other goes on",
                 "[driver][delay][diag]")
{
    const LoadOrder none({L"ws2_32"}, L"");
    const Lines results = Do({L"user=SYSTEM", L"load", L"modules", L"size", L"unload"});
    CHECK(PathsOf(results[2], "ws2_32.dll").empty());
    CHECK(results[3] == "220");
    CHECK(results[4] == "done");
    CHECK(dwExitCode == 0);
    CHECK(ResultsLogged() == 1);
}

// The module makes the standard streams when its log starts, not at load.
TEST_CASE_METHOD(BareFixture, "a log on the standard output is written", "[driver][diag]")
{
    WriteFileBytes(folder.File(L"LogConfig.conf"), "rootCategory=ERROR\n"
                                                   "category.VelUI_dll=DEBUG, out\n"
                                                   "appender.out=ConsoleAppender\n"
                                                   "appender.out.layout=BasicLayout\n");
    const std::wstring strOutput = folder.File(L"output.txt");
    const Lines results = Do({L"user=SYSTEM", L"output=" + strOutput, L"load", L"size", L"unload", L"load", L"size"});
    CHECK(results[3] == "220");
    CHECK(results[4] == "done");
    CHECK(results[6] == "220");
    CHECK(dwExitCode == 0);
    const std::string strWritten = ReadFileBytes(strOutput);
    const size_t uiFirst = strWritten.find("dwReturn = 220");
    REQUIRE(uiFirst != std::string::npos);
    CHECK(strWritten.find("dwReturn = 220", uiFirst + 1) != std::string::npos);
}

namespace
{

std::wstring s_strDenied; // the library that can't be had
int s_iDenials = 0;
void* s_pfnLoadLibrary = nullptr;

HMODULE WINAPI LoadAllButOne(LPCWSTR pszFile, HANDLE hFile, DWORD dwFlags)
{
    const std::wstring strFile = pszFile;
    if (strFile.size() >= s_strDenied.size() && strFile.substr(strFile.size() - s_strDenied.size()) == s_strDenied)
    {
        ++s_iDenials;
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return reinterpret_cast<decltype(&LoadLibraryExW)>(s_pfnLoadLibrary)(pszFile, hFile, dwFlags);
}

/// A module that can't have one of its libraries.
class WithoutLibrary
{
public:
    WithoutLibrary(HMODULE hModule, const wchar_t* pszLibrary) : m_hook(hModule, "LoadLibraryExW", &LoadAllButOne)
    {
        s_strDenied = std::wstring(L"\\system32\\") + pszLibrary;
        s_iDenials = 0;
        s_pfnLoadLibrary = m_hook.Original();
    }
    /// How often the library was asked for.
    int Denials() const { return s_iDenials; }

private:
    ImportHook m_hook;
};

} // namespace

TEST_CASE_METHOD(ScratchClient, "a person's query is answered where shell32 can't be had", "[driver][delay]")
{
    const UserName person(L"mei");
    const BuiltModule module;
    const WithoutLibrary without(module.handle, L"shell32.dll");
    CHECK(module.DeviceCapabilities(nullptr, nullptr, DC_SIZE, nullptr, nullptr) == 220);
    CHECK(without.Denials() == 1);
}

TEST_CASE_METHOD(ClientFixture, "without user32 the default record has no name, and the next one has it again",
                 "[driver][delay]")
{
    const BuiltModule module;
    const auto nameOfDefault = [&] {
        stuDrvDevmode record = {};
        LONG cbRecord = sizeof(record);
        CHECK(module.ConvertDevMode(nullptr, nullptr, &record.stuDevmode, &cbRecord, CDM_DRIVER_DEFAULT) == 1);
        CHECK(record.stuDevmode.dmSize == 220);
        return std::wstring(record.stuDevmode.dmDeviceName);
    };
    {
        const WithoutLibrary without(module.handle, L"user32.dll");
        CHECK(nameOfDefault().empty());
        CHECK(without.Denials() == 1);
    }
    CHECK(!nameOfDefault().empty());
}

TEST_CASE_METHOD(ClientFixture, "a document sheet is refused where comctl32 can't be had", "[driver][delay][sheet]")
{
    const BuiltModule module;
    const WithoutLibrary without(module.handle, L"comctl32.dll");
    DocumentCalls calls(module.DocumentSheets);
    stuDrvDevmode in = PlainRecord();
    calls.header.fMode = DM_IN_BUFFER | DM_IN_PROMPT;
    calls.header.pdmIn = &in.stuDevmode;
    CHECK(calls.Call(PROPSHEETUI_REASON_INIT) == -1);
    CHECK(calls.taker.calls.empty());
    CHECK(without.Denials() == 1);
}

namespace
{

BOOL WINAPI EndAtOnce(HMODULE)
{
    TerminateProcess(GetCurrentProcess(), 77);
    return FALSE;
}

} // namespace

// Run by the next case in a process of its own, which ends with the module and what it has loaded.
TEST_CASE("child: the end of a process whose module has loaded a library", "[.child]")
{
    const auto* const pModule = new BuiltModule; // stays loaded
    new ImportHook(pModule->handle, "FreeLibrary", &EndAtOnce);
    stuDrvDevmode record = {};
    LONG cbRecord = sizeof(record);
    pModule->ConvertDevMode(nullptr, nullptr, &record.stuDevmode, &cbRecord, CDM_DRIVER_DEFAULT);
}

// Where the process ends a library may have run its last code before the module does.
TEST_CASE_METHOD(ClientFixture, "at the end of the process no library is given back", "[driver][delay]")
{
    CHECK(ExitCodeOfCase(L"child: the end of a process whose module has loaded a library") == 0);
}
