#pragma once
/// Work of the module with each of a list of platform functions failing at each of its calls.

#include "tests/common/ClientFixture.h"
#include "tests/common/Handles.h"
#include "tests/common/TextsFrom.h"
#include "tests/faults/FaultPoint.h"
#include "tests/faults/FaultTable.h"
#include "tests/ui/SheetDataFixture.h"

#include "state/FileLocker.h"

#include <catch2/catch_test_macros.hpp>

#include <cstdio>
#include <map>
#include <new>
#include <string>
#include <vector>

using FaultyFunctions = std::vector<FaultyFunction>;

/// A client whose files stand as they were before each run.
struct FaultFixture : ClientFixture
{
    FaultFixture() { Restore(); }

    /// The store's files as each run finds them.
    void Restore() const
    {
        WriteCaps(PaperKeys(kPapers, kAbleKeys));
        WriteFileBytes(DevModeFile(), BytesOf(PlainRecord().stuDevmode));
        WriteFileBytes(folder.File(L"QPS@VEL_passport.dat"), "pass");
        WriteFileBytes(folder.File(L"lin_Message.dat"), "old");
        DeleteFileW(folder.File(L"QPS@VEL_server.ini").c_str());
        WriteFileBytes(folder.File(L"QPS@VEL_defsetting.ini"), "[PrintSetting]\r\nDefaultNoWaterPrint=0\r\n");
    }
    std::wstring DevModeFile() const { return folder.File(L"QPS@VEL_DevMode.dat"); }
    static std::string BytesOf(const DEVMODEW& record)
    {
        return std::string(reinterpret_cast<const char*>(&record), sizeof(record));
    }
    /// Whether the lock of a file is to be had.
    static bool IsFree(const std::wstring& strFile)
    {
        VelUtility::CFileLocker locker(strFile.c_str());
        const bool bFree = locker.Lock(0) == 1;
        locker.Unlock();
        return bFree;
    }

    /// Runs work with each function failing at each of its calls, once alone and once with all calls behind it failing
    /// too. Every run must leave the handles and the locks as they were, and afterwards the work must do again. What
    /// was reached must be what docs/faults.md says.
    /// @param work does the work, and tells whether its result is a documented one. Memory that
    ///             the C++ library can't get is documented to leave the module as an exception.
    /// @param check tells, behind the work and without a failure, whether the files are as documented.
    template <typename Work, typename Check>
    void Inject(const char* pszWork, const FaultyFunctions& functions, Work work, Check check)
    {
        REQUIRE(work()); // without a failure
        REQUIRE(check());
        std::map<std::string, int> reached;
        for (const FaultyFunction& function : functions)
        {
            reached[function.pszName] = InjectFunction(pszWork, function, work, check);
        }
        TellRow(pszWork, functions, reached);
        CheckFaultRow(pszWork, reached);
        Restore();
        CHECK(work());
        CHECK(check());
    }
    template <typename Work>
    void Inject(const char* pszWork, const FaultyFunctions& functions, Work work)
    {
        Inject(pszWork, functions, work, [] { return true; });
    }
    /// Whether a call of this function has failed in the present run.
    bool Failed(const char* pszFunction) const { return m_strFailing == pszFunction && FaultScope::Reached(); }
    /// Whether a call of the one function that can fail has failed in the present run.
    bool AnyFailed() const { return !m_strFailing.empty() && FaultScope::Reached(); }
    /// Prints a row of the table in docs/faults.md, for whoever has to change it.
    static void TellRow(const char* pszWork, const FaultyFunctions& functions,
                        const std::map<std::string, int>& reached)
    {
        std::string strRow;
        for (const FaultyFunction& function : functions)
        {
            if (const int iPoints = reached.at(function.pszName); iPoints != 0)
            {
                strRow +=
                    (strRow.empty() ? "`" : ", `") + std::string(function.pszName) + "` " + std::to_string(iPoints);
            }
        }
        std::printf("faults: | %s | %s |\n", pszWork, strRow.c_str());
    }

    HMODULE hFaulty = nullptr; ///< whose calls fail; null for the test program's

private:
    /// Where a long run of calls is left: behind so many, one call is like the others.
    static constexpr int kMostCalls = 200;

    /// @return how many failures were reached.
    template <typename Work, typename Check>
    int InjectFunction(const char* pszWork, const FaultyFunction& function, Work work, Check check)
    {
        int iPoints = 0;
        m_strFailing = function.pszName;
        for (const bool bOnwards : {false, true})
        {
            bool bReached = true;
            for (int iFailing = 1; bReached && iFailing <= kMostCalls; ++iFailing)
            {
                CAPTURE(pszWork, function.pszName, iFailing, bOnwards);
                Restore();
                const size_t uiHandle = NextHandle();
                bool bDocumented = false;
                {
                    const FaultScope scope(hFaulty, function, iFailing, bOnwards);
                    try
                    {
                        bDocumented = work();
                    }
                    catch (const std::bad_alloc&)
                    {
                        bDocumented = Failed("malloc");
                    }
                    bReached = FaultScope::Reached();
                }
                CHECK(bDocumented);
                CHECK(check());
                CHECK(NextHandle() == uiHandle);
                CHECK(IsFree(ConfigFile()));
                CHECK(IsFree(DevModeFile()));
                iPoints += bReached ? 1 : 0;
            }
        }
        m_strFailing.clear();
        return iPoints;
    }

    std::string m_strFailing;
};
