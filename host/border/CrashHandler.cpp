// SPDX-License-Identifier: MIT
#include "border/CrashHandler.h"

#include "border/HostError.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <exception>

#include <signal.h>
#include <unistd.h>

namespace {

// After a stack overflow there is no room for the handler, so it runs on this stack.
alignas(std::max_align_t) std::array<char, 65536> signalStack;

/// Ends the process from inside a signal handler, where neither allocation nor formatting is allowed.
[[noreturn]] void endCrashed(const char* message)
{
    // Only what is safe in a signal handler: one write, then exit without running destructors.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, message, std::strlen(message));
    _exit(static_cast<int>(ExitCode::Misbehaved));
}

void onFatalSignal(int /*signal*/)
{
    endCrashed("ddphost: the library crashed\n");
}

/// Nobody can catch an exception on one of the library's threads, so it ends here.
void onTerminate()
{
    endCrashed("ddphost: an uncaught exception ended the run\n");
}

/// Installs our handler for one signal unless something else, such as a sanitizer, already handles it.
void handleUnlessHandled(int signalNumber)
{
    struct sigaction present = {};
    if (sigaction(signalNumber, nullptr, &present) != 0 || present.sa_handler != SIG_DFL) {
        return;
    }
    struct sigaction action = {};
    action.sa_handler = onFatalSignal;
    action.sa_flags = SA_ONSTACK;
    sigaction(signalNumber, &action, nullptr);
}

} // namespace

void installCrashHandler()
{
    stack_t stack = {};
    stack.ss_sp = signalStack.data();
    stack.ss_size = signalStack.size();
    sigaltstack(&stack, nullptr);
    for (const int signalNumber : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        handleUnlessHandled(signalNumber);
    }
    std::set_terminate(onTerminate);
}
