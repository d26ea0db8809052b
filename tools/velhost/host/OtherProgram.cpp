#include "tools/velhost/host/OtherProgram.h"

#include "tools/velhost/report/CommandError.h"
#include "tools/velhost/report/Encoding.h"

#include <utility>

namespace VelHost
{
namespace
{

/// Closes a handle at the end of the object's life.
class OwnedHandle
{
public:
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

private:
    HANDLE m_handle;
};

/// A pipe from another program to this one.
class OutputPipe
{
public:
    OutputPipe() : OutputPipe(Make()) {}
    HANDLE WriteEnd() const noexcept { return m_write.Get(); }
    /// Leaves the end that is written to to the other program alone.
    void CloseWriteEnd() noexcept { m_write.Close(); }
    /// Takes what waits, without waiting for more.
    void Drain(std::string& strOutput) const
    {
        DWORD cbWaiting = 0;
        while (PeekNamedPipe(m_read.Get(), nullptr, 0, nullptr, &cbWaiting, nullptr) && cbWaiting != 0)
        {
            std::string strPart(cbWaiting, '\0');
            DWORD cbRead = 0;
            if (!ReadFile(m_read.Get(), strPart.data(), cbWaiting, &cbRead, nullptr))
            {
                return;
            }
            strOutput.append(strPart, 0, cbRead);
        }
    }

private:
    explicit OutputPipe(std::pair<HANDLE, HANDLE> ends) : m_read(ends.first), m_write(ends.second) {}
    static std::pair<HANDLE, HANDLE> Make()
    {
        SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
        std::pair<HANDLE, HANDLE> ends;
        if (!CreatePipe(&ends.first, &ends.second, &inherited, 0))
        {
            ThrowCommandError("can't make a pipe");
        }
        SetHandleInformation(ends.first, HANDLE_FLAG_INHERIT, 0);
        return ends;
    }

    OwnedHandle m_read;
    OwnedHandle m_write;
};

} // namespace

ProgramRun RunProgram(const std::wstring& strCommandLine, DWORD dwMilliseconds)
{
    OutputPipe output;
    OutputPipe errors;
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output.WriteEnd();
    startup.hStdError = errors.WriteEnd();
    std::wstring strWritable = strCommandLine;
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(nullptr, strWritable.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                        &startup, &started))
    {
        ThrowCommandError("can't start " + ToUtf8(strCommandLine));
    }
    const OwnedHandle process(started.hProcess);
    const OwnedHandle thread(started.hThread);
    output.CloseWriteEnd();
    errors.CloseWriteEnd();

    // The pipes are emptied while the program runs, or it would wait for room in them. Their ends are not waited for: a
    // background process that the program brings up keeps them open.
    constexpr DWORD kLook = 20; // milliseconds
    ProgramRun run;
    const ULONGLONG ullStart = GetTickCount64();
    do
    {
        run.bEnded = WaitForSingleObject(process.Get(), kLook) == WAIT_OBJECT_0;
        output.Drain(run.strOutput);
        errors.Drain(run.strErrors);
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
