#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>

#include <sys/types.h>

namespace mibrel {

// A child program with a pipe on each of its three standard streams. Standard error is
// kept open but never read, so the child does not die writing to it.
class MibrelHelperProcess {
public:
    // Starts `executable` with no arguments and this process's environment. Throws
    // std::system_error when it cannot be started.
    static std::unique_ptr<MibrelHelperProcess> launch(const std::filesystem::path& executable);

    MibrelHelperProcess(const MibrelHelperProcess&) = delete;
    MibrelHelperProcess& operator=(const MibrelHelperProcess&) = delete;
    // Closes the pipes and asks a running child to stop, without waiting for it.
    ~MibrelHelperProcess();

    bool isRunning();
    bool hasPipes() const { return m_input >= 0 && m_output >= 0; }
    // Unchecked: a child that is gone shows itself as the end of its output.
    void write(std::string_view bytes) noexcept;
    // One byte of the child's output; absent at its end or on a read error.
    std::optional<char> readByte() noexcept;

private:
    MibrelHelperProcess(pid_t pid, int input, int output, int error);

    void closePipes() noexcept;
    void terminate() noexcept;

    pid_t m_pid;
    bool m_reaped = false;
    int m_input;
    int m_output;
    int m_error;
};

} // namespace mibrel
