#include "tools/velhost/host/HostModule.h"

#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Utf8.h"

namespace VelHost
{
namespace
{

constexpr wchar_t kModuleName[] = L"VelUI.dll";

// Longest path that the platform can return.
constexpr DWORD kLongPathUnits = 32768;

DWORD AttributesOf(const std::wstring& strPath)
{
    return GetFileAttributesW(strPath.c_str());
}

} // namespace

std::wstring ProgramFolder()
{
    std::wstring strPath(kLongPathUnits, L'\0');
    strPath.resize(GetModuleFileNameW(nullptr, strPath.data(), kLongPathUnits));
    return strPath.substr(0, strPath.find_last_of(L'\\'));
}

std::wstring FullPath(const std::wstring& strPath)
{
    std::wstring strFull(kLongPathUnits, L'\0');
    const DWORD cchFull = GetFullPathNameW(strPath.c_str(), kLongPathUnits, strFull.data(), nullptr);
    if (cchFull == 0 || cchFull >= kLongPathUnits)
    {
        ThrowLastError("no path can be made of \"" + ToUtf8(strPath) + "\"");
    }
    strFull.resize(cchFull);
    constexpr size_t kDriveRootUnits = 3; // "C:\"
    while (strFull.size() > kDriveRootUnits && strFull.back() == L'\\')
    {
        strFull.pop_back();
    }
    return strFull;
}

std::wstring JoinPath(const std::wstring& strFolder, const std::wstring& strName)
{
    const bool bSeparated = !strFolder.empty() && strFolder.back() == L'\\';
    return strFolder + (bSeparated ? L"" : L"\\") + strName;
}

bool IsFile(const std::wstring& strPath)
{
    const DWORD dwAttributes = AttributesOf(strPath);
    return dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool IsFolder(const std::wstring& strPath)
{
    const DWORD dwAttributes = AttributesOf(strPath);
    return dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::wstring ModulePath(const std::string& strOption)
{
    const std::wstring strPath =
        strOption.empty() ? JoinPath(ProgramFolder(), kModuleName) : FullPath(FromUtf8(strOption));
    if (!IsFile(strPath))
    {
        throw CommandError("there is no module " + ToUtf8(strPath));
    }
    return strPath;
}

HostModule::HostModule(const std::wstring& strPath, Purpose purpose)
    : m_strPath(strPath),
      m_hModule(LoadLibraryExW(strPath.c_str(), nullptr, purpose == Purpose::Examine ? DONT_RESOLVE_DLL_REFERENCES : 0))
{
    if (m_hModule == nullptr)
    {
        ThrowLastError("can't load " + ToUtf8(strPath));
    }
}

HostModule::~HostModule()
{
    FreeLibrary(m_hModule);
}

FARPROC HostModule::Find(const char* pszName) const noexcept
{
    return GetProcAddress(m_hModule, pszName);
}

FARPROC HostModule::FindOrdinal(WORD wOrdinal) const noexcept
{
    return GetProcAddress(m_hModule, MAKEINTRESOURCEA(wOrdinal));
}

FARPROC HostModule::Require(const char* pszName) const
{
    const FARPROC pExport = Find(pszName);
    if (pExport == nullptr)
    {
        throw CommandError(ToUtf8(m_strPath) + " does not export " + pszName);
    }
    return pExport;
}

} // namespace VelHost
