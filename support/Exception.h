#pragma once
/// The exceptions of the support library. They carry text in two widths, own their strings, are thrown by value and
/// caught by reference, and have no link to the standard exceptions: a handler for std::exception does not see them.
/// All four derive straight from Language::Exception.

#include <windows.h>

#include <string>

namespace Language
{

/// The family's one base.
class Exception
{
public:
    virtual ~Exception() = default;
    /// Short text.
    virtual std::string What() const = 0;
    virtual std::wstring WhatW() const = 0;
    /// Detailed text; the short one where a class has no other.
    virtual std::string Detail() const { return What(); }
    virtual std::wstring DetailW() const { return WhatW(); }
};

/// Data that can't be worked with.
class InvalidDataException : public Exception
{
public:
    /// @param strMessage the complete text.
    explicit InvalidDataException(const std::wstring& strMessage) : message(strMessage) {}
    std::string What() const override;
    std::wstring WhatW() const override { return message; }

    std::wstring message;
};

/// A file that is not there. Its wide text has a prefix, its narrow one is the bare path.
class FileNotFoundException : public Exception
{
public:
    /// @param strFileName the path as the thrower had it.
    explicit FileNotFoundException(const std::wstring& strFileName) : fileName(strFileName) {}
    std::string What() const override;
    std::wstring WhatW() const override;

    std::wstring fileName;
};

/// A failed call of the C runtime. Its short texts are empty; the text is reached through Detail.
class CrtException : public Exception
{
public:
    /// Reads errno. Neither argument is used: the text always speaks of "malloc".
    CrtException(const char* pszName, const char* pszExtra);
    std::string What() const override { return summary; }
    std::wstring WhatW() const override;
    std::string Detail() const override { return message; }
    std::wstring DetailW() const override;

    std::string summary; ///< stays empty
    std::string message;
    int errorCode; ///< errno when the object was built
};

} // namespace Language

namespace Win32
{

/// A failed call of Windows.
class Win32Exception : public Language::Exception
{
public:
    explicit Win32Exception(DWORD dwErrorCode) : errorCode(dwErrorCode) {}
    std::string What() const override;
    std::wstring WhatW() const override { return message; }
    std::string Detail() const override;
    std::wstring DetailW() const override { return message; }

    std::wstring summary; ///< stays empty
    std::wstring message;
    DWORD errorCode; ///< GetLastError's value
};

/// Throws a Win32Exception for the call that failed last.
/// @param pszApi the call's name, as it is to stand in the text.
[[noreturn]] void ThrowLastError(const wchar_t* pszApi);

/// The text of a failed call: "<api> failed. last error = <number> (<the system's text>)", or "(unknown)" where the
/// system has none.
/// @param pszContext null, or a text that goes in front with one blank.
std::wstring FormatLastErrorText(const wchar_t* pszApi, DWORD dwErrorCode, const wchar_t* pszContext);

} // namespace Win32
