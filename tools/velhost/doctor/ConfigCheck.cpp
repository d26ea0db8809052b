#include "tools/velhost/doctor/ConfigCheck.h"

#include "state/CapabilitySnapshot.h"
#include "state/FileLocker.h"
#include "state/StoreTypes.h"
#include "tools/velhost/doctor/CapsCheck.h"
#include "tools/velhost/host/Files.h"
#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <algorithm>

namespace VelHost
{
namespace
{

using namespace VelUtility;

constexpr char kArea[] = "Config.ini";

/// More than some thousand papers need. The profile functions read a file whole, for each key when it is new.
constexpr LONGLONG kMostBytes = 1024 * 1024;

/// How often the lock is looked at, and the time between two looks. A query holds it for some milliseconds.
constexpr int kLooks = 5;
constexpr DWORD kBetweenLooks = 100; // milliseconds

constexpr char kUtf16Mark[] = "\xFF\xFE";

/// Opens the file as readers do.
/// @return whether it is there, opens, and is no larger than a snapshot can be; what is wrong else has been told.
bool ReadWhole(const std::wstring& strFile, std::string& strBytes, Findings& findings)
{
    const LookedAtFile file(strFile);
    if (file.Error() != ERROR_SUCCESS)
    {
        findings.Add(file.IsAbsent() ? "CFG01" : "CFG02", strFile,
                     FromUtf8(Win32ErrorText("can't open it", file.Error())));
        return false;
    }
    if (file.Bytes() == 0)
    {
        findings.Add("CFG04", strFile, L"0 bytes");
        return false;
    }
    if (file.Bytes() > kMostBytes)
    {
        findings.Add("CFG05", strFile, std::to_wstring(file.Bytes()) + L" bytes; it was not read");
        return false;
    }
    std::optional<std::string> strRead = file.Read(static_cast<size_t>(file.Bytes()));
    if (!strRead)
    {
        findings.Add("CFG02", strFile, FromUtf8(Win32ErrorText("can't read it", GetLastError())));
        return false;
    }
    strBytes = std::move(*strRead);
    return true;
}

/// Only UTF-16 with its mark keeps every name; all else is read in the code page of whoever reads.
void CheckEncoding(const std::wstring& strFile, const std::string& strBytes, Findings& findings)
{
    if (strBytes.compare(0, 2, kUtf16Mark) == 0)
    {
        return;
    }
    const auto uiBeyond = std::count_if(strBytes.begin(), strBytes.end(), [](char c) { return c < 0 || c == '\0'; });
    const auto uiLost = std::count(strBytes.begin(), strBytes.end(), '?');
    if (uiBeyond != 0)
    {
        findings.Add("CFG06", strFile,
                     std::to_wstring(uiBeyond) + L" bytes beyond ASCII: read in another code page "
                                                 L"than they were written in, names change");
    }
    else if (uiLost != 0)
    {
        findings.Add("CFG06", strFile,
                     std::to_wstring(uiLost) + L" question marks, which stand for letters that the "
                                               L"writer's code page lacked");
    }
}

/// Waits for nothing: each look takes the lock, when it is free, and gives it back.
void CheckLock(const std::wstring& strFile, Findings& findings)
{
    CFileLocker locker(strFile.c_str());
    for (int i = 0; i < kLooks; ++i)
    {
        const bool bFree = locker.Lock(0) != 0;
        locker.Unlock(); // one that its owner left behind is ours too, although it did not count as free
        if (bFree)
        {
            return;
        }
        Sleep(kBetweenLooks);
    }
    const bool bMade = locker.pMutex && locker.pMutex->hMutex != nullptr;
    findings.Add("CFG08", strFile,
                 bMade ? L"not free for half a second; Windows does not tell who holds a mutex"
                       : L"something else has its name, or it can't be had; the module then works without it");
}

bool HasSection(const std::wstring& strFile)
{
    wchar_t szStart[8] = {};
    return GetPrivateProfileSectionW(kCapsSection, szStart, static_cast<DWORD>(std::size(szStart)), strFile.c_str()) !=
           0;
}

} // namespace

const std::vector<FindingKind>& ConfigKinds()
{
    static const std::vector<FindingKind> s_kinds = {
        {"CFG01", "Config.ini is missing", "Put one into TempDir: the client's own, or velhost snapshot's."},
        {"CFG02", "Config.ini can't be read",
         "Close who holds the file open, mend its rights, remove a folder of its name."},
        {"CFG03", "The path of Config.ini is too long", "Move the client: TempDir may have 127 characters."},
        {"CFG04", "Config.ini is empty", "Take the snapshot anew (velhost snapshot), or restore the file."},
        {"CFG05", "Config.ini is too large to be one", "Look what it is; replace it by the client's own."},
        {"CFG06", "Config.ini is not in UTF-16 and has letters beyond ASCII",
         "Save it as UTF-16 (\"Unicode\" in Notepad), and mend the names that are damaged already."},
        {"CFG07", "Config.ini has no section DeviceCapabilities", "Take the snapshot (velhost snapshot)."},
        {"CFG08", "The lock of Config.ini is held", "End the program that hangs: every query waits for it meanwhile."},
    };
    return s_kinds;
}

void CheckConfigFile(const std::wstring& strFile, Findings& findings)
{
    const size_t uiBefore = findings.List().size();
    if (strFile.size() >= MAX_PATH)
    {
        findings.Add("CFG03", strFile, std::to_wstring(strFile.size()) + L" characters");
        return;
    }
    if (IsFolder(strFile))
    {
        findings.Add("CFG02", strFile, L"a folder has its name");
        return;
    }
    std::string strBytes;
    if (!ReadWhole(strFile, strBytes, findings))
    {
        return;
    }
    CheckEncoding(strFile, strBytes, findings);
    CheckLock(strFile, findings);
    if (!HasSection(strFile))
    {
        findings.Add("CFG07", strFile, L"applications are refused all that it should tell");
        return;
    }
    const FileSnapshot snapshot(strFile);
    if (CheckCaps(snapshot, strFile, findings) && findings.List().size() == uiBefore)
    {
        const auto count = [&](WORD iDevCap) { return std::to_wstring(snapshot.Number(FindCapRow(iDevCap)->pszKey)); };
        findings.Good(kArea, strFile + L": " + count(DC_PAPERS) + L" papers, " + count(DC_BINS) + L" bins, " +
                                 count(DC_MEDIATYPES) + L" media types; no one holds its lock");
    }
}

} // namespace VelHost
