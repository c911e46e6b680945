// SPDX-License-Identifier: MIT
#include "output/FailureReport.h"

#include "border/CrashHandler.h"
#include "border/EscapedText.h"
#include "border/HostLog.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <exception>

namespace {

void put(std::FILE* stream, const std::string& text)
{
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stream));
    static_cast<void>(std::fflush(stream));
}

} // namespace

FailureReport& FailureReport::get()
{
    // Never destroyed: the thread of the signals outlives `main`.
    static auto* const report = new FailureReport;
    return *report;
}

void FailureReport::owesDocument(const std::string& command)
{
    const std::lock_guard lock(m_mutex);
    m_command = command;
    m_owes = true;
    setCrashDocument(documentOf(static_cast<int>(ExitCode::Misbehaved), "the library crashed"));
}

void FailureReport::documentStarts()
{
    const std::lock_guard lock(m_mutex);
    m_owes = false;
    setCrashDocument("");
}

void FailureReport::tell(int code, const std::string& message) noexcept
{
    try {
        HostLog::get().showErrors();
        put(stderr, "ddphost: " + escapedLines(message) + "\n");
        const std::lock_guard lock(m_mutex);
        // Another thread may hang in a write to a pipe that nobody reads, and this must not hang with it.
        if (m_owes && ftrylockfile(stdout) == 0) {
            m_owes = false;
            put(stdout, documentOf(code, message));
            funlockfile(stdout);
        }
    } catch (const std::exception&) {
        // Out of memory: the exit code alone has to say it.
    }
}

std::string FailureReport::documentOf(int code, const std::string& message) const
{
    nlohmann::ordered_json document;
    document["schema"] = "ddphost/1";
    document["command"] = m_command.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(m_command);
    document["error"] = {{"code", code}, {"name", exitCodeName(static_cast<ExitCode>(code))}, {"message", message}};
    return document.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}
