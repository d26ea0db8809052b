#include "state/PrinterConfig.h"

#include "diag/LogSite.h"
#include "state/ConfigSections.h"
#include "state/FileLocker.h"
#include "state/LoggedWrite.h"
#include "state/ProfileWriter.h"
#include "state/StorePaths.h"

VELUI_SOURCE_MODULE(".\\ClientInfo");

namespace VelUtility
{

namespace
{

bool WritePrinter(const PrinterInfo& info, const wchar_t* pszFile)
{
    return LOGGED_WRITE(WritePrivateProfileStringW, kPrinterSection, L"PrinterName", info.PrinterName.c_str(),
                        pszFile) &&
           LOGGED_WRITE(WritePrivateProfileStringW, kPrinterSection, L"Location", info.Location.c_str(), pszFile) &&
           LOGGED_WRITE(WritePrivateProfileStringW, kPrinterSection, L"Description", info.Description.c_str(), pszFile);
}

/// Writes the snapshot's keys in the order in which they stand in the file; each count goes before its list.
bool WriteCaps(const PrinterCaps& caps, const wchar_t* pszFile)
{
    const auto number = [pszFile](const wchar_t* pszKey, DWORD dwValue) {
        return LOGGED_WRITE(WritePrivateProfileUINT, kCapsSection, pszKey, dwValue, pszFile);
    };
    const auto numbers = [pszFile](const wchar_t* pszBaseKey, const auto* pValues, DWORD dwCount) {
        return LOGGED_WRITE(WritePrivateProfileUINTArray, kCapsSection, pszBaseKey, pValues, dwCount, pszFile);
    };
    const auto names = [pszFile](const wchar_t* pszBaseKey, const auto* pszValues, DWORD dwCount) {
        return LOGGED_WRITE(WritePrivateProfileStringWArray, kCapsSection, pszBaseKey, pszValues, dwCount, pszFile);
    };

    return number(L"BinNamesCount", caps.BinNamesCount) && names(L"BinNames", caps.BinNames, caps.BinNamesCount) &&
           number(L"BinsCount", caps.BinsCount) && numbers(L"Bins", caps.Bins, caps.BinsCount) &&
           number(L"Collate", caps.Collate) && number(L"ColorDevice", caps.ColorDevice) &&
           number(L"Copies", caps.Copies) && number(L"Duplex", caps.Duplex) &&
           number(L"ResolutionCount", caps.ResolutionCount) &&
           LOGGED_WRITE(WritePrivateProfileResolutoinArray, kCapsSection, L"ResolutionX", L"ResolutionY",
                        caps.Resolutions, caps.ResolutionCount, pszFile) &&
           number(L"MaxExtent", caps.MaxExtent) && number(L"MinExtent", caps.MinExtent) &&
           number(L"MediaReadyCount", caps.MediaReadyCount) &&
           names(L"MediaReady", caps.MediaReady, caps.MediaReadyCount) &&
           number(L"MediaTypeNamesCount", caps.MediaTypeNamesCount) &&
           names(L"MediaTypeNames", caps.MediaTypeNames, caps.MediaTypeNamesCount) &&
           number(L"MediaTypesCount", caps.MediaTypesCount) &&
           numbers(L"MediaTypes", caps.MediaTypes, caps.MediaTypesCount) && number(L"Orientation", caps.Orientation) &&
           number(L"PaperNamesCount", caps.PaperNamesCount) &&
           names(L"PaperNames", caps.PaperNames, caps.PaperNamesCount) && number(L"PapersCount", caps.PapersCount) &&
           numbers(L"Papers", caps.Papers, caps.PapersCount) && number(L"PaperSizeCount", caps.PaperSizeCount) &&
           LOGGED_WRITE(WritePrivateProfilePointArray, kCapsSection, L"PaperSizeX", L"PaperSizeY", caps.PaperSizes,
                        caps.PaperSizeCount, pszFile) &&
           number(L"PrintMem", caps.PrintMem) && number(L"PrintRate", caps.PrintRate) &&
           number(L"PrintPPM", caps.PrintPPM) && number(L"PrintRateUnit", caps.PrintRateUnit);
}

} // namespace

DWORD MakePrinterConfig(const PrinterInfo* pstuInfo, const PrinterCaps* pstuCaps)
{
    TRACE_FUNCTION("VelUtility::MakePrinterConfig");
    wchar_t szPath[kStorePathUnits] = {};
    if (MakeConfigFilePath(szPath))
    {
        const CScopeFileLock lock(szPath);
        if (WritePrinter(*pstuInfo, szPath))
        {
            WriteCaps(*pstuCaps, szPath);
        }
    }
    // Required: 0 in every case; the log is the only witness of a failed snapshot.
    return 0;
}

} // namespace VelUtility
