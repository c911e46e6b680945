// SPDX-License-Identifier: MIT
#include "check/CheckProcess.h"

#include "border/HostError.h"
#include "check/CheckChild.h"

#include <fmt/format.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// A library that prints in an endless loop must not fill the memory of the program that waits for it.
constexpr std::size_t MOST_OUTPUT = 1 << 20;

[[noreturn]] void fail(const char* what, int error)
{
    throw HostError(ExitCode::Misbehaved, fmt::format("cannot {} for a check: {}", what, std::strerror(error)));
}

/// Both ends of a pipe that no other child inherits. The read end does not block.
std::array<int, 2> makePipe()
{
    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail("create a pipe", errno);
    }
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    return ends;
}

/// How the new process differs from this one; released at the end of the scope.
struct SpawnPlan
{
    posix_spawn_file_actions_t actions = {};
    posix_spawnattr_t attributes = {};

    SpawnPlan(int resultEnd, int outputEnd)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, outputEnd, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, outputEnd, STDERR_FILENO);
        posix_spawn_file_actions_adddup2(&actions, resultEnd, RESULT_DESCRIPTOR);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        sigset_t ignored = {};
        sigemptyset(&ignored);
        sigaddset(&ignored, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes, &ignored);
        sigset_t none = {};
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes, &none);
    }

    ~SpawnPlan()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }

    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;
};

/// The last line of a text, which usually says why a process crashed.
std::string lastLine(std::string text)
{
    while (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return text.substr(text.rfind('\n') + 1);
}

} // namespace

CheckProcess::CheckProcess(const std::vector<std::string>& arguments)
{
    const std::array<int, 2> result = makePipe();
    const std::array<int, 2> output = makePipe();
    m_result.descriptor = result[0];
    m_output.descriptor = output[0];
    std::vector<char*> argumentList;
    argumentList.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        argumentList.push_back(const_cast<char*>(argument.c_str()));
    }
    argumentList.push_back(nullptr);
    const SpawnPlan plan(result[1], output[1]);
    const int error =
        posix_spawn(&m_process, "/proc/self/exe", &plan.actions, &plan.attributes, argumentList.data(), environ);
    ::close(result[1]);
    ::close(output[1]);
    if (error != 0) {
        m_process = -1;
        m_result.close();
        m_output.close();
        fail("start a process", error);
    }
}

CheckProcess::~CheckProcess()
{
    // The group outlives its first process if that has left children running.
    kill();
    if (m_process > 0 && !m_ended) {
        waitpid(m_process, &m_status, 0);
    }
    m_result.close();
    m_output.close();
}

void CheckProcess::kill() const
{
    if (m_process > 0) {
        ::kill(-m_process, SIGKILL);
    }
}

bool CheckProcess::advance(std::chrono::duration<double> limit)
{
    // Checked before reading: once a process has ended, all its output is in the pipe.
    m_ended = m_ended || waitpid(m_process, &m_status, WNOHANG) == m_process;
    m_result.drain();
    m_output.drain();
    m_limit = limit.count();
    m_seconds = std::chrono::duration<double>(Clock::now() - m_start).count();
    if (!m_ended && !m_timedOut && m_seconds > m_limit) {
        m_timedOut = true;
        kill();
    }
    return m_ended;
}

CheckOutcome CheckProcess::outcome() const
{
    CheckOutcome outcome;
    outcome.seconds = m_seconds;
    const bool complete = readCheckResult(m_result.text, &outcome);
    if (m_timedOut) {
        outcome.verdict = CheckVerdict::TimedOut;
        outcome.reason = fmt::format("still running after {} seconds", m_limit);
    } else if (!complete || !WIFEXITED(m_status) || WEXITSTATUS(m_status) != 0) {
        outcome.verdict = CheckVerdict::Crashed;
        const std::string how = WIFSIGNALED(m_status) ? fmt::format("by signal {}", WTERMSIG(m_status))
                                                      : fmt::format("with code {}", WEXITSTATUS(m_status));
        outcome.reason = fmt::format("the process ended {}: {}", how, lastLine(m_output.text));
    }
    return outcome;
}

void CheckProcess::Channel::drain()
{
    std::array<char, 4096> buffer = {};
    while (descriptor >= 0) {
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count > 0) {
            text.append(buffer.data(), text.size() < MOST_OUTPUT ? static_cast<std::size_t>(count) : 0);
        } else if (count == 0) {
            close();
        } else {
            return;
        }
    }
}

void CheckProcess::Channel::close()
{
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}
