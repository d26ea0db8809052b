#pragma once

#include <catch2/catch_test_macros.hpp>

#include <clocale>
#include <string>

/// The C runtime's locale for the length of a scope, whatever an earlier case of the process has left.
class CrtLocale
{
public:
    explicit CrtLocale(const char* pszName) : m_strOld(std::setlocale(LC_ALL, nullptr))
    {
        REQUIRE(std::setlocale(LC_ALL, pszName) != nullptr);
    }
    ~CrtLocale() { std::setlocale(LC_ALL, m_strOld.c_str()); }
    CrtLocale(const CrtLocale&) = delete;
    CrtLocale& operator=(const CrtLocale&) = delete;

private:
    std::string m_strOld;
};
