// SPDX-License-Identifier: MIT
#include "check/CheckChild.h"

#include "border/HostLog.h"
#include "check/Check.h"

#include <fmt/format.h>
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

void reportNote(NoteKind kind, const std::string& text)
{
    writeLine({{noteKey(kind), text}});
}

/// Runs the check; anything that the library throws is a finding as well.
Line endOf(const Check& check, CheckRun& run)
{
    try {
        check.run(run);
    } catch (const CheckSkipped& skipped) {
        // What was found before takes precedence.
        if (std::ranges::all_of(NOTE_KINDS, [&](NoteKind kind) { return run.noteCount(kind) == 0; })) {
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
        // Thrown by the check itself: one from the library would have arrived as a HostError. A check that could not do
        // its work has not passed.
        run.fail(error.what());
    } catch (const std::exception& error) {
        run.fail(error.what());
    }
    Line end = {{"end", "made"}};
    for (const NoteKind kind : NOTE_KINDS) {
        end[noteKey(kind)] = run.noteCount(kind);
    }
    return end;
}

CheckVerdict verdictOf(const Line& end)
{
    if (end["end"] == "skipped") {
        return CheckVerdict::Skipped;
    }
    const auto has = [&](NoteKind kind) { return end.value(noteKey(kind), 0) != 0; };
    return has(NoteKind::Finding)      ? CheckVerdict::Failed
           : has(NoteKind::KnownLimit) ? CheckVerdict::KnownLimit
           : has(NoteKind::Warning)    ? CheckVerdict::Warned
                                       : CheckVerdict::Passed;
}

/// Adds the sentences of one line, or after the last one how many of each kind were not kept.
void addNotes(const Line& line, CheckOutcome* outcome)
{
    for (const NoteKind kind : NOTE_KINDS) {
        const auto found = line.find(noteKey(kind));
        if (found == line.end()) {
            continue;
        }
        if (found->is_string()) {
            outcome->notes[kind].push_back(*found);
            continue;
        }
        if (const auto count = found->get<std::size_t>(); count > 0) {
            std::vector<std::string>& kept = outcome->notes[kind];
            if (count > kept.size()) {
                kept.push_back(fmt::format("{} more", count - kept.size()));
            }
        }
    }
}

} // namespace

const char* verdictName(CheckVerdict verdict)
{
    switch (verdict) {
    case CheckVerdict::Passed:
        return "passed";
    case CheckVerdict::Warned:
        return "warning";
    case CheckVerdict::KnownLimit:
        return "known limit";
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

const char* noteKey(NoteKind kind)
{
    switch (kind) {
    case NoteKind::Finding:
        return "findings";
    case NoteKind::KnownLimit:
        return "knownLimits";
    case NoteKind::Warning:
        return "warnings";
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
    CheckRun run(task, reportNote);
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
        addNotes(line, outcome);
        if (!line.contains("end")) {
            continue;
        }
        outcome->verdict = verdictOf(line);
        outcome->reason = line.value("reason", "");
        outcome->refused = line.value("refused", false);
        outcome->stopCode = line.value("stop", 0);
        return true;
    }
    return false;
}
