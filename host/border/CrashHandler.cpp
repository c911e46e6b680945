// SPDX-License-Identifier: MIT
#include "border/CrashHandler.h"

#include "border/HostError.h"
#include "border/HostLog.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <exception>

#include <signal.h>
#include <unistd.h>

namespace {

// After a stack overflow there is no room for the handler, so it runs on this stack.
alignas(std::max_align_t) std::array<char, 65536> signalStack;

// A signal handler must not allocate, so the document waits here in full.
std::array<char, 4096> crashDocument;
std::atomic<std::size_t> crashDocumentSize = 0;

void writeAll(int descriptor, const char* bytes, std::size_t count)
{
    // Nothing can be done about a failure here.
    [[maybe_unused]] const ssize_t written = write(descriptor, bytes, count);
}

/// Ends the process from inside a signal handler, where neither allocation nor formatting is allowed.
[[noreturn]] void endCrashed(const char* message)
{
    // Only what is safe in a signal handler: writes, then exit without running destructors.
    const std::string_view pending = HostLog::pendingText();
    writeAll(STDERR_FILENO, pending.data(), pending.size());
    writeAll(STDERR_FILENO, message, std::strlen(message));
    writeAll(STDOUT_FILENO, crashDocument.data(), crashDocumentSize);
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

void setCrashDocument(const std::string& text)
{
    crashDocumentSize = 0;
    // Half a document would be worse than none.
    if (text.size() <= crashDocument.size()) {
        std::ranges::copy(text, crashDocument.begin());
        crashDocumentSize = text.size();
    }
}
