#include "tests/AppleHelper/HelperProcess.h"

#include <csignal>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace mibrel::testing {
namespace {

// Long enough for speech on a busy machine; only there so a hung helper fails the test.
constexpr int answerWaitMilliseconds = 10 * 60 * 1000;

std::vector<std::string> changedEnvironment(const HelperProcess::Environment& changes) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry; ++entry) {
        const std::string variable(*entry);
        if (!changes.contains(variable.substr(0, variable.find('=')))) result.push_back(variable);
    }
    for (const auto& [name, value] : changes) {
        if (value) result.push_back(name + "=" + *value);
    }
    return result;
}

void makePipe(int ends[2]) {
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
}

} // namespace

HelperProcess::HelperProcess(const Environment& changes) {
    std::signal(SIGPIPE, SIG_IGN);
    int input[2], output[2], errors[2];
    makePipe(input);
    makePipe(output);
    makePipe(errors);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors[1], STDERR_FILENO);
    std::vector<std::string> environment = changedEnvironment(changes);
    std::vector<char*> envp;
    for (auto& variable : environment) envp.push_back(variable.data());
    envp.push_back(nullptr);
    std::string program = APPLE_HELPER_EXECUTABLE;
    char* argv[] = {program.data(), nullptr};
    const int spawned = posix_spawn(&m_pid, program.c_str(), &actions, nullptr, argv, envp.data());
    posix_spawn_file_actions_destroy(&actions);
    ::close(input[0]);
    ::close(output[1]);
    ::close(errors[1]);
    m_input = input[1];
    m_output = output[0];
    m_errors = errors[0];
    if (spawned != 0) throw std::runtime_error("could not start " + program);
}

HelperProcess::~HelperProcess() {
    if (m_input >= 0) ::close(m_input);
    ::close(m_output);
    ::close(m_errors);
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
}

void HelperProcess::send(std::string_view line) {
    std::string bytes(line);
    bytes.push_back('\n');
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(m_input, bytes.data() + written, bytes.size() - written);
        if (count <= 0) throw std::runtime_error("the helper does not take input any more");
        written += static_cast<std::size_t>(count);
    }
}

std::optional<std::string> HelperProcess::readLine() {
    for (;;) {
        if (const auto end = m_pending.find('\n'); end != std::string::npos) {
            std::string line = m_pending.substr(0, end);
            m_pending.erase(0, end + 1);
            return line;
        }
        pollfd ready{.fd = m_output, .events = POLLIN, .revents = 0};
        if (::poll(&ready, 1, answerWaitMilliseconds) <= 0) throw std::runtime_error("the helper did not answer");
        char buffer[65536];
        const ssize_t count = ::read(m_output, buffer, sizeof buffer);
        if (count <= 0) {
            if (m_pending.empty()) return std::nullopt;
            return std::exchange(m_pending, {});
        }
        m_pending.append(buffer, static_cast<std::size_t>(count));
    }
}

rapidjson::Document HelperProcess::ask(std::string_view line) {
    send(line);
    rapidjson::Document answer;
    if (const auto text = readLine()) answer.Parse(text->c_str());
    return answer;
}

int HelperProcess::finish(std::string& laterOutput) {
    ::close(m_input);
    m_input = -1;
    while (const auto line = readLine()) laterOutput += *line + "\n";
    int status = 0;
    ::waitpid(m_pid, &status, 0);
    m_pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace mibrel::testing
