#pragma once
/// How a command ends that can't do its work.

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

/// @return "<strWhat>: <Windows' text> (error <dwError>)".
std::string Win32ErrorText(const std::string& strWhat, DWORD dwError);

/// Throws CommandError with Win32ErrorText of an error code that a call returned.
[[noreturn]] void ThrowCommandError(const std::string& strWhat, DWORD dwError);

/// The same with the thread's last error.
[[noreturn]] void ThrowCommandError(const std::string& strWhat);

} // namespace VelHost
