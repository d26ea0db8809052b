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
        throw CLI::ValidationError("KEY",
                                   "no writer for \"" + options.strKey + "\"; velhost set --help lists the keys");
    }
    bool bWritten = false;
    try
    {
        bWritten = pKey->pfnWrite(StoreUser(options.strUser), options.strValue);
    }
    catch (const std::logic_error&) // another form, or a number out of its range
    {
        throw CLI::ValidationError("VALUE", std::string(pKey->pszKey) + " takes " + pKey->pszForm + ", not \"" +
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

void AddSetCommand(CLI::App& program, int& iExitCode)
{
    std::string strKeys;
    for (const StoreKey& key : StoreKeys())
    {
        if (key.pfnWrite != nullptr)
        {
            strKeys += std::string("\n  ") + key.pszKey + " (" + key.pszForm + "), in " + key.pszFile;
        }
    }
    CLI::App* const pCommand =
        program.add_subcommand("set", "Sets one value of the client's or the user's store.")->footer("Keys:" + strKeys);
    const auto pOptions = std::make_shared<SetOptions>();
    pCommand->add_option("KEY", pOptions->strKey, "The value's key, in any case")->required();
    pCommand->add_option("VALUE", pOptions->strValue, "The value")->required();
    AddUserOption(*pCommand, pOptions->strUser);
    pCommand->callback([pOptions, &iExitCode] { iExitCode = RunSet(*pOptions); });
}

} // namespace VelHost
