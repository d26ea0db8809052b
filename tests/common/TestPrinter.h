#pragma once

#include "tests/common/ClientFixture.h"

#include <windows.h>

#include <string>

/// Registers the built module as the config file of a driver in the test's own registry view, with a printer of the
/// test's own name, and takes both away again. The spooler's files go to the driver folder of the prefix, as always.
class TestPrinter
{
public:
    explicit TestPrinter(ClientFixture& client);
    ~TestPrinter();
    TestPrinter(const TestPrinter&) = delete;
    TestPrinter& operator=(const TestPrinter&) = delete;

    const std::wstring& Name() const { return m_strPrinter; }
    HANDLE Get() const { return m_hPrinter; }

private:
    std::wstring m_strPrinter;
    std::wstring m_strDriver;
    HANDLE m_hPrinter = nullptr;
};
