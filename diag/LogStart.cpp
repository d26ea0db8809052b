#include "diag/Log.h"

#include "diag/LogConfigurator.h"
#include "diag/Quietly.h"

#include <log4cpp/Category.hh>
#include <log4cpp/HierarchyMaintainer.hh>
#include <log4cpp/NDC.hh>
#include <log4cpp/PropertyConfigurator.hh>

bool loggingDisabled = true;

int StartLogging(const char* pszConfigFile) noexcept
{
    const ErrorStateGuard guard;
    try
    {
        const std::string strConfigFile = pszConfigFile != nullptr ? pszConfigFile : "";
        LogConfigurator configurator;
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
    if (loggingDisabled)
    {
        return;
    }
    Quietly([] {
        // Off first: a call that comes from now on must not meet a library that is being taken down.
        loggingDisabled = true;
        // Takes the appenders off the categories and deletes them, then the categories themselves.
        log4cpp::Category::shutdownForced();
        log4cpp::HierarchyMaintainer::getDefaultMaintainer().deleteAllCategories();
        log4cpp::NDC::clear();
    });
}
