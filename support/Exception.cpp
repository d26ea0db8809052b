#include "support/Exception.h"

#include "support/TextConversion.h"

#include <boost/algorithm/string/trim.hpp>

#include <cerrno>
#include <cstring>
#include <sstream>

namespace Language
{

std::string InvalidDataException::What() const
{
    return ToNarrow(message);
}

// Required: the prefix belongs to the wide text alone; the narrow one is the bare path, which callers log behind words
// of their own.
std::string FileNotFoundException::What() const
{
    return ToNarrow(fileName);
}

std::wstring FileNotFoundException::WhatW() const
{
    return L"找不到文件 : " + fileName;
}

CrtException::CrtException(const char* /*pszName*/, const char* /*pszExtra*/) : errorCode(errno)
{
    std::ostringstream text;
    // Required: the word is fixed, whatever the call was: memory is the one thing of the C runtime that fails here.
    text << "malloc"
         << " failed. err = " << std::strerror(errorCode);
    message = text.str();
}

// Required: both short texts are the empty summary; who wants the text asks for the detail.
std::wstring CrtException::WhatW() const
{
    return ToWide(summary);
}

std::wstring CrtException::DetailW() const
{
    return ToWide(message);
}

} // namespace Language

namespace Win32
{

// Required: through the virtual call, unlike Detail, so that a class derived from this one changes both short texts at
// once.
std::string Win32Exception::What() const
{
    return Language::ToNarrow(WhatW());
}

std::string Win32Exception::Detail() const
{
    return Language::ToNarrow(message);
}

void ThrowLastError(const wchar_t* pszApi)
{
    Win32Exception exception(GetLastError());
    exception.message = FormatLastErrorText(pszApi, exception.errorCode, nullptr);
    throw exception;
}

std::wstring FormatLastErrorText(const wchar_t* pszApi, DWORD dwErrorCode, const wchar_t* pszContext)
{
    std::wostringstream text;
    if (pszContext != nullptr)
    {
        text << pszContext << L' ';
    }
    wchar_t* pszBuffer = nullptr;
    const DWORD dwLanguage = MAKELANGID(LANG_NEUTRAL, SUBLANG_SYS_DEFAULT);
    const DWORD dwLength =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, dwErrorCode, dwLanguage,
                       reinterpret_cast<wchar_t*>(&pszBuffer), 128, nullptr);
    text << pszApi << L" failed. last error = " << dwErrorCode << L" (";
    if (dwLength != 0 && pszBuffer != nullptr)
    {
        // The system's text ends in a line break.
        std::wstring strSystem = pszBuffer;
        boost::trim(strSystem);
        text << strSystem << L')';
    }
    else
    {
        text << L"unknown)";
    }
    if (pszBuffer != nullptr)
    {
        LocalFree(pszBuffer);
    }
    return text.str();
}

} // namespace Win32
