#include "tests/driver/CapsModel.h"

#include "tests/common/BuiltModule.h"

#include <catch2/catch_test_macros.hpp>

const std::vector<CapModel>& CapModels()
{
    static const std::vector<CapModel> models = {
        {0, Form::Refused, 0, nullptr, nullptr, nullptr},
        {1, Form::Refused, 0, nullptr, nullptr, nullptr},
        {2, Form::Words, 0, L"PapersCount", L"Papers", nullptr},
        {3, Form::Pairs, 0, L"PaperSizeCount", L"PaperSizeX", L"PaperSizeY"},
        {4, Form::Number, 0, L"MinExtent", nullptr, nullptr},
        {5, Form::Number, 0, L"MaxExtent", nullptr, nullptr},
        {6, Form::Words, 0, L"BinsCount", L"Bins", nullptr},
        {7, Form::Number, 0, L"Duplex", nullptr, nullptr},
        {8, Form::Constant, 220, nullptr, nullptr, nullptr},
        {9, Form::Constant, 12, nullptr, nullptr, nullptr},
        {10, Form::Constant, 1280, nullptr, nullptr, nullptr},
        {11, Form::Constant, 1, nullptr, nullptr, nullptr},
        {12, Form::Names24, 0, L"BinNamesCount", L"BinNames", nullptr},
        {13, Form::Pairs, 0, L"ResolutionCount", L"ResolutionX", L"ResolutionY"},
        {14, Form::Refused, 0, nullptr, nullptr, nullptr},
        {15, Form::Constant, 2, nullptr, nullptr, nullptr},
        {16, Form::Names64, 0, L"PaperNamesCount", L"PaperNames", nullptr},
        {17, Form::Number, 0, L"Orientation", nullptr, nullptr},
        {18, Form::Number, 0, L"Copies", nullptr, nullptr},
        {19, Form::Refused, 0, nullptr, nullptr, nullptr},
        {20, Form::Refused, 0, nullptr, nullptr, nullptr},
        {21, Form::Refused, 0, nullptr, nullptr, nullptr},
        {22, Form::Number, 0, L"Collate", nullptr, nullptr},
        {23, Form::Refused, 0, nullptr, nullptr, nullptr},
        {24, Form::Refused, 0, nullptr, nullptr, nullptr},
        {25, Form::Refused, 0, nullptr, nullptr, nullptr},
        {26, Form::Number, 0, L"PrintRate", nullptr, nullptr},
        {27, Form::Number, 0, L"PrintRateUnit", nullptr, nullptr},
        {28, Form::Number, 0, L"PrintMem", nullptr, nullptr},
        {29, Form::Names64, 0, L"MediaReadyCount", L"MediaReady", nullptr},
        {30, Form::Refused, 0, nullptr, nullptr, nullptr},
        {31, Form::Number, 0, L"PrintPPM", nullptr, nullptr},
        {32, Form::Number, 0, L"ColorDevice", nullptr, nullptr},
        {33, Form::Constant, 1, nullptr, nullptr, nullptr},
        {34, Form::Names64, 0, L"MediaTypeNamesCount", L"MediaTypeNames", nullptr},
        {35, Form::Dwords, 0, L"MediaTypesCount", L"MediaTypes", nullptr},
        {36, Form::Refused, 0, nullptr, nullptr, nullptr},
    };
    return models;
}

std::optional<std::wstring> FindKey(const CapKeys& keys, const std::wstring& strKey)
{
    for (const auto& [strName, strValue] : keys)
    {
        if (strName == strKey)
        {
            return strValue;
        }
    }
    return std::nullopt;
}

CapKeys SampleKeys()
{
    const std::string strBytes = ReadFileBytes(BesideTests(L"sample\\Config.ini"));
    REQUIRE(strBytes.size() > 2);
    REQUIRE(strBytes.substr(0, 2) == "\xFF\xFE");
    const std::wstring strText(reinterpret_cast<const wchar_t*>(strBytes.data() + 2), strBytes.size() / 2 - 1);
    CapKeys keys;
    bool bInSection = false;
    size_t uiStart = 0;
    while (uiStart < strText.size())
    {
        size_t uiEnd = strText.find(L'\n', uiStart);
        uiEnd = uiEnd == std::wstring::npos ? strText.size() : uiEnd;
        std::wstring strLine = strText.substr(uiStart, uiEnd - uiStart);
        uiStart = uiEnd + 1;
        if (!strLine.empty() && strLine.back() == L'\r')
        {
            strLine.pop_back();
        }
        const size_t uiEquals = strLine.find(L'=');
        if (!strLine.empty() && strLine[0] == L'[')
        {
            bInSection = strLine == L"[DeviceCapabilities]";
        }
        else if (bInSection && uiEquals != std::wstring::npos)
        {
            keys.emplace_back(strLine.substr(0, uiEquals), strLine.substr(uiEquals + 1));
        }
    }
    REQUIRE(keys.size() > 29);
    return keys;
}

size_t EntryBytes(Form form)
{
    switch (form)
    {
    case Form::Words:
        return sizeof(WORD);
    case Form::Pairs:
        return 2 * sizeof(LONG);
    case Form::Dwords:
        return sizeof(DWORD);
    case Form::Names24:
        return 24 * sizeof(wchar_t);
    case Form::Names64:
        return 64 * sizeof(wchar_t);
    default:
        return 0;
    }
}
