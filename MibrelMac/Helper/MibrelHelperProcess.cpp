#include "MibrelMac/Helper/MibrelHelperProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace mibrel {
namespace {

// A write to a helper that has died must come back as an error, not end this program.
void ignoreBrokenPipes() {
    static std::once_flag once;
    std::call_once(once, [] { std::signal(SIGPIPE, SIG_IGN); });
}

struct Pipe {
    int read = -1;
    int write = -1;
};

void closeQuietly(int& fd) noexcept {
    if (fd >= 0) ::close(fd);
    fd = -1;
}

// The three pipes, or none of them.
std::array<Pipe, 3> makePipes() {
    std::array<Pipe, 3> pipes;
    for (Pipe& pipe : pipes) {
        std::array<int, 2> fds{-1, -1};
        if (::pipe2(fds.data(), O_CLOEXEC) != 0) {
            const int error = errno;
            for (Pipe& made : pipes) {
                closeQuietly(made.read);
                closeQuietly(made.write);
            }
            throw std::system_error(error, std::generic_category(), "The transcription helper could not be started");
        }
        pipe = {fds[0], fds[1]};
    }
    return pipes;
}

// Spawns with the child's ends of the pipes on its standard streams; the parent's copies
// of those ends are closed either way.
pid_t spawn(const std::filesystem::path& executable, Pipe& in, Pipe& out, Pipe& err) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in.read, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out.write, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err.write, STDERR_FILENO);
    std::string program = executable.string();
    std::array<char*, 2> argv{program.data(), nullptr};
    pid_t pid = -1;
    const int status = ::posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    closeQuietly(in.read);
    closeQuietly(out.write);
    closeQuietly(err.write);
    if (status != 0) {
        closeQuietly(in.write);
        closeQuietly(out.read);
        closeQuietly(err.read);
        throw std::system_error(status, std::generic_category(), "The transcription helper could not be started");
    }
    return pid;
}

} // namespace

std::unique_ptr<MibrelHelperProcess> MibrelHelperProcess::launch(const std::filesystem::path& executable) {
    ignoreBrokenPipes();
    auto [in, out, err] = makePipes();
    const pid_t pid = spawn(executable, in, out, err);
    return std::unique_ptr<MibrelHelperProcess>(new MibrelHelperProcess(pid, in.write, out.read, err.read));
}

MibrelHelperProcess::MibrelHelperProcess(pid_t pid, int input, int output, int error)
    : m_pid(pid), m_input(input), m_output(output), m_error(error) {}

MibrelHelperProcess::~MibrelHelperProcess() {
    closePipes();
    terminate();
}

bool MibrelHelperProcess::isRunning() {
    if (m_reaped) return false;
    int status = 0;
    const pid_t result = ::waitpid(m_pid, &status, WNOHANG);
    if (result == 0) return true;
    m_reaped = true;
    return false;
}

void MibrelHelperProcess::write(std::string_view bytes) noexcept {
    while (!bytes.empty() && m_input >= 0) {
        const ssize_t written = ::write(m_input, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

std::optional<char> MibrelHelperProcess::readByte() noexcept {
    char byte = 0;
    for (;;) {
        const ssize_t count = ::read(m_output, &byte, 1);
        if (count == 1) return byte;
        if (count < 0 && errno == EINTR) continue;
        return std::nullopt;
    }
}

void MibrelHelperProcess::closePipes() noexcept {
    closeQuietly(m_input);
    closeQuietly(m_output);
    closeQuietly(m_error);
}

// Asks the child to stop and collects its exit in the background, so that nothing waits
// here and no finished child lingers.
void MibrelHelperProcess::terminate() noexcept {
    if (!isRunning()) return;
    ::kill(m_pid, SIGTERM);
    m_reaped = true;
    try {
        std::thread([pid = m_pid] { ::waitpid(pid, nullptr, 0); }).detach();
    } catch (const std::system_error&) {
        // No thread to spare: the child is collected when this program ends.
    }
}

} // namespace mibrel
