#pragma once
/// Failures and counts at a module's import table.

#include <windows.h>

#include <string>

/// A library's function at its own address, for a replacement that wants the real one: by its name it would come back
/// to itself.
template <typename Function>
Function* Platform(const wchar_t* pszLibrary, const char* pszFunction)
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(pszLibrary), pszFunction)));
}

/// Replaces one imported function of a module for the length of a scope. Every call that the module makes to it goes to
/// the replacement; calls of other modules do not. One hook a function at a time. A replacement in the hooked module
/// itself that wants the real function asks Platform for it.
class ImportHook
{
public:
    /// @param hModule         whose table; null for the test program, which holds the library's code too.
    /// @param pszFunction     the imported name, whichever library it comes from, now or at its first call. The
    ///                        test fails when it isn't imported.
    /// @param pfnReplacement  a function of the same type.
    template <typename Function>
    ImportHook(HMODULE hModule, const char* pszFunction, Function* pfnReplacement)
    {
        Install(hModule, pszFunction, reinterpret_cast<void*>(pfnReplacement));
    }
    ~ImportHook();
    ImportHook(const ImportHook&) = delete;
    ImportHook& operator=(const ImportHook&) = delete;

    /// The real function, also where the slot was never called and still leads to the helper that would load it.
    void* Original() const { return m_pfnOriginal; }

private:
    void Install(HMODULE hModule, const char* pszFunction, void* pfnReplacement);
    void Write(void* pfn);

    void** m_ppfnSlot = nullptr;
    void* m_pfnBefore = nullptr; ///< what was in the slot
    void* m_pfnOriginal = nullptr;
};
