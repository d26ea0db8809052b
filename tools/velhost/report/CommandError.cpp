#include "tools/velhost/report/CommandError.h"

#include "tools/velhost/report/Encoding.h"

namespace VelHost
{

std::string Win32ErrorText(const std::string& strWhat, DWORD dwError)
{
    wchar_t szMessage[512] = {};
    const DWORD cchMessage = FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK, nullptr, dwError,
        MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), szMessage, static_cast<DWORD>(std::size(szMessage)), nullptr);
    std::wstring strMessage(szMessage, cchMessage);
    while (!strMessage.empty() && (strMessage.back() <= L' ' || strMessage.back() == L'.'))
    {
        strMessage.pop_back();
    }
    // Windows' place for a name, which is told in front.
    const size_t placeholder = strMessage.find(L"%1");
    if (placeholder != std::wstring::npos)
    {
        strMessage.replace(placeholder, 2, L"the file");
    }
    const std::string strNumber = "error " + std::to_string(dwError);
    if (strMessage.empty())
    {
        return strWhat + ": " + strNumber;
    }
    return strWhat + ": " + ToUtf8(strMessage) + " (" + strNumber + ")";
}

void ThrowCommandError(const std::string& strWhat, DWORD dwError)
{
    throw CommandError(Win32ErrorText(strWhat, dwError));
}

void ThrowCommandError(const std::string& strWhat)
{
    ThrowCommandError(strWhat, GetLastError());
}

} // namespace VelHost
