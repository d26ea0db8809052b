#include "tests/SelfTest.h"

#include "tools/velhost/host/Files.h"

#include <catch2/catch_test_case_info.hpp>
#include <catch2/interfaces/catch_interfaces_registry_hub.hpp>
#include <catch2/interfaces/catch_interfaces_testcase.hpp>

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace
{

constexpr DWORD kCaseLimit = 300'000;  ///< milliseconds that a case may take
constexpr DWORD kEndLimit = 60'000;    ///< milliseconds that a process may take to end after its last case
constexpr UINT kChineseCodePage = 936; ///< what cases tagged [cp936] need

using Case = const Catch::TestCaseInfo*;

bool HasTag(Case pCase, const char* pszTag)
{
    return std::any_of(pCase->tags.begin(), pCase->tags.end(),
                       [pszTag](const Catch::Tag& tag) { return tag.original == pszTag; });
}

/// A kernel object's handle, closed at the end.
struct CloseIt
{
    void operator()(HANDLE h) const { CloseHandle(h); }
};
using Owned = std::unique_ptr<void, CloseIt>;

[[noreturn]] void ThrowError(const char* pszWhat)
{
    throw std::runtime_error(std::string(pszWhat) + ", error " + std::to_string(GetLastError()));
}

/// A process of this program that runs the cases it is told (--worker).
class Worker
{
public:
    Worker() { Start(); }
    ~Worker()
    {
        TerminateProcess(m_process.get(), 99);
        WaitForSingleObject(m_process.get(), kEndLimit);
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Runs a case. @return an empty text when it passed, otherwise why not; then the worker is of no more use if it
    /// is not Alive().
    std::string Run(const std::string& strName)
    {
        const std::string strLine = strName + "\n";
        DWORD cbWritten = 0;
        WriteFile(m_input.get(), strLine.data(), static_cast<DWORD>(strLine.size()), &cbWritten, nullptr);
        m_strOutput = "\n"; // which the first process's first mark lacks in front of it
        const std::string strWhy = Await(kCaseLimit, [this] { return FindEnd(); });
        return strWhy.empty() && m_iResult != 0 ? "failed" : strWhy;
    }
    /// What the last case has written.
    const std::string& Output() const { return m_strOutput; }
    bool Alive() const { return WaitForSingleObject(m_process.get(), 0) == WAIT_TIMEOUT; }
    /// Lets the process end by itself. @return an empty text when it ended well, otherwise how it ended.
    std::string Close()
    {
        m_input.reset();
        m_strOutput.clear();
        Await(kEndLimit, [] { return false; });
        DWORD dwCode = STILL_ACTIVE;
        GetExitCodeProcess(m_process.get(), &dwCode);
        return dwCode == 0              ? ""
               : dwCode == STILL_ACTIVE ? "its process did not end after its last case"
                                        : "its process ended with " + std::to_string(dwCode) + " after its last case";
    }

private:
    /// Starts the process with its input and its output in pipes of ours.
    void Start()
    {
        SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
        HANDLE hRead = nullptr;
        HANDLE hWrite = nullptr;
        if (!CreatePipe(&hRead, &hWrite, &inherited, 0))
        {
            ThrowError("no pipe");
        }
        const Owned childInput(hRead);
        m_input.reset(hWrite);
        SetHandleInformation(hWrite, HANDLE_FLAG_INHERIT, 0);
        // A named pipe, because only of such a one the end of the process can be waited for at the same time: programs
        // that the cases start may hold the pipe open for longer.
        static int s_iPipes = 0;
        const std::wstring strPipe = L"\\\\.\\pipe\\velui-selftest-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                                     std::to_wstring(++s_iPipes);
        const HANDLE hPipe = CreateNamedPipeW(strPipe.c_str(), PIPE_ACCESS_INBOUND | FILE_FLAG_OVERLAPPED, 0, 1, 65536,
                                              65536, 0, nullptr);
        if (hPipe == INVALID_HANDLE_VALUE)
        {
            ThrowError("no named pipe");
        }
        m_output.reset(hPipe);
        const HANDLE hChildOutput =
            CreateFileW(strPipe.c_str(), GENERIC_WRITE, 0, &inherited, OPEN_EXISTING, 0, nullptr);
        if (hChildOutput == INVALID_HANDLE_VALUE)
        {
            ThrowError("no end of the named pipe");
        }
        const Owned childOutput(hChildOutput);
        m_read.reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));

        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = childInput.get();
        startup.hStdOutput = startup.hStdError = childOutput.get();
        PROCESS_INFORMATION process = {};
        const std::wstring strProgram = VelHost::BesideProgram(L"veltests.exe");
        std::wstring strLine = L"\"" + strProgram + L"\" --worker";
        if (!CreateProcessW(strProgram.c_str(), strLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                            &process))
        {
            ThrowError("veltests.exe can't be started");
        }
        CloseHandle(process.hThread);
        m_process.reset(process.hProcess);
    }
    /// Takes the mark that the worker writes behind a case out of the output.
    bool FindEnd()
    {
        const size_t uiMark = m_strOutput.find("\n\x01");
        const size_t uiEnd = uiMark == std::string::npos ? uiMark : m_strOutput.find('\n', uiMark + 1);
        if (uiEnd == std::string::npos)
        {
            return false;
        }
        const std::string strMark = m_strOutput.substr(uiMark + 2, uiEnd - uiMark - 2);
        m_strOutput.erase(uiMark, uiEnd + 1 - uiMark);
        if (strMark.compare(0, 5, "ready") == 0) // of the process itself, in front of the first case
        {
            return FindEnd();
        }
        m_iResult = std::atoi(strMark.c_str());
        return true;
    }
    /// Reads what the process writes until something was found, the process has ended or the time is over.
    template <typename Found>
    std::string Await(DWORD dwLimit, Found found)
    {
        const ULONGLONG ullEnd = GetTickCount64() + dwLimit;
        for (;;)
        {
            const bool bEnded = !Alive();
            while (Read())
            {}
            if (found())
            {
                return "";
            }
            if (bEnded)
            {
                DWORD dwCode = 0;
                GetExitCodeProcess(m_process.get(), &dwCode);
                return "its process ended with " + std::to_string(dwCode);
            }
            const ULONGLONG ullNow = GetTickCount64();
            if (ullNow >= ullEnd)
            {
                TerminateProcess(m_process.get(), 99);
                WaitForSingleObject(m_process.get(), kEndLimit);
                return "did not end within " + std::to_string(dwLimit / 1000) + " s";
            }
            const HANDLE handles[] = {m_process.get(), m_read.get()};
            WaitForMultipleObjects(m_bPending ? 2 : 1, handles, FALSE, static_cast<DWORD>(ullEnd - ullNow));
        }
    }
    /// Takes what the pipe has. @return whether there may be more at once.
    bool Read()
    {
        if (!m_bPending)
        {
            m_overlapped = {};
            m_overlapped.hEvent = m_read.get();
            if (!ReadFile(m_output.get(), m_szBuffer, sizeof(m_szBuffer), nullptr, &m_overlapped) &&
                GetLastError() != ERROR_IO_PENDING)
            {
                return false;
            }
            m_bPending = true;
        }
        DWORD cbRead = 0;
        if (!GetOverlappedResult(m_output.get(), &m_overlapped, &cbRead, FALSE))
        {
            m_bPending = GetLastError() == ERROR_IO_INCOMPLETE;
            return false;
        }
        m_bPending = false;
        m_strOutput.append(m_szBuffer, cbRead);
        return true;
    }

    char m_szBuffer[4096];
    OVERLAPPED m_overlapped = {};
    bool m_bPending = false;
    Owned m_input;
    Owned m_output;
    Owned m_read;
    Owned m_process;
    std::string m_strOutput;
    int m_iResult = 0;
};

/// The run: which cases there are, and how they ended.
class SelfTest
{
public:
    explicit SelfTest(const std::vector<std::string>& parts)
    {
        for (const Case pCase : Catch::getRegistryHub().getTestCaseRegistry().getAllInfos())
        {
            if (!Wanted(pCase, parts))
            {
                continue;
            }
            if (HasTag(pCase, "cp936") && GetACP() != kChineseCodePage)
            {
                ++m_uiLeftOut;
                continue;
            }
            m_cases.push_back(pCase);
        }
    }
    int Run()
    {
        std::printf("%zu cases\n", m_cases.size());
        for (const Case pCase : m_cases)
        {
            RunCase(pCase);
            if (++m_uiDone % 50 == 0)
            {
                std::printf("%zu of %zu, %zu failed\n", m_uiDone, m_cases.size(), m_failed.size());
            }
        }
        Retire();
        for (const std::string& strName : m_failed)
        {
            std::printf("failed: %s\n", strName.c_str());
        }
        if (m_uiLeftOut != 0)
        {
            std::printf("left out: %zu cases, which need code page %u; this machine has %u\n", m_uiLeftOut,
                        kChineseCodePage, GetACP());
        }
        std::printf("selftest: %zu passed, %zu failed\n", m_uiDone - std::min(m_uiDone, m_failed.size()),
                    m_failed.size());
        return m_failed.empty() && m_uiDone != 0 ? 0 : 1;
    }

private:
    static bool Wanted(Case pCase, const std::vector<std::string>& parts)
    {
        const std::string strText = pCase->name + " " + pCase->tagsAsString() + " " + pCase->lineInfo.file;
        const auto named = [&](const std::string& strPart) {
            return pCase->isHidden() ? pCase->name == strPart : strText.find(strPart) != std::string::npos;
        };
        return (parts.empty() && !pCase->isHidden()) || std::any_of(parts.begin(), parts.end(), named);
    }
    void RunCase(Case pCase)
    {
        const bool bAlone = HasTag(pCase, "alone");
        if (bAlone)
        {
            Retire();
        }
        if (!m_pWorker)
        {
            m_pWorker = std::make_unique<Worker>();
        }
        m_pLast = pCase;
        const std::string strWhy = m_pWorker->Run(pCase->name);
        if (!strWhy.empty())
        {
            Fail(pCase, strWhy, m_pWorker->Output());
        }
        if (!m_pWorker->Alive())
        {
            m_pWorker.reset();
        }
        else if (bAlone)
        {
            Retire();
        }
    }
    /// Ends the process that ran the cases so far; one that ends badly is a failure of its last case.
    void Retire()
    {
        if (m_pWorker)
        {
            const std::string strWhy = m_pWorker->Close();
            if (!strWhy.empty())
            {
                Fail(m_pLast, strWhy, m_pWorker->Output());
            }
            m_pWorker.reset();
        }
    }
    void Fail(Case pCase, const std::string& strWhy, const std::string& strOutput)
    {
        std::printf("FAILED: %s\n  %s\n%s\n", pCase->name.c_str(), strWhy.c_str(), strOutput.c_str());
        if (std::find(m_failed.begin(), m_failed.end(), pCase->name) == m_failed.end())
        {
            m_failed.push_back(pCase->name);
        }
    }

    std::vector<Case> m_cases;
    std::vector<std::string> m_failed;
    size_t m_uiDone = 0;
    size_t m_uiLeftOut = 0;
    std::unique_ptr<Worker> m_pWorker;
    Case m_pLast = nullptr;
};

} // namespace

int RunSelfTest(const std::vector<std::string>& parts)
{
    try
    {
        return SelfTest(parts).Run();
    }
    catch (const std::exception& error)
    {
        std::printf("selftest: can't go on: %s\n", error.what());
        return 1;
    }
}
