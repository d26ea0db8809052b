// A second process for tests of locks. Usage:
//   storeworker hold MUTEX READY-EVENT   takes the mutex, signals the event, and waits to be ended
//   storeworker read COUNT VIEW          asks COUNT times for the paper list
//   storeworker write COUNT VIEW         writes COUNT snapshots
//   storeworker append 100W VIEW         appends 1,000 messages of writer W, 0 to 3, to the Message.dat of the user
//   "lin"
// VIEW is the key below HKEY_CURRENT_USER that takes the place of HKEY_LOCAL_MACHINE. Prints one line and ends with 0
// when every answer was whole, with 1 when not, with 2 when it was called wrongly.

#include "state/CapabilitySnapshot.h"
#include "state/MessageFiles.h"

#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

namespace
{

constexpr DWORD kPapers = 20;

int Hold(const wchar_t* pszMutex, const wchar_t* pszReady)
{
    const HANDLE hMutex = CreateMutexW(nullptr, FALSE, pszMutex);
    const HANDLE hReady = OpenEventW(EVENT_MODIFY_STATE, FALSE, pszReady);
    if (hMutex == nullptr || hReady == nullptr || WaitForSingleObject(hMutex, 10000) != WAIT_OBJECT_0)
    {
        return 1;
    }
    SetEvent(hReady);
    Sleep(60000); // ended from outside
    return 1;
}

/// Every paper of one snapshot has the same number, so a torn answer shows.
bool ReadOnce()
{
    std::vector<WORD> papers(kPapers, 0);
    if (VelUtility::GetComputerCaps(DC_PAPERS, papers.data()) != kPapers)
    {
        return false;
    }
    for (const WORD wPaper : papers)
    {
        if (wPaper != papers[0])
        {
            return false;
        }
    }
    return true;
}

void WriteOnce(WORD wNumber)
{
    const std::vector<WORD> papers(kPapers, wNumber);
    const VelUtility::PrinterInfo info = {L"P", L"L", L"D"};
    VelUtility::PrinterCaps caps = {};
    caps.Papers = papers.data();
    caps.PapersCount = kPapers;
    VelUtility::MakePrinterConfig(&info, &caps);
}

/// Appends a message that tells its writer, its number and, by its length and letter, whether it is whole.
bool AppendOnce(int iWriter, int iNumber)
{
    char szHead[16];
    sprintf(szHead, "[%d:%04d:", iWriter, iNumber);
    const std::string strMessage = szHead + std::string(20 + 40 * iWriter, static_cast<char>('a' + iWriter)) + "]\n";
    return VelUtility::AppendUserMessageFile(L"lin", reinterpret_cast<const BYTE*>(strMessage.data()),
                                             static_cast<DWORD>(strMessage.size())) == 0;
}

} // namespace

extern "C" int wmain(int argc, wchar_t* argv[])
{
    const std::wstring strAction = argc == 4 ? argv[1] : L"";
    if (strAction == L"hold")
    {
        return Hold(argv[2], argv[3]);
    }
    HKEY hView = nullptr;
    if (strAction.empty() || RegOpenKeyExW(HKEY_CURRENT_USER, argv[3], 0, KEY_ALL_ACCESS, &hView) != ERROR_SUCCESS)
    {
        std::printf("usage: storeworker hold|read|write ARGUMENT ARGUMENT\n");
        return 2;
    }
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, hView);
    const int iArgument = _wtoi(argv[2]);
    const bool bAppends = strAction == L"append";
    const int iCount = bAppends ? 1000 : iArgument;
    int iBad = 0;
    for (int i = 0; i < iCount; ++i)
    {
        if (bAppends)
        {
            iBad += AppendOnce(iArgument - 1000, i) ? 0 : 1;
        }
        else if (strAction == L"read")
        {
            iBad += ReadOnce() ? 0 : 1;
        }
        else
        {
            WriteOnce(static_cast<WORD>(i % 1000 + 1));
        }
    }
    std::printf("done %d bad %d\n", iCount, iBad);
    return iBad == 0 ? 0 : 1;
}
