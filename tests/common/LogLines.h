#pragma once
/// Log lines made comparable: without thread ids and with line numbers masked.

#include "tests/diag/LoggingOn.h"

#include <string>
#include <vector>

/// The log's lines without the head "[ThreadID:#] ", with "(123)" written "(#)", and without empty lines.
std::vector<std::string> Masked(const LoggingOn& logging);

/// The lines of one function alone: those between its START and End that stand in no scope inside it, both ends
/// included.
std::vector<std::string> OwnLines(const LoggingOn& logging, const std::string& strFunction);
/// The same without START and End, both of which must be there.
std::vector<std::string> InnerLines(const LoggingOn& logging, const std::string& strFunction);

/// What a function has done, in order: each message of its own without its value, "DEBUG - VelUI(#) : stuDefDev", and
/// each function with a scope that it has called, "> GetPaperInfoList".
std::vector<std::string> Outline(const LoggingOn& logging, const std::string& strFunction);

/// The scopes that open ("+") and end ("-"), in order: "+VelUI_dll__ProSetPage".
std::vector<std::string> ScopeEvents(const LoggingOn& logging);
