// The helper of delay-loaded functions, called as a function's slot calls it.

#include "tests/common/ImportHook.h"

#include <catch2/catch_test_macros.hpp>

#include <windows.h>

#include <cstring>
#include <delayimp.h>

extern "C" FARPROC WINAPI __delayLoadHelper2(PCImgDelayDescr pDescription, FARPROC* ppfnSlot);
extern "C" IMAGE_DOS_HEADER __image_base__;

namespace
{

template <typename T>
RVA RvaOf(const T* p)
{
    return static_cast<RVA>(reinterpret_cast<const BYTE*>(p) - reinterpret_cast<const BYTE*>(&__image_base__));
}

/// What dlltool makes of a library with one function, but in the test program, whose addresses the helper takes them
/// for. One at a time.
class DelayedFunction
{
public:
    DelayedFunction(const char* pszLibrary, const char* pszFunction)
    {
        strcpy_s(s_szLibrary, pszLibrary);
        s_hLibrary = nullptr;
        strcpy_s(s_name.szName, pszFunction);
        s_names[0].u1.AddressOfData = RvaOf(&s_name);
        s_slots[0] = &NotCalled;
        m_description.grAttrs = dlattrRva;
        m_description.rvaDLLName = RvaOf(s_szLibrary);
        m_description.rvaHmod = RvaOf(&s_hLibrary);
        m_description.rvaIAT = RvaOf(s_slots);
        m_description.rvaINT = RvaOf(s_names);
    }
    ~DelayedFunction()
    {
        if (s_hLibrary != nullptr)
        {
            FreeLibrary(s_hLibrary);
        }
    }
    DelayedFunction(const DelayedFunction&) = delete;
    DelayedFunction& operator=(const DelayedFunction&) = delete;

    FARPROC Resolve() { return __delayLoadHelper2(&m_description, s_slots); }
    HMODULE Library() const { return s_hLibrary; }
    FARPROC Slot() const { return s_slots[0]; }
    static const void* SlotsPlace() { return s_slots; }
    /// Whether the slot still leads to where it led at first.
    bool SlotIsUntouched() const { return s_slots[0] == &NotCalled; }
    const ImgDelayDescr& Description() const { return m_description; }

private:
    static INT_PTR WINAPI NotCalled() { return 0; }

    /// IMAGE_IMPORT_BY_NAME with room for the name.
    struct Name
    {
        WORD wHint;
        char szName[64];
    };
    static inline char s_szLibrary[64];
    static inline HMODULE s_hLibrary;
    static inline Name s_name;
    static inline IMAGE_THUNK_DATA s_names[2];
    static inline FARPROC s_slots[2];
    ImgDelayDescr m_description = {};
};

/// An exception as the first handler sees it, which lets the thread go on.
struct Raised
{
    DWORD dwCode = 0;
    DWORD dwFlags = 1;
    DelayLoadInfo info = {};
    std::string strLibrary;
    std::string strFunction;
};
Raised s_raised;

LONG CALLBACK TakeNote(EXCEPTION_POINTERS* pPointers)
{
    const EXCEPTION_RECORD& record = *pPointers->ExceptionRecord;
    if (HRESULT_FACILITY(record.ExceptionCode) != FACILITY_VISUALCPP || record.NumberParameters != 1)
    {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    s_raised.dwCode = record.ExceptionCode;
    s_raised.dwFlags = record.ExceptionFlags;
    s_raised.info = *reinterpret_cast<const DelayLoadInfo*>(record.ExceptionInformation[0]);
    s_raised.strLibrary = s_raised.info.szDll;
    s_raised.strFunction = s_raised.info.dlp.szProcName;
    return EXCEPTION_CONTINUE_EXECUTION;
}

/// Takes note of what is raised in a scope.
class Watch
{
public:
    Watch() : m_pHandler(AddVectoredExceptionHandler(1, &TakeNote)) { s_raised = Raised(); }
    ~Watch() { RemoveVectoredExceptionHandler(m_pHandler); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

private:
    void* m_pHandler;
};

/// What the platform says while a process ends.
BOOLEAN NTAPI SayYes()
{
    return TRUE;
}
FARPROC(WINAPI* s_pfnFind)(HMODULE, LPCSTR) = nullptr; // Platform asks for functions by the one that is replaced
FARPROC WINAPI FindEndOfProcess(HMODULE hModule, LPCSTR pszName)
{
    return std::strcmp(pszName, "RtlDllShutdownInProgress") == 0
               ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&SayYes))
               : s_pfnFind(hModule, pszName);
}

using Protect = BOOL WINAPI(LPVOID, SIZE_T, DWORD, PDWORD);
BOOL WINAPI KeepSlotLocked(LPVOID pv, SIZE_T cb, DWORD dwProtection, PDWORD pdwBefore)
{
    if (pv == DelayedFunction::SlotsPlace())
    {
        SetLastError(ERROR_INVALID_ADDRESS);
        return FALSE;
    }
    return Platform<Protect>(L"kernel32", "VirtualProtect")(pv, cb, dwProtection, pdwBefore);
}

DWORD s_dwSearchFlags = 0;
BOOL WINAPI NoteSearch(DWORD dwFlags, const GUID* pExtension, ULONG uiSection, LPCWSTR pszText,
                       PACTCTX_SECTION_KEYED_DATA pData)
{
    s_dwSearchFlags = dwFlags;
    return Platform<decltype(FindActCtxSectionStringW)>(L"kernel32", "FindActCtxSectionStringW")(
        dwFlags, pExtension, uiSection, pszText, pData);
}

size_t s_cbUnlocked = 0;
DWORD s_dwUnlocked = 0;
BOOL WINAPI NoteUnlocking(LPVOID pv, SIZE_T cb, DWORD dwProtection, PDWORD pdwBefore)
{
    if (pv == DelayedFunction::SlotsPlace())
    {
        s_cbUnlocked = cb;
        s_dwUnlocked = dwProtection;
    }
    return Platform<Protect>(L"kernel32", "VirtualProtect")(pv, cb, dwProtection, pdwBefore);
}

} // namespace

TEST_CASE("a function's first call loads its library and fills its slot, and the last error stays", "[support][delay]")
{
    DelayedFunction function("version.dll", "VerLanguageNameW");
    SetLastError(4711);
    const FARPROC pfn = function.Resolve();
    CHECK(GetLastError() == 4711);
    CHECK(function.Library() == GetModuleHandleW(L"version.dll"));
    CHECK(pfn == GetProcAddress(function.Library(), "VerLanguageNameW"));
    CHECK(function.Slot() == pfn);
}

TEST_CASE("a slot that can't be unlocked stays, and the function is called all the same", "[support][delay]")
{
    const ImportHook hook(nullptr, "VirtualProtect", &KeepSlotLocked);
    DelayedFunction function("version.dll", "VerLanguageNameW");
    SetLastError(4711);
    const FARPROC pfn = function.Resolve();
    CHECK(GetLastError() == 4711);
    CHECK(pfn == GetProcAddress(function.Library(), "VerLanguageNameW"));
    CHECK(function.SlotIsUntouched());
}

TEST_CASE("a slot, and nothing behind it, is unlocked for reading and writing", "[support][delay]")
{
    const ImportHook hook(nullptr, "VirtualProtect", &NoteUnlocking);
    DelayedFunction function("version.dll", "VerLanguageNameW");
    const FARPROC pfn = function.Resolve();
    CHECK(function.Slot() == pfn);
    CHECK(s_cbUnlocked == 8);
    CHECK(s_dwUnlocked == PAGE_READWRITE);
}

TEST_CASE("the search for another version of a library holds no activation context", "[support][delay]")
{
    s_dwSearchFlags = 0xFFFF;
    const ImportHook hook(nullptr, "FindActCtxSectionStringW", &NoteSearch);
    DelayedFunction function("version.dll", "VerLanguageNameW");
    function.Resolve();
    CHECK(s_dwSearchFlags == 0); // with FIND_ACTCTX_SECTION_KEY_RETURN_HACTX it would have to give one back
}

TEST_CASE("while the process ends no library is loaded, and a call fails as without its library", "[support][delay]")
{
    s_pfnFind = &GetProcAddress;
    const ImportHook hook(nullptr, "GetProcAddress", &FindEndOfProcess);
    DelayedFunction function("version.dll", "GetAdaptersInfo");
    SetLastError(4711);
    const FARPROC pfn = function.Resolve();
    CHECK(function.Library() == nullptr);
    CHECK(static_cast<DWORD>(pfn()) == ERROR_MOD_NOT_FOUND);
    CHECK(function.SlotIsUntouched());
}

TEST_CASE("threads that meet at a function's first call leave one reference to its library", "[support][delay][cores]")
{
    // A library that nothing else in the program needs, so that giving the one reference back unloads it.
    static constexpr wchar_t kLibrary[] = L"rstrtmgr.dll";
    REQUIRE(GetModuleHandleW(kLibrary) == nullptr);
    for (int iTurn = 0; iTurn < 20; ++iTurn)
    {
        {
            DelayedFunction function("rstrtmgr.dll", "RmStartSession");
            HANDLE threads[8];
            for (HANDLE& hThread : threads)
            {
                hThread = CreateThread(
                    nullptr, 0,
                    [](void* pv) -> DWORD { return static_cast<DelayedFunction*>(pv)->Resolve() != nullptr ? 1 : 0; },
                    &function, 0, nullptr);
            }
            WaitForMultipleObjects(8, threads, TRUE, 20000);
            for (const HANDLE hThread : threads)
            {
                DWORD dwFound = 0;
                GetExitCodeThread(hThread, &dwFound);
                CHECK(dwFound == 1);
                CloseHandle(hThread);
            }
            CHECK(function.Library() == GetModuleHandleW(kLibrary));
        }
        REQUIRE(GetModuleHandleW(kLibrary) == nullptr);
    }
}

TEST_CASE("a call without a documented failure raises the exception that tells its library", "[support][delay]")
{
    DelayedFunction function("velnone.dll", "EnableWindow");
    const Watch watch;
    const FARPROC pfn = function.Resolve();
    CHECK(s_raised.dwCode == 0xC06D007E);
    CHECK(s_raised.dwFlags == 0); // a handler may go on behind it
    CHECK(s_raised.strLibrary == "velnone.dll");
    CHECK(s_raised.strFunction == "EnableWindow");
    CHECK(s_raised.info.cb == 72); // the published record's size on 64 bits
    CHECK(s_raised.info.pidd == &function.Description());
    CHECK(s_raised.info.ppfn == DelayedFunction::SlotsPlace());
    CHECK(s_raised.info.dlp.fImportByName == TRUE);
    CHECK(s_raised.info.dwLastError == ERROR_MOD_NOT_FOUND);
    CHECK(s_raised.info.hmodCur == nullptr);
    CHECK(pfn() == 0);
    CHECK(function.SlotIsUntouched());
}

TEST_CASE("a function that its library lacks is told as such", "[support][delay]")
{
    DelayedFunction function("version.dll", "VelNothing");
    const Watch watch;
    function.Resolve();
    CHECK(s_raised.dwCode == 0xC06D007F);
    CHECK(s_raised.strFunction == "VelNothing");
    CHECK(s_raised.info.dwLastError == ERROR_PROC_NOT_FOUND);
    CHECK(s_raised.info.hmodCur == GetModuleHandleW(L"version.dll"));
    CHECK(function.SlotIsUntouched());
}

TEST_CASE("functions whose failure is documented fail that way where their library can't be had", "[support][delay]")
{
    const Watch watch;
    const auto answerOf = [](const char* pszFunction, ULONG_PTR ulArgument = 0) {
        DelayedFunction function("velnone.dll", pszFunction);
        const FARPROC pfn = function.Resolve();
        CHECK(function.SlotIsUntouched()); // the next call tries again
        return reinterpret_cast<INT_PTR(WINAPI*)(ULONG_PTR)>(reinterpret_cast<void*>(pfn))(ulArgument);
    };
    CHECK(static_cast<HRESULT>(answerOf("SHGetFolderPathW")) == static_cast<HRESULT>(0x8007007E));
    CHECK(answerOf("LoadStringW") == 0);
    CHECK(answerOf("CreatePropertySheetPageW") == 0);
    CHECK(answerOf("gethostbyname") == 0);
    CHECK(static_cast<int>(answerOf("WSAGetLastError")) == ERROR_MOD_NOT_FOUND);
    CHECK(static_cast<WORD>(answerOf("htons", 0x0202 + 0x0100)) == 0x0203);
    CHECK(static_cast<int>(answerOf("sendto")) == -1);
    CHECK(static_cast<int>(answerOf("WSAStartup")) == 10091);
    CHECK(static_cast<int>(answerOf("gethostname")) == -1);
    CHECK(static_cast<DWORD>(answerOf("GetAdaptersInfo")) == ERROR_MOD_NOT_FOUND);
    CHECK(s_raised.dwCode == 0);
}
