#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace VelHost
{

/// JSON that keeps the order in which members were added.
using Json = nlohmann::ordered_json;

/// Makes standard output and standard error carry UTF-8 with LF line ends.
void PrepareOutput();

/// Writes a text to standard output as it is.
void Print(const std::string& strText);

/// Writes a value to standard output, indented, and a line end.
void PrintJson(const Json& value);

/// Writes "velhost: <strText>" and a line end to standard error.
void PrintError(const std::string& strText);

} // namespace VelHost
