// SPDX-License-Identifier: MIT
#include "check/CheckChild.h"

#include "border/HostLog.h"
#include "check/Check.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>

#include <unistd.h>

namespace {

using Line = nlohmann::ordered_json;

/// Writes one line immediately, so that it gets out before a crash. If the parent is gone, nobody reads the line, so a
/// failed write does not matter.
void writeLine(const Line& line)
{
    const std::string text = line.dump(-1, ' ', false, Line::error_handler_t::replace) + "\n";
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(RESULT_DESCRIPTOR, text.data() + written, text.size() - written);
        if (count <= 0) {
            return;
        }
        written += static_cast<std::size_t>(count);
    }
}

void reportFinding(const std::string& finding)
{
    writeLine({{"finding", finding}});
}

/// Runs the check; anything that the library throws is a finding as well.
Line endOf(const Check& check, CheckRun& run)
{
    try {
        check.run(run);
    } catch (const CheckSkipped& skipped) {
        // Earlier findings take precedence.
        if (run.findingCount() == 0) {
            return {{"end", "skipped"}, {"reason", skipped.reason}};
        }
    } catch (const HostError& error) {
        // Neither is the library's fault: a file that is not a library, and a setting that it does not have.
        if ((error.code() == ExitCode::LibraryRefused && !run.hasLoaded()) || error.code() == ExitCode::Usage) {
            return {{"end", "skipped"}, {"reason", error.what()}, {"stop", static_cast<int>(error.code())}};
        }
        // Only the opening check may find a case refused; if a case has opened once, a later refusal is a fault.
        if (error.code() == ExitCode::CaseRefused && &check == &openingCheck()) {
            return {{"end", "skipped"}, {"reason", error.what()}, {"refused", true}};
        }
        run.fail(error.what());
    } catch (const std::filesystem::filesystem_error& error) {
        // Thrown by the check itself: one from the library would have arrived as a HostError.
        return {{"end", "skipped"}, {"reason", error.what()}};
    } catch (const std::exception& error) {
        run.fail(error.what());
    }
    return {{"end", "made"}, {"findings", run.findingCount()}};
}

CheckVerdict verdictOf(const Line& end)
{
    if (end["end"] == "skipped") {
        return CheckVerdict::Skipped;
    }
    return end["findings"] == 0 ? CheckVerdict::Passed : CheckVerdict::Failed;
}

} // namespace

const char* verdictName(CheckVerdict verdict)
{
    switch (verdict) {
    case CheckVerdict::Passed:
        return "passed";
    case CheckVerdict::Skipped:
        return "skipped";
    case CheckVerdict::Failed:
        return "failed";
    case CheckVerdict::TimedOut:
        return "timed out";
    case CheckVerdict::Crashed:
        return "crashed";
    }
    return "";
}

void runCheckChild(std::string_view checkName, const CheckTask& task)
{
    const Check* const check = findCheck(checkName);
    if (check == nullptr) {
        throw HostError(ExitCode::Usage, "there is no check named " + std::string(checkName));
    }
    HostLog::get().setShownLevel(0);
    CheckRun run(task, reportFinding);
    writeLine(endOf(*check, run));
}

bool readCheckResult(const std::string& text, CheckOutcome* outcome)
{
    std::istringstream lines(text);
    for (std::string raw; std::getline(lines, raw);) {
        const Line line = Line::parse(raw, nullptr, false);
        if (line.is_discarded()) {
            return false;
        }
        if (!line.contains("end")) {
            outcome->findings.push_back(line["finding"]);
            continue;
        }
        outcome->verdict = verdictOf(line);
        outcome->reason = line.value("reason", "");
        outcome->refused = line.value("refused", false);
        outcome->stopCode = line.value("stop", 0);
        const std::size_t count = line.value("findings", std::size_t{0});
        if (count > outcome->findings.size()) {
            outcome->findings.push_back(std::to_string(count - outcome->findings.size()) + " more findings");
        }
        return true;
    }
    return false;
}
