#pragma once
/// The client that is measured with: what its files hold, a resident client that runs, and the module itself.

#include "settings/DriverDevmode.h"
#include "support/module/PrinterInterface.h"
#include "tests/common/ClientFixture.h"
#include "tools/velhost/host/HostModule.h"

#include <windows.h>

#include <string>

/// A scratch client with a user's files and the sample printer's snapshot.
class BenchClient : public ScratchClient
{
public:
    BenchClient();

    /// The path that the resident client has in the view's Program Files folder.
    std::wstring ResidentPath() const { return folder.File(L"Program Files\\Vel-soft\\Client\\VelprintD.exe"); }

    /// Puts the sample printer's snapshot in the place of Config.ini.
    void UseSample() const;
    /// Puts a snapshot with so many papers there.
    void UsePapers(int iPapers) const;
    /// Stores a record as the user's DevMode.dat, or takes the file away.
    void StoreRecord(bool bStored) const;
};

/// A whole record that declares its sizes and a paper, and is 0 otherwise.
stuDrvDevmode RecordOfPaper(short sPaperSize);

/// A process that stands in for the resident client and ends with the object. From the second check on the module knows
/// it, which is the steady state.
class ResidentStandIn
{
public:
    explicit ResidentStandIn(const BenchClient& client);
    ~ResidentStandIn();
    ResidentStandIn(const ResidentStandIn&) = delete;
    ResidentStandIn& operator=(const ResidentStandIn&) = delete;

    DWORD Pid() const { return m_process.dwProcessId; }

private:
    PROCESS_INFORMATION m_process = {};
};

/// The built VelUI.dll and what is measured of it.
struct BenchModule : VelHost::HostModule
{
    BenchModule();

    decltype(&DrvDeviceCapabilities) pfnCaps = Get<decltype(DrvDeviceCapabilities)>("DrvDeviceCapabilities");
    decltype(&DrvConvertDevMode) pfnConvert = Get<decltype(DrvConvertDevMode)>("DrvConvertDevMode");
    decltype(&DrvDocumentPropertySheets) pfnDocument =
        Get<decltype(DrvDocumentPropertySheets)>("DrvDocumentPropertySheets");
};
