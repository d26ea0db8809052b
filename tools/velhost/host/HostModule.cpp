#include "tools/velhost/host/HostModule.h"

#include "tools/velhost/host/Files.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

namespace VelHost
{
namespace
{

constexpr wchar_t kModuleName[] = L"VelUI.dll";

} // namespace

std::wstring ModulePath(const std::string& strOption)
{
    const std::wstring strPath = strOption.empty() ? BesideProgram(kModuleName) : AbsolutePath(strOption);
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
        ThrowCommandError("can't load " + ToUtf8(strPath));
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
