#pragma once
/// A whole installation for the doctor to look at: what a test of one area shares with a test of the program.

#include "tests/common/BuiltModule.h"
#include "tests/common/ChildProcess.h"
#include "tests/common/StandIns.h"
#include "tests/common/TestPrinter.h"
#include "tools/velhost/doctor/Kinds.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// The codes that a check finds.
inline std::vector<std::string> CodesOf(const std::function<void(VelHost::Findings&)>& check)
{
    VelHost::Findings findings(VelHost::AllKinds());
    check(findings);
    return findings.Codes();
}

/// Puts the stand-in somewhere, so that it goes on until it is ended.
void PlaceStayingStandIn(const std::wstring& strPath);

/// Makes a file of any length, which takes no room on the disk.
void WriteSparseFile(const std::wstring& strPath, LONGLONG llBytes);

/// Shows velhost.exe, and the programs that it starts, a test's registry view.
class SharedView
{
public:
    explicit SharedView(const PrivateRegistry& registry)
    {
        SetEnvironmentVariableW(L"VELHOST_MACHINE_KEY", registry.Root().c_str());
    }
    ~SharedView() { SetEnvironmentVariableW(L"VELHOST_MACHINE_KEY", nullptr); }
    SharedView(const SharedView&) = delete;
    SharedView& operator=(const SharedView&) = delete;
};

/// A printer whose driver has a real rendering half, and the client's tools beside the module; the only printer and the
/// only driver in the view.
class DoctorPrinter
{
public:
    explicit DoctorPrinter(ClientFixture& client);
    ~DoctorPrinter();
    DoctorPrinter(const DoctorPrinter&) = delete;
    DoctorPrinter& operator=(const DoctorPrinter&) = delete;

    const std::wstring& Name() const { return m_printer.Name(); }
    /// Full path of a file in the spooler's folder.
    static std::wstring DriverFile(const std::wstring& strName);
    /// Sets a value of the driver's key, and of the printer's.
    void SetDriverValue(const std::wstring& strValue, const std::wstring& strText) const;
    std::wstring PrinterKey() const;

private:
    ClientFixture& m_client;
    SharedView m_view;
    TestPrinter m_printer;
    std::wstring m_strDriver;
};

/// The resident client: its program in a Program Files folder of the test's own, and its user.
class DoctorClient
{
public:
    /// @param pszName the program's name. One of the test's own keeps the clients of other tests, which may run at the
    ///                same time, out of its sight; the launcher's own name needs a test that runs by itself.
    DoctorClient(ClientFixture& client, const wchar_t* pszName);
    ~DoctorClient();
    DoctorClient(const DoctorClient&) = delete;
    DoctorClient& operator=(const DoctorClient&) = delete;

    /// Full path of the program.
    const std::wstring& Program() const { return m_strProgram; }
    /// Starts the program and waits until it runs.
    void Start();
    /// Stops it and waits until it is gone.
    void Stop();

private:
    UserName m_user{L"mei"};
    std::wstring m_strProgram;
    std::unique_ptr<ChildProcess> m_pProcess;
};
