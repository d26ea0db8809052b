#include "tools/velhost/install/InstallRecord.h"

#include "tools/velhost/host/HostKey.h"
#include "tools/velhost/host/Spooler.h"

#include <algorithm>

namespace VelHost
{
namespace
{

struct RecordValue
{
    const wchar_t* pszName;
    std::vector<std::wstring> InstallRecord::*pTexts;
};

const RecordValue kValues[] = {
    {L"Printers", &InstallRecord::printers},
    {L"DriverFiles", &InstallRecord::driverFiles},
    {L"Files", &InstallRecord::files},
    {L"DataFolders", &InstallRecord::dataFolders},
    {L"ParentFolders", &InstallRecord::parentFolders},
};

} // namespace

InstallRecord InstallRecord::Load()
{
    InstallRecord record;
    const HostKey key = HostKey::Open(kRecordKey);
    for (const RecordValue& value : kValues)
    {
        record.*value.pTexts = key.Texts(value.pszName);
    }
    return record;
}

void InstallRecord::Save() const
{
    HostKey key = HostKey::Create(kRecordKey);
    for (const RecordValue& value : kValues)
    {
        key.SetTexts(value.pszName, this->*value.pTexts);
    }
}

void InstallRecord::Erase()
{
    {
        HostKey key = HostKey::Open(kRecordKey);
        for (const RecordValue& value : kValues)
        {
            key.DeleteValue(value.pszName);
        }
    }
    DeleteKeyIfEmpty(kRecordKey);
}

void AddOnce(std::vector<std::wstring>& texts, const std::wstring& strText)
{
    const bool bThere = std::any_of(texts.begin(), texts.end(),
                                    [&strText](const std::wstring& strOther) { return IsSameName(strOther, strText); });
    if (!bThere)
    {
        texts.push_back(strText);
    }
}

} // namespace VelHost
