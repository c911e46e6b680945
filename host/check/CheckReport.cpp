// SPDX-License-Identifier: MIT
#include "check/CheckReport.h"

#include "border/EscapedText.h"
#include "border/ShellWord.h"
#include "output/TextTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr auto VERDICTS = std::to_array<CheckVerdict>(
    {CheckVerdict::Passed, CheckVerdict::Warned, CheckVerdict::KnownLimit, CheckVerdict::Skipped, CheckVerdict::Failed,
     CheckVerdict::TimedOut, CheckVerdict::Crashed});

/// True for the verdicts whose word has a plural.
bool isNoun(CheckVerdict verdict)
{
    return verdict == CheckVerdict::Warned || verdict == CheckVerdict::KnownLimit;
}

/// The tally in words; passed and failed are listed even if there are none.
std::string tallyText(const CheckTally& tally)
{
    std::string text;
    for (const CheckVerdict verdict : VERDICTS) {
        const auto found = tally.find(verdict);
        const std::size_t count = found == tally.end() ? 0 : found->second;
        if (count != 0 || verdict == CheckVerdict::Passed || verdict == CheckVerdict::Failed) {
            text += fmt::format("{}{} {}{}", text.empty() ? "" : ", ", count, verdictName(verdict),
                                count > 1 && isNoun(verdict) ? "s" : "");
        }
    }
    return text;
}

std::string subjectName(const CheckJob& job)
{
    return job.subject.empty() ? "library" : job.subject;
}

/// The jobs by subject, in the order of their first appearance.
std::vector<std::pair<std::string, std::vector<CheckJob>>> bySubject(const std::vector<CheckJob>& jobs)
{
    std::vector<std::pair<std::string, std::vector<CheckJob>>> groups;
    for (const CheckJob& job : jobs) {
        if (groups.empty() || groups.back().first != subjectName(job)) {
            groups.push_back({subjectName(job), {}});
        }
        groups.back().second.push_back(job);
    }
    return groups;
}

std::string subjectLines(const std::vector<CheckJob>& jobs)
{
    TextTable table({TextTable::Align::Left, TextTable::Align::Left});
    for (const auto& [subject, its] : bySubject(jobs)) {
        table.add({subject, tallyText(tallyOf(its))});
    }
    return table.text(0);
}

/// One line per job: all its sentences, and how it ended if it did not end normally.
std::string noteLine(const CheckJob& job, const std::string& userOptions)
{
    std::vector<std::string> sentences;
    for (const auto& [kind, its] : job.outcome.notes) {
        sentences.insert(sentences.end(), its.begin(), its.end());
    }
    if (!job.outcome.reason.empty()) {
        sentences.push_back(job.outcome.reason);
    }
    const std::string line =
        fmt::format("{} {} ({}): {}; repeat: {}", verdictName(job.outcome.verdict), job.check->name, subjectName(job),
                    fmt::join(sentences, "; "), repeatCommand(job, userOptions));
    return escapedControls(line) + "\n";
}

/// Checks skipped for the same reason share a line, since most samples lack the same things.
std::string skippedLines(const std::vector<CheckJob>& jobs)
{
    std::map<std::pair<std::string, std::string>, std::vector<std::string>> subjects;
    for (const CheckJob& job : jobs) {
        if (job.outcome.verdict == CheckVerdict::Skipped) {
            subjects[{std::string(job.check->name), job.outcome.reason}].push_back(subjectName(job));
        }
    }
    std::string text;
    for (const auto& [what, where] : subjects) {
        text +=
            escapedControls(fmt::format("skipped {} ({}): {}", what.first, fmt::join(where, ", "), what.second)) + "\n";
    }
    return text;
}

} // namespace

CheckTally tallyOf(const std::vector<CheckJob>& jobs)
{
    CheckTally tally;
    for (const CheckJob& job : jobs) {
        ++tally[job.outcome.verdict];
    }
    return tally;
}

std::string exactPattern(const std::string& text)
{
    std::string pattern = "^";
    for (const char c : text) {
        pattern += c == '.' ? std::string("\\.") : std::string(1, c);
    }
    return pattern + "$";
}

std::string repeatCommand(const CheckJob& job, const std::string& userOptions)
{
    const std::string include = shellWord(exactPattern(job.id()));
    if (job.sample || job.subject.empty()) {
        return fmt::format("ddphost check --include {}{}", include, userOptions);
    }
    return fmt::format("ddphost check {} --include {}{}", shellWord(job.subject), include, userOptions);
}

std::string checkText(const std::vector<CheckJob>& jobs, const std::string& userOptions, bool onlyFailed,
                      const TextStyle& style)
{
    std::string text = onlyFailed ? "" : subjectLines(jobs);
    for (const CheckJob& job : jobs) {
        const bool noted = !onlyFailed && isNoun(job.outcome.verdict);
        if (job.outcome.bad() || noted) {
            text += noteLine(job, userOptions);
        }
    }
    if (!onlyFailed) {
        text += skippedLines(jobs);
    }
    return text + fmt::format("{} check{}: {}\n{}\n", jobs.size(), jobs.size() == 1 ? "" : "s",
                              tallyText(tallyOf(jobs)), style.strong(overallVerdict(jobs)));
}

std::string overallVerdict(const std::vector<CheckJob>& jobs)
{
    CheckTally tally = tallyOf(jobs);
    if (tally.contains(CheckVerdict::Crashed)) {
        return "crashed";
    }
    if (tally.contains(CheckVerdict::Failed) || tally.contains(CheckVerdict::TimedOut)) {
        return "failed";
    }
    if (const std::size_t warned = tally[CheckVerdict::Warned], limits = tally[CheckVerdict::KnownLimit];
        warned + limits != 0) {
        std::vector<std::string> remarks;
        if (warned != 0) {
            remarks.push_back(fmt::format("{} warning{}", warned, warned == 1 ? "" : "s"));
        }
        if (limits != 0) {
            remarks.push_back(fmt::format("{} known limit{}", limits, limits == 1 ? "" : "s"));
        }
        return fmt::format("passed with {}", fmt::join(remarks, " and "));
    }
    return tally.contains(CheckVerdict::Passed) ? "passed" : "nothing was checked";
}
