// Libraries of Windows that come with the first call to them: the helper that a delay-loaded function's slot calls, in
// place of MinGW's.
//
// Which functions these are stands in cmake/DelayLoad.cmake. Until its first call a function's slot leads to the
// helper, which loads the library, puts the function's address into the slot and returns it; from then on a call goes
// straight there. MinGW's helper looks for a library where the application keeps its own, keeps each one loaded for
// good, and changes the thread's last error. This one
//   - takes a library from the system's folder, and what that library needs too. Only where the activation context
//     names another version of it, as a host's manifest does for comctl32, that one is taken;
//   - gives the libraries back when the module is unloaded, after all that may still call them;
//   - loads nothing once the process ends;
//   - leaves the last error alone;
//   - lets a call whose library can't be had fail as the caller expects it, where the caller expects a failure at all.
//     Any other such call raises the exception that debuggers know from MSVC's helper.
//
// It takes no lock: two threads that meet at a function's first call both load the library, and one gives it back.
//
// The helper's name and the description of a library are the interface between MinGW's dlltool and the helper. Linked
// as an object, like EmulatedTls.cpp.

#include <winsock2.h>

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <delayimp.h>

/// The module's own first byte.
extern "C" IMAGE_DOS_HEADER __image_base__;

namespace
{

// The linker sorts these sections by name, and so puts what describes the libraries between the two marks.
__attribute__((section(".rdata$delay1"), used)) const ImgDelayDescr s_first = {};
__attribute__((section(".rdata$delay3"), used)) const ImgDelayDescr s_last = {};

template <typename T>
T* Rva(DWORD dwRva)
{
    return reinterpret_cast<T*>(reinterpret_cast<BYTE*>(&__image_base__) + dwRva);
}

/// Whether the process ends, so that libraries may have run their last code and locks may be held by threads that are
/// no more.
bool ProcessEnds()
{
    void* const pfn =
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress"));
    return pfn != nullptr && reinterpret_cast<BOOLEAN(NTAPI*)()>(pfn)() != FALSE;
}

/// Whether the thread's activation context puts another version in a library's place.
bool IsRedirected(const wchar_t* pszLibrary)
{
    ACTCTX_SECTION_KEYED_DATA data = {};
    data.cbSize = sizeof(data);
    return FindActCtxSectionStringW(0, nullptr, ACTIVATION_CONTEXT_SECTION_DLL_REDIRECTION, pszLibrary, &data) != FALSE;
}

/// Loads a library of the system's.
/// @return null, and the last error, when it can't be had.
HMODULE LoadFromSystem(const char* pszLibrary)
{
    constexpr size_t kNameUnits = 64; // the names in cmake/DelayLoad.cmake are shorter, and ASCII
    wchar_t szPath[MAX_PATH + kNameUnits] = {};
    const UINT cchFolder = GetSystemDirectoryW(szPath, MAX_PATH);
    szPath[cchFolder] = L'\\';
    wchar_t* const pszName = szPath + cchFolder + 1;
    std::copy_n(pszLibrary, strnlen(pszLibrary, kNameUnits - 1), pszName);
    // By its full path: by its name alone a library of that name which the application has loaded would be taken. A
    // redirection is only looked for by the name.
    return LoadLibraryExW(IsRedirected(pszName) ? pszName : szPath, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
}

/// The library of a description, loaded when it is not yet.
/// @return null, and the last error, when it can't be had.
HMODULE LibraryOf(const ImgDelayDescr& description)
{
    HMODULE* const phLibrary = Rva<HMODULE>(description.rvaHmod);
    HMODULE hLibrary = __atomic_load_n(phLibrary, __ATOMIC_ACQUIRE);
    if (hLibrary != nullptr)
    {
        return hLibrary;
    }
    if (ProcessEnds())
    {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    const HMODULE hLoaded = LoadFromSystem(Rva<char>(description.rvaDLLName));
    if (hLoaded != nullptr &&
        !__atomic_compare_exchange_n(phLibrary, &hLibrary, hLoaded, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE))
    {
        FreeLibrary(hLoaded); // another thread was faster
        return hLibrary;
    }
    return hLoaded;
}

// What stands in for a function that can't be had. Each is called with the function's own arguments, of which the
// target's calling convention lets it leave aside what it doesn't need.

INT_PTR AnswerZero()
{
    return 0;
}

INT_PTR AnswerSocketError()
{
    return SOCKET_ERROR;
}

HRESULT AnswerResult()
{
    return HRESULT_FROM_WIN32(GetLastError());
}

int AnswerNoNetwork()
{
    return WSASYSNOTREADY;
}

DWORD AnswerLastError()
{
    return GetLastError();
}

u_short SwapBytes(u_short us)
{
    return static_cast<u_short>(us << 8 | us >> 8);
}

/// A function whose failure the module or log4cpp is ready for.
struct StandIn
{
    const char* pszFunction;
    FARPROC pfn;
};

#define STAND_IN(function, answer)                                                                                     \
    {                                                                                                                  \
#function, reinterpret_cast < FARPROC>(reinterpret_cast <void*>(&answer))                                      \
    }

const StandIn kStandIns[] = {
    STAND_IN(SHGetFolderPathW, AnswerResult),       // no Program Files folder: the client's path stays relative
    STAND_IN(LoadStringW, AnswerZero),              // a text stays empty
    STAND_IN(CreatePropertySheetPageW, AnswerZero), // the sheet is refused
    // A remote syslog appender without a network writes nowhere; it calls the last two all the same.
    STAND_IN(gethostbyname, AnswerZero),
    STAND_IN(WSAGetLastError, AnswerLastError),
    STAND_IN(htons, SwapBytes),
    STAND_IN(sendto, AnswerSocketError),
    // A machine without an identity.
    STAND_IN(WSAStartup, AnswerNoNetwork),
    STAND_IN(gethostname, AnswerSocketError),
    STAND_IN(GetAdaptersInfo, AnswerLastError),
};

/// Puts a function into its slot. Newer linkers make the whole import table read-only, and the platform's loader
/// unlocks its own part of it alone. The slot's page is not locked again: another thread may be about to fill a slot
/// beside it. Where it can't be unlocked the slot stays as it is, and the next call comes here again.
void Fill(FARPROC* ppfnSlot, FARPROC pfn)
{
    DWORD dwBefore = 0;
    if (VirtualProtect(ppfnSlot, sizeof(*ppfnSlot), PAGE_READWRITE, &dwBefore))
    {
        __atomic_store_n(ppfnSlot, pfn, __ATOMIC_RELEASE);
    }
}

/// Lets a call fail: by what stands in for the function, or else by an exception, which does not return unless a
/// handler of the host's goes on behind it.
FARPROC Fail(const ImgDelayDescr& description, FARPROC* ppfnSlot, const IMAGE_IMPORT_BY_NAME& name, HMODULE hLibrary)
{
    for (const StandIn& standIn : kStandIns)
    {
        if (std::strcmp(standIn.pszFunction, reinterpret_cast<const char*>(name.Name)) == 0)
        {
            return standIn.pfn; // the slot stays, so that the next call tries again
        }
    }
    DelayLoadInfo info = {};
    info.cb = sizeof(info);
    info.pidd = &description;
    info.ppfn = ppfnSlot;
    info.szDll = Rva<char>(description.rvaDLLName);
    info.dlp.fImportByName = TRUE;
    info.dlp.szProcName = reinterpret_cast<const char*>(name.Name);
    info.hmodCur = hLibrary;
    info.dwLastError = GetLastError();
    const auto ulInfo = reinterpret_cast<ULONG_PTR>(&info);
    const DWORD dwMissing = hLibrary == nullptr ? ERROR_MOD_NOT_FOUND : ERROR_PROC_NOT_FOUND;
    RaiseException(static_cast<DWORD>(VcppException(ERROR_SEVERITY_ERROR, dwMissing)), 0, 1, &ulInfo);
    return info.pfnCur != nullptr ? info.pfnCur : reinterpret_cast<FARPROC>(&AnswerZero);
}

/// Gives the libraries back when the module is unloaded. The lowest priority that a program may use puts its destructor
/// behind all that may still call them. It runs under the loader's lock, where libraries may be given back but for the
/// end of the process.
struct LibraryReturner
{
    ~LibraryReturner()
    {
        if (ProcessEnds())
        {
            return;
        }
        for (const ImgDelayDescr* p = &s_first; ++p < &s_last;)
        {
            if (p->grAttrs == dlattrRva && *Rva<HMODULE>(p->rvaHmod) != nullptr)
            {
                FreeLibrary(*Rva<HMODULE>(p->rvaHmod));
            }
        }
    }
};
LibraryReturner s_libraryReturner __attribute__((init_priority(101)));

} // namespace

/// Called by a delay-loaded function's slot as long as the function's address is not in it.
/// @return the function, or what stands in for it.
extern "C" FARPROC WINAPI __delayLoadHelper2(PCImgDelayDescr pDescription, FARPROC* ppfnSlot)
{
    const DWORD dwLastError = GetLastError();
    const size_t uiSlot = ppfnSlot - Rva<FARPROC>(pDescription->rvaIAT);
    const auto& name = *Rva<IMAGE_IMPORT_BY_NAME>(
        static_cast<DWORD>(Rva<IMAGE_THUNK_DATA>(pDescription->rvaINT)[uiSlot].u1.AddressOfData));
    const HMODULE hLibrary = LibraryOf(*pDescription);
    const FARPROC pfn =
        hLibrary != nullptr ? GetProcAddress(hLibrary, reinterpret_cast<const char*>(name.Name)) : nullptr;
    if (pfn == nullptr)
    {
        return Fail(*pDescription, ppfnSlot, name, hLibrary);
    }
    Fill(ppfnSlot, pfn);
    SetLastError(dwLastError);
    return pfn;
}
