#pragma once
/// The spooler's drivers and printers.

#include "tools/velhost/doctor/Findings.h"
#include "tools/velhost/host/Spooler.h"

namespace VelHost
{

/// The kinds of this check: SPL01 and on.
const std::vector<FindingKind>& SpoolerKinds();

/// What is looked for in the spooler.
struct SpoolerQuestion
{
    std::wstring strModule;  ///< full path of the module that the spooler's copy should be
    std::wstring strPrinter; ///< a printer that has to be there; empty for none
    bool bAsk = true;        ///< whether printers are asked for their capabilities, which loads the module
};

/// @return the drivers whose configuration file bears the module's file name. Throws CommandError when the spooler does
///         not answer.
std::vector<DriverDescription> ModuleDrivers(const std::wstring& strModule);

/// Looks at the drivers that have the module, at their files and at their printers. Reads only; printers are asked for
/// their capabilities by another program, which a faulty installation may end. Throws CommandError when the spooler
/// does not answer.
void CheckSpooler(const SpoolerQuestion& question, Findings& findings);

} // namespace VelHost
