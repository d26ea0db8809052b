#include "tools/velhost/host/OtherProgram.h"

#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

namespace VelHost
{
namespace
{

/// A handle that is closed at the end of the object's life.
class OwnedHandle
{
public:
    OwnedHandle() = default;
    explicit OwnedHandle(HANDLE handle) noexcept : m_handle(handle) {}
    ~OwnedHandle() { Close(); }
    OwnedHandle(const OwnedHandle&) = delete;
    OwnedHandle& operator=(const OwnedHandle&) = delete;

    void Close() noexcept
    {
        if (m_handle != nullptr)
        {
            CloseHandle(m_handle);
            m_handle = nullptr;
        }
    }
    HANDLE Get() const noexcept { return m_handle; }
    HANDLE* Address() noexcept { return &m_handle; }

private:
    HANDLE m_handle = nullptr;
};

/// Takes what waits in a pipe, without waiting for more.
void Drain(HANDLE hPipe, std::string& strOutput)
{
    DWORD cbWaiting = 0;
    while (PeekNamedPipe(hPipe, nullptr, 0, nullptr, &cbWaiting, nullptr) && cbWaiting != 0)
    {
        std::string strPart(cbWaiting, '\0');
        DWORD cbRead = 0;
        if (!ReadFile(hPipe, strPart.data(), cbWaiting, &cbRead, nullptr))
        {
            return;
        }
        strOutput.append(strPart, 0, cbRead);
    }
}

} // namespace

ProgramRun RunProgram(const std::wstring& strCommandLine, DWORD dwMilliseconds)
{
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    OwnedHandle read;
    OwnedHandle write;
    if (!CreatePipe(read.Address(), write.Address(), &inherited, 0) ||
        !SetHandleInformation(read.Get(), HANDLE_FLAG_INHERIT, 0))
    {
        ThrowCommandError("can't make a pipe");
    }
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = write.Get();
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    std::wstring strWritable = strCommandLine;
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(nullptr, strWritable.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                        &startup, &started))
    {
        ThrowCommandError("can't start " + ToUtf8(strCommandLine));
    }
    const OwnedHandle process(started.hProcess);
    const OwnedHandle thread(started.hThread);
    write.Close();

    // The pipe is emptied while the program runs, or it would wait for room in it. Its end is not waited for: a
    // background process that the program brings up keeps the pipe open.
    constexpr DWORD kLook = 20; // milliseconds
    ProgramRun run;
    const ULONGLONG ullStart = GetTickCount64();
    do
    {
        run.bEnded = WaitForSingleObject(process.Get(), kLook) == WAIT_OBJECT_0;
        Drain(read.Get(), run.strOutput);
    } while (!run.bEnded && GetTickCount64() - ullStart < dwMilliseconds);
    if (run.bEnded)
    {
        GetExitCodeProcess(process.Get(), &run.dwExitCode);
    }
    else
    {
        TerminateProcess(process.Get(), 1);
    }
    return run;
}

} // namespace VelHost
