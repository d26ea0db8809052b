#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

namespace VelHost
{

/// Ends a command: the text is its one line on standard error.
class CommandError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// @return "<strWhat>: <the platform's text> (error <dwError>)".
std::string Win32ErrorText(const std::string& strWhat, DWORD dwError);

/// Throws CommandError with Win32ErrorText of the thread's last error.
[[noreturn]] void ThrowLastError(const std::string& strWhat);

/// The same for an error code that a call returned.
[[noreturn]] void ThrowError(const std::string& strWhat, DWORD dwError);

} // namespace VelHost
