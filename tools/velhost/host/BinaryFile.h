#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace VelHost
{

/// @return all bytes of a file. Throws CommandError when it can't be read or is larger than 16 MB.
std::vector<BYTE> ReadBinaryFile(const std::wstring& strPath);

/// Writes a file anew. Throws CommandError on failure.
void WriteBinaryFile(const std::wstring& strPath, const BYTE* pbyData, size_t cbData);

} // namespace VelHost
