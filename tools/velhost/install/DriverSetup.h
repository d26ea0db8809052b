#pragma once
/// The printer driver that install registers: the module as its user-interface half, and another library as the half
/// that turns an application's drawing calls into what the printer understands.

#include "tools/velhost/install/InstallRecord.h"

#include <string>
#include <utility>
#include <vector>

namespace VelHost
{

/// The half of a driver that renders. The spooler never asks it for more than the platform's own interface, so that any
/// will do that knows its data file.
struct RenderingHalf
{
    std::wstring strDriver; ///< full path of the library
    std::wstring strData;   ///< full path of its data: for a PostScript driver the printer's description (PPD)
};

/// The description of the sample printer, beside velhost.exe.
inline constexpr wchar_t kSampleData[] = L"sample\\VelPrinter.ppd";

/// The rendering half that the options name, or else Wine's PostScript driver with the sample's data. Throws
/// CommandError when one of the two options is missing, when a file is not there, when the module itself is named, and
/// when the platform has no such driver: an application that prints through a driver without a rendering half never
/// ends.
/// @param strDriver, strData UTF-8, both or none.
/// @param strModule full path of the module.
RenderingHalf FindRenderingHalf(const std::string& strDriver, const std::string& strData,
                                const std::wstring& strModule);

/// What a registration did.
struct DriverReport
{
    const char* pszState = ""; ///< "added" or "updated"
    std::wstring strModule;    ///< full paths in the spooler's folder
    std::wstring strDriver;
    std::wstring strData;
    std::vector<std::pair<std::wstring, const char*>> leftOvers; ///< files of an earlier run, and what became of each
};

/// Registers the driver kDriverName; the spooler copies what is not in its folder yet. A driver of that name gets the
/// new files. What earlier runs brought and no driver uses any more is deleted. Throws CommandError on failure, also
/// when the spooler had to keep an older file because a program uses it.
/// @param record gets the files that this brings, before they are there, and is saved; files that the spooler's folder
///               had without us, as Wine's PostScript driver, do not go into it.
DriverReport RegisterDriver(const std::wstring& strModule, const RenderingHalf& rendering, InstallRecord& record);

} // namespace VelHost
