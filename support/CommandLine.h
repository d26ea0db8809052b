#pragma once
/// Starting a program from a command line.

#include <list>
#include <string>

namespace Language
{

/// Appends the tokens of a command line to a list. A token is a word up to white space, or what stands between two
/// double quotes, the quotes included. A quote inside a word is an ordinary character; a quoted token that never closes
/// is lost with all behind it.
/// @param strText taken by copy.
void SplitCommandLine(std::wstring strText, std::list<std::wstring>& tokens);

/// Starts the program that a command line names. What the start itself answers is not looked at.
/// @param bWait whether to wait for the program's end.
/// Throws InvalidDataException for a line without a token, FileNotFoundException when the program is not accessible,
/// and CrtException when there is no memory for its arguments.
void LaunchCommandLine(const std::wstring& strCommandLine, bool bWait);

} // namespace Language
