#include "diag/Log.h"

#include "diag/LogConfigurator.h"
#include "diag/Quietly.h"
#include "diag/ThreadNdc.h"

#include <log4cpp/Category.hh>
#include <log4cpp/HierarchyMaintainer.hh>
#include <log4cpp/PropertyConfigurator.hh>

bool loggingDisabled = true;

namespace
{

/// Whether a start has handed the library anything. A start that failed half way has, and leaves logging off.
bool s_bLibraryUsed = false;

} // namespace

int StartLogging(const char* pszConfigFile) noexcept
{
    const ErrorStateGuard guard;
    try
    {
        const std::string strConfigFile = pszConfigFile != nullptr ? pszConfigFile : "";
        if (strConfigFile.empty())
        {
            // The library would fail to open it. At the module's start its exception costs more than all the rest.
            loggingDisabled = true;
            return 0;
        }
        LogConfigurator configurator;
        s_bLibraryUsed = true;
        log4cpp::PropertyConfigurator::configure(strConfigFile);
        configurator.configure(strConfigFile);
        logFilter = configurator.getFilter();
        loggingDisabled = false;
    }
    catch (...)
    {
        loggingDisabled = true;
    }
    return 0;
}

void StopLogging() noexcept
{
    if (!s_bLibraryUsed)
    {
        return;
    }
    Quietly([] {
        const bool bWasOn = !loggingDisabled;
        // Off first: a call that comes from now on must not meet a library that is being taken down.
        loggingDisabled = true;
        s_bLibraryUsed = false;
        // Takes the appenders off the categories and deletes them, then the categories themselves; also those of a
        // start that failed half way, whose log file would stay open.
        log4cpp::Category::shutdownForced();
        log4cpp::HierarchyMaintainer::getDefaultMaintainer().deleteAllCategories();
        if (bWasOn)
        {
            FreeThreadNdc();
        }
    });
}
