#pragma once

#include "tests/common/ClientFixture.h"

#include <windows.h>

#include <string>

/// The spooler keeps one copy of the module for all drivers, and writes it anew for each that is added: a program
/// that loads the copy meanwhile would find half a file. Held by one printer of all test programs at a time.
class SpoolerTurn
{
public:
    SpoolerTurn();
    ~SpoolerTurn();
    SpoolerTurn(const SpoolerTurn&) = delete;
    SpoolerTurn& operator=(const SpoolerTurn&) = delete;

private:
    HANDLE m_hMutex;
};

/// Registers the built module as the config file of a driver in the test's own registry view, with a printer of the
/// test's own name, and takes both away again. The spooler's files go to the driver folder of the prefix, as always, so
/// that one such printer stands at a time.
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
    SpoolerTurn m_turn;
    std::wstring m_strPrinter;
    std::wstring m_strDriver;
    HANDLE m_hPrinter = nullptr;
};
