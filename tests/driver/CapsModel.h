#pragma once
/// What each capability code is to answer, written down apart from the module's own table.

#include "tests/common/ClientFixture.h"

#include <optional>
#include <string>
#include <vector>

enum class Form
{
    Refused,
    Constant,
    Number,
    Words,
    Pairs,
    Dwords,
    Names24,
    Names64
};

struct CapModel
{
    WORD iDevCap;
    Form form;
    DWORD dwConstant;         ///< of Form::Constant
    const wchar_t* pszKey;    ///< the number's or the count's key
    const wchar_t* pszBase;   ///< a list's base key; of pairs the x
    const wchar_t* pszSecond; ///< of pairs the y
};

/// One row for each code from 0 to 36.
const std::vector<CapModel>& CapModels();

/// The keys of one section DeviceCapabilities, in order.
using CapKeys = std::vector<std::pair<std::wstring, std::wstring>>;

/// A list value, or nothing where the key is missing.
std::optional<std::wstring> FindKey(const CapKeys& keys, const std::wstring& strKey);

/// The sample printer's keys, read from its Config.ini by a reader of the tests' own.
CapKeys SampleKeys();

/// Bytes of one entry of a list; 0 for a single value.
size_t EntryBytes(Form form);
