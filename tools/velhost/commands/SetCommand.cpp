#include "tools/velhost/commands/Commands.h"
#include "tools/velhost/host/StoreKeys.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Output.h"

#include <memory>
#include <stdexcept>

namespace VelHost
{
namespace
{

struct SetOptions
{
    std::string strKey;
    std::string strValue;
    std::string strUser;
};

int RunSet(const SetOptions& options)
{
    const StoreKey* const pKey = FindStoreKey(options.strKey);
    if (pKey == nullptr || pKey->pfnWrite == nullptr)
    {
        throw UsageError("KEY: no writer for \"" + options.strKey + "\"; velhost set --help lists the keys");
    }
    bool bWritten = false;
    try
    {
        bWritten = pKey->pfnWrite(StoreUser(options.strUser), options.strValue);
    }
    catch (const std::logic_error&) // another form, or a number out of its range
    {
        throw UsageError("VALUE: " + std::string(pKey->pszKey) + " takes " + pKey->pszForm + ", not \"" +
                         options.strValue + "\"");
    }
    if (!bWritten)
    {
        throw CommandError(std::string(pKey->pszKey) + " could not be written to " + pKey->pszFile);
    }
    Print(std::string(pKey->pszKey) + " in " + pKey->pszFile + " is set\n");
    return kExitGood;
}

} // namespace

void AddSetCommand(CommandSyntax& program, int& iExitCode)
{
    std::string strKeys;
    for (const StoreKey& key : StoreKeys())
    {
        if (key.pfnWrite != nullptr)
        {
            strKeys += std::string("\n  ") + key.pszKey + " (" + key.pszForm + "), in " + key.pszFile;
        }
    }
    CommandSyntax command = program.AddCommand("set", "Sets one value of the client's or the user's store.");
    command.SetFooter("Keys:" + strKeys);
    const auto pOptions = std::make_shared<SetOptions>();
    command.AddOption("KEY", pOptions->strKey, "The value's key, in any case").Required();
    command.AddOption("VALUE", pOptions->strValue, "The value").Required();
    AddUserOption(command, pOptions->strUser);
    command.OnRun([pOptions, &iExitCode] { iExitCode = RunSet(*pOptions); });
}

} // namespace VelHost
