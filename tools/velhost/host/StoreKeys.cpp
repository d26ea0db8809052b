#include "tools/velhost/host/StoreKeys.h"

#include "state/ConfigFile.h"
#include "state/CurrentUser.h"
#include "state/DataFiles.h"
#include "state/MessageFiles.h"
#include "state/UserIniFiles.h"
#include "tools/velhost/report/Encoding.h"

#include <cstdio>
#include <stdexcept>

namespace VelHost
{
namespace
{

using namespace VelUtility;

long long ParseNumber(const std::string& strValue, long long llLeast, long long llMost)
{
    size_t uiUsed = 0;
    const long long llValue = std::stoll(strValue, &uiUsed); // throws std::invalid_argument or std::out_of_range
    if (uiUsed != strValue.size() || llValue < llLeast || llValue > llMost)
    {
        throw std::invalid_argument(strValue);
    }
    return llValue;
}

DWORD FlagOf(const std::string& strValue)
{
    return static_cast<DWORD>(ParseNumber(strValue, 0, 1));
}

DWORD UnsignedOf(const std::string& strValue)
{
    return static_cast<DWORD>(ParseNumber(strValue, 0, 0xFFFFFFFFll));
}

int SignedOf(const std::string& strValue)
{
    return static_cast<int>(ParseNumber(strValue, -0x7FFFFFFFll - 1, 0x7FFFFFFFll));
}

/// A member of a record that is read and written whole.
template <typename Record, DWORD (*pfnRead)(Record*), auto pMember>
Json ReadMember(const std::wstring&)
{
    Record record = {};
    if (pfnRead(&record) != 0)
    {
        return Json();
    }
    if constexpr (std::is_same_v<decltype(record.*pMember), std::wstring&>)
    {
        return ToUtf8(record.*pMember);
    }
    else
    {
        return record.*pMember;
    }
}

template <typename Record, DWORD (*pfnRead)(Record*), DWORD (*pfnWrite)(const Record*), auto pMember>
bool WriteMember(const std::wstring&, const std::string& strValue)
{
    Record record = {};
    if (pfnRead(&record) != 0)
    {
        return false;
    }
    if constexpr (std::is_same_v<decltype(record.*pMember), std::wstring&>)
    {
        record.*pMember = FromUtf8(strValue);
    }
    else
    {
        record.*pMember = FlagOf(strValue);
    }
    return pfnWrite(&record) == 0;
}

#define RECORD_KEY(record, read, write, member, file, form)                                                            \
    {                                                                                                                  \
#member, file, form, &ReadMember < record, &read, &record::member>, &WriteMember < record, &read, &write,      \
            &record::member>                                                                                           \
    }
#define SETTING_KEY(member, form)                                                                                      \
    RECORD_KEY(ClientSetting, ReadClientSetting, WriteClientSetting, member, "Config.ini", form)
#define SERVER_KEY(member)                                                                                             \
    RECORD_KEY(ServerConfigInfo, GetServerConfig, MakeServerConfig, member, "Config.ini", "0 or 1")
#define PLACE_KEY(member, form)                                                                                        \
    RECORD_KEY(ServerPlace, GetServerPlaceFile, MakeServerPlaceFile, member, "server.ini", form)

Json ReadDefaultNoWaterPrint(const std::wstring&)
{
    DWORD dwValue = 0;
    return GetDefSetting(&dwValue) == 0 ? Json(static_cast<int>(dwValue)) : Json();
}

bool WriteDefaultNoWaterPrint(const std::wstring&, const std::string& strValue)
{
    const DWORD dwValue = static_cast<DWORD>(SignedOf(strValue));
    DWORD dwRead = 0;
    // The writer's own status does not tell of a failed write.
    return MakeDefSetting(&dwValue) == 0 && GetDefSetting(&dwRead) == 0 && dwRead == dwValue;
}

Json ReadAddress(const std::wstring&)
{
    ServerPlace place = {};
    GetServerPlaceFile(&place);
    const BYTE* const pby = place.IPAddress;
    return std::to_string(pby[0]) + "." + std::to_string(pby[1]) + "." + std::to_string(pby[2]) + "." +
           std::to_string(pby[3]);
}

bool WriteAddress(const std::wstring&, const std::string& strValue)
{
    unsigned parts[4] = {};
    char chBehind = 0;
    if (std::sscanf(strValue.c_str(), "%u.%u.%u.%u%c", &parts[0], &parts[1], &parts[2], &parts[3], &chBehind) != 4)
    {
        throw std::invalid_argument(strValue);
    }
    ServerPlace place = {};
    GetServerPlaceFile(&place);
    for (int i = 0; i < 4; ++i)
    {
        if (parts[i] > 255)
        {
            throw std::invalid_argument(strValue);
        }
        place.IPAddress[i] = static_cast<BYTE>(parts[i]);
    }
    return MakeServerPlaceFile(&place) == 0;
}

Json ReadSharedServer(const std::wstring&)
{
    std::wstring strServer;
    GetServerPlaceFileNew(&strServer);
    return ToUtf8(strServer);
}

bool WriteSharedServer(const std::wstring&, const std::string& strValue)
{
    return MakeServerPlaceFileNew(FromUtf8(strValue)) == 0;
}

template <typename Value, DWORD (*pfnRead)(std::wstring, Value*)>
Json ReadMessage(const std::wstring& strUser)
{
    Value value = 0;
    return pfnRead(strUser, &value) == 0 ? Json(value) : Json();
}

bool WriteMessageId(const std::wstring& strUser, const std::string& strValue)
{
    return MakeUserMessageID(strUser, UnsignedOf(strValue)) == 0;
}

bool WriteSaveDays(const std::wstring& strUser, const std::string& strValue)
{
    return MakeUserMessageDays(strUser, SignedOf(strValue)) == 0;
}

/// The stored logon's bytes are its owner's; only their number is shown.
Json ReadLogon(const std::wstring&)
{
    std::vector<BYTE> bytes(1 << 20);
    int iLength = 0;
    return GetAutoLogonInfo(bytes.data(), static_cast<int>(bytes.size()), &iLength) == 0
               ? Json(std::to_string(iLength) + " bytes")
               : Json();
}

bool WriteLogon(const std::wstring&, const std::string& strValue)
{
    return MakeLogonUserName(FromUtf8(strValue).c_str()) == 0;
}

} // namespace

const std::vector<StoreKey>& StoreKeys()
{
    static const std::vector<StoreKey> keys = {
        SETTING_KEY(DisplayProjectSelection, "0 or 1"),
        SETTING_KEY(CanSelectNoPrinter, "0 or 1"),
        SETTING_KEY(CanSelectNoProject, "0 or 1"),
        SETTING_KEY(DefaultPrinter, "text"),
        SETTING_KEY(DefaultProject, "text"),
        SERVER_KEY(WaterPrintInstalled),
        SERVER_KEY(AuditInstalled),
        SERVER_KEY(SGIdentifyInstalled),
        SERVER_KEY(FilterIntalled),
        {"DefaultNoWaterPrint", "defsetting.ini", "number", &ReadDefaultNoWaterPrint, &WriteDefaultNoWaterPrint},
        PLACE_KEY(Server, "text"),
        {"IPAddress", "server.ini", "1.2.3.4", &ReadAddress, &WriteAddress},
        PLACE_KEY(Mode, "0 or 1"),
        {"SharedServer", "serverconfig.ini", "text", &ReadSharedServer, &WriteSharedServer},
        {"MessageId", "MsgConfig.ini", "number", &ReadMessage<DWORD, &GetUserMessageID>, &WriteMessageId},
        {"Interval", "MsgConfig.ini", "number", &ReadMessage<DWORD, &GetUserMsgInterval>, nullptr},
        {"SaveDays", "MsgConfig.ini", "number", &ReadMessage<int, &GetUserMessageDays>, &WriteSaveDays},
        {"LogonUserName", "passport.dat", "text", &ReadLogon, &WriteLogon},
    };
    return keys;
}

const StoreKey* FindStoreKey(const std::string& strKey)
{
    for (const StoreKey& key : StoreKeys())
    {
        if (_stricmp(key.pszKey, strKey.c_str()) == 0)
        {
            return &key;
        }
    }
    return nullptr;
}

std::wstring StoreUser(const std::string& strUser)
{
    if (!strUser.empty())
    {
        return FromUtf8(strUser);
    }
    wchar_t szUser[kUserNameUnits] = {};
    wchar_t szDomain[kDomainNameUnits] = {};
    GetCurrentUsername(szUser, szDomain);
    return szUser;
}

} // namespace VelHost
