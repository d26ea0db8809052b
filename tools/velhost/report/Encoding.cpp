#include "tools/velhost/report/Encoding.h"

#include <windows.h>

namespace VelHost
{

std::string ToUtf8(std::wstring_view strText)
{
    if (strText.empty())
    {
        return {};
    }
    const int cchText = static_cast<int>(strText.size());
    const int cbResult = WideCharToMultiByte(CP_UTF8, 0, strText.data(), cchText, nullptr, 0, nullptr, nullptr);
    std::string strResult(static_cast<size_t>(cbResult), '\0');
    WideCharToMultiByte(CP_UTF8, 0, strText.data(), cchText, strResult.data(), cbResult, nullptr, nullptr);
    return strResult;
}

std::wstring FromUtf8(std::string_view strText)
{
    if (strText.empty())
    {
        return {};
    }
    const int cbText = static_cast<int>(strText.size());
    const int cchResult = MultiByteToWideChar(CP_UTF8, 0, strText.data(), cbText, nullptr, 0);
    std::wstring strResult(static_cast<size_t>(cchResult), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, strText.data(), cbText, strResult.data(), cchResult);
    return strResult;
}

std::optional<std::string> ToCodePage(std::wstring_view strText)
{
    BOOL bLost = FALSE;
    std::string strResult(strText.size() * 2 + 1, '\0');
    const int cbResult = WideCharToMultiByte(CP_ACP, 0, strText.data(), static_cast<int>(strText.size()),
                                             strResult.data(), static_cast<int>(strResult.size()), nullptr, &bLost);
    if (bLost || cbResult == 0)
    {
        return std::nullopt;
    }
    strResult.resize(static_cast<size_t>(cbResult));
    return strResult;
}

std::wstring FromCodePage(std::string_view strText)
{
    std::wstring strResult(strText.size(), L'\0');
    strResult.resize(
        static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, strText.data(), static_cast<int>(strText.size()),
                                                strResult.data(), static_cast<int>(strResult.size()))));
    return strResult;
}

std::wstring CellText(const wchar_t* pszCell, size_t cchCell)
{
    size_t cchText = 0;
    while (cchText < cchCell && pszCell[cchText] != L'\0')
    {
        ++cchText;
    }
    return std::wstring(pszCell, cchText);
}

} // namespace VelHost
