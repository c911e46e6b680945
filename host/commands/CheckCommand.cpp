// SPDX-License-Identifier: MIT
#include "border/PluginLibrary.h"
#include "border/ShellWord.h"
#include "check/CheckChild.h"
#include "check/CheckReport.h"
#include "check/CheckRunner.h"
#include "check/SampleSet.h"
#include "commands/Commands.h"
#include "output/Interrupt.h"
#include "output/ProgressBar.h"
#include "output/TextTable.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <map>
#include <regex>
#include <thread>

#include <sys/prctl.h>

namespace {

struct CheckArguments
{
    std::vector<std::string> casePaths;
    std::string include;
    std::string exclude;
    bool onlyFailed = false;
    bool list = false;
    std::size_t jobs = std::max(1U, std::thread::hardware_concurrency());
    double timeLimit = 60;
};

/// A folder for samples, copies and other files of the checks, removed at the end of the run.
class WorkFolder
{
public:
    WorkFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "ddphost-check-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw HostError(ExitCode::CannotWrite, fmt::format("cannot create {}: {}", pattern, std::strerror(errno)));
        }
        m_path = pattern;
    }

    ~WorkFolder() { remove(); }

    void remove() const
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

std::regex patternOf(const std::string& option, const std::string& text)
{
    try {
        return std::regex(text);
    } catch (const std::regex_error& error) {
        throw HostError(ExitCode::Usage,
                        fmt::format("{}: '{}' is not a regular expression ({})", option, text, error.what()));
    }
}

/// Follows the name of a sample that is read extended.
constexpr std::string_view EXTENDED_SUFFIX = "/extended";

/// Selects the jobs that match the user's patterns.
class JobFilter
{
public:
    explicit JobFilter(const CheckArguments& arguments)
        : m_include(patternOf("--include", arguments.include)), m_exclude(patternOf("--exclude", arguments.exclude)),
          m_excludes(!arguments.exclude.empty())
    {}

    bool includes(const CheckJob& job) const { return std::regex_search(job.id(), m_include); }

    bool takes(const CheckJob& job) const
    {
        return includes(job) && !(m_excludes && std::regex_search(job.id(), m_exclude));
    }

private:
    std::regex m_include;
    std::regex m_exclude;
    bool m_excludes; ///< needed because an empty pattern matches every text
};

/// Why no job is left, in words that help to find a pattern that leaves some.
HostError nothingMatches(const CheckArguments& arguments, bool someIncluded)
{
    std::string why = fmt::format("no check matches --include '{}'", arguments.include);
    if (someIncluded) {
        why = fmt::format("--exclude '{}' leaves no check", arguments.exclude);
    } else if (!arguments.casePaths.empty() && arguments.include.find('@') != std::string::npos) {
        why += "; only checks of samples have a name with '@', and with a CASE no samples are checked";
    }
    return HostError(ExitCode::Usage, why + "; 'ddphost check --list' shows all checks");
}

/// All jobs that match the patterns. Samples have no path yet, as they are not written yet.
std::vector<CheckJob> planJobs(const CheckArguments& arguments)
{
    const JobFilter filter(arguments);
    std::vector<CheckJob> jobs;
    bool someIncluded = false;
    const auto addAll = [&](bool needsCase, const std::string& subject, bool sample) {
        for (const Check& check : allChecks()) {
            CheckJob job = {&check, subject, sample ? "" : subject, sample, {}, {}};
            if (check.needsCase != needsCase) {
                continue;
            }
            someIncluded = someIncluded || filter.includes(job);
            if (filter.takes(job)) {
                jobs.push_back(std::move(job));
            }
        }
    };
    addAll(false, "", false);
    for (const std::string& casePath : arguments.casePaths) {
        addAll(true, casePath, false);
    }
    if (arguments.casePaths.empty()) {
        for (const std::string& name : sampleNames()) {
            addAll(true, name, true);
        }
        for (const std::string& name : sampleNames()) {
            addAll(true, name + std::string(EXTENDED_SUFFIX), true);
        }
    }
    if (jobs.empty()) {
        throw nothingMatches(arguments, someIncluded);
    }
    return jobs;
}

/// Refuses cases that the library does not open, before doing anything else. If the library crashes over one, the
/// checks report that.
void probeCases(const std::vector<CheckJob>& jobs, const CheckRunOptions& options, const InterruptWait& interrupt)
{
    std::vector<CheckJob> probes;
    for (const CheckJob& job : jobs) {
        if (!job.casePath.empty() && (probes.empty() || probes.back().casePath != job.casePath)) {
            probes.push_back({&openingCheck(), job.subject, job.casePath, false, {}, {}});
        }
    }
    runChecks(
        &probes, options, [] {}, [&] { return !interrupt.waitFor(0); });
    for (const CheckJob& probe : probes) {
        if (probe.outcome.refused) {
            throw HostError(ExitCode::CaseRefused, probe.outcome.reason);
        }
    }
}

void writeSamples(const std::filesystem::path& folder, std::vector<CheckJob>* jobs)
{
    std::map<std::string, WrittenSample> written;
    for (CheckJob& job : *jobs) {
        if (job.sample) {
            const std::string name = job.subject.substr(0, job.subject.find('/'));
            if (!written.contains(name)) {
                written[name] = writeSample(name, folder);
            }
            job.casePath = written[name].folder;
            job.settings = written[name].settings;
            if (job.subject.ends_with(EXTENDED_SUFFIX)) {
                job.settings.push_back(std::string(HostOptions::EXTENDED_READING) + "=on");
            }
        }
    }
}

/// The options of this run that are needed to reproduce it, each after a space.
std::string repeatedOptions(const HostContext& context, const CheckArguments& arguments)
{
    std::string text;
    const auto add = [&](const std::string& name, const std::string& value) {
        text += " " + name + " " + shellWord(value);
    };
    if (const std::string plugin = PluginLibrary::namedFile(context.options.plugin); !plugin.empty()) {
        add("--plugin", plugin);
    }
    for (const std::string& setting : context.options.allSettings()) {
        add("--set", setting);
    }
    if (context.options.threads > 0) {
        add("--threads", std::to_string(context.options.threads));
    }
    if (arguments.timeLimit != CheckArguments().timeLimit) {
        add("--timeout", fmt::format("{}", arguments.timeLimit));
    }
    return text;
}

nlohmann::ordered_json checkDocument(const std::vector<CheckJob>& jobs, const std::string& library,
                                     const std::string& userOptions, bool onlyFailed)
{
    nlohmann::ordered_json document = newDocument("check");
    document["library"] = library;
    document["checks"] = nlohmann::ordered_json::array();
    for (const CheckJob& job : jobs) {
        if (onlyFailed && !job.outcome.bad()) {
            continue;
        }
        nlohmann::ordered_json entry = {{"name", job.check->name},
                                        {"claim", job.check->claim},
                                        {"case", nullptr},
                                        {"verdict", verdictName(job.outcome.verdict)}};
        if (!job.subject.empty()) {
            entry["case"] = job.subject;
        }
        for (const NoteKind kind : NOTE_KINDS) {
            const auto found = job.outcome.notes.find(kind);
            entry[noteKey(kind)] = found == job.outcome.notes.end() ? std::vector<std::string>() : found->second;
        }
        entry["reason"] = job.outcome.reason;
        entry["seconds"] = job.outcome.seconds;
        entry["repeat"] = repeatCommand(job, userOptions);
        document["checks"].push_back(entry);
    }
    for (const auto& [verdict, count] : tallyOf(jobs)) {
        document["tally"][verdictName(verdict)] = count;
    }
    document["verdict"] = overallVerdict(jobs);
    return document;
}

/// A run that checks nothing must not count as a success. Warnings are about the case and known limits no news, so
/// neither fails a run.
ExitCode exitCodeOf(const std::vector<CheckJob>& jobs)
{
    const CheckTally tally = tallyOf(jobs);
    if (tally.contains(CheckVerdict::Crashed)) {
        return ExitCode::Misbehaved;
    }
    if (tally.contains(CheckVerdict::Failed) || tally.contains(CheckVerdict::TimedOut)) {
        return ExitCode::Findings;
    }
    const bool checked = tally.contains(CheckVerdict::Passed) || tally.contains(CheckVerdict::Warned) ||
                         tally.contains(CheckVerdict::KnownLimit);
    return checked ? ExitCode::Good : ExitCode::Usage;
}

/// Shows name and claim of every check that has a job.
void listChecks(const HostContext& context, const std::vector<CheckJob>& jobs)
{
    nlohmann::ordered_json document = newDocument("check");
    TextTable table({TextTable::Align::Left, TextTable::Align::Left});
    for (const Check& check : allChecks()) {
        if (std::ranges::find(jobs, &check, &CheckJob::check) != jobs.end()) {
            document["checks"].push_back({{"name", check.name}, {"claim", check.claim}});
            table.add({std::string(check.name), std::string(check.claim)});
        }
    }
    if (context.options.json) {
        writeDocument(document);
    } else {
        writeToStdout(table.text(0));
    }
}

ExitCode runCheck(HostContext& context, const CheckArguments& arguments)
{
    std::vector<CheckJob> jobs = planJobs(arguments);
    if (arguments.list) {
        listChecks(context, jobs);
        return ExitCode::Good;
    }
    CheckRunOptions options;
    options.library = std::filesystem::absolute(PluginLibrary::locate(context.options.plugin));
    if (!std::filesystem::exists(options.library)) {
        throw HostError(ExitCode::LibraryRefused, fmt::format("there is no library file {}", options.library.string()));
    }
    const WorkFolder work;
    const OnInterrupt cleanUp([&] { work.remove(); });
    options.settings = context.options.allSettings();
    options.threads = context.options.threads;
    options.parallelJobs = arguments.jobs;
    options.timeLimit = arguments.timeLimit;
    options.workFolder = work.path();
    writeSamples(work.path(), &jobs);
    {
        // The processes of the checks must have ended before their folder is removed.
        const InterruptWait interrupt;
        probeCases(jobs, options, interrupt);
        ProgressBar progress(context.showsProgress(), "check", "checks", jobs.size());
        if (!runChecks(
                &jobs, options, [&] { progress.advance(); }, [&] { return !interrupt.waitFor(0); })) {
            interrupt.throwInterrupted();
        }
    }
    const std::string userOptions = repeatedOptions(context, arguments);
    if (context.options.json) {
        writeDocument(checkDocument(jobs, options.library.string(), userOptions, arguments.onlyFailed));
    } else {
        writeToStdout(checkText(jobs, userOptions, arguments.onlyFailed, context.style()));
    }
    return exitCodeOf(jobs);
}

/// The command that the processes of checks run; hidden from users.
void addCheckChild(CLI::App* app, HostContext* context)
{
    struct ChildArguments
    {
        std::string check;
        CheckTask task;
    };
    const auto arguments = std::make_shared<ChildArguments>();
    CLI::App* const command = app->add_subcommand("check-one", "Run one check in this process")->group("");
    command->add_option("CHECK", arguments->check)->required();
    command->add_option("--case", arguments->task.casePath);
    command->add_option("--work", arguments->task.workFolder)->required();
    command->add_option("--prefer", arguments->task.preferred)->allow_extra_args(false);
    command->callback([=] {
        context->endsOnInterrupts = false;
        context->command = [=] {
            // Its parent may be killed without a chance to stop it.
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            // Absolute, because a check may change the working folder.
            arguments->task.library = std::filesystem::absolute(PluginLibrary::locate(context->options.plugin));
            if (!arguments->task.casePath.empty()) {
                arguments->task.casePath = std::filesystem::absolute(arguments->task.casePath);
            }
            arguments->task.settings = context->options.settings;
            runCheckChild(arguments->check, arguments->task);
            return ExitCode::Good;
        };
    });
}

} // namespace

void addCheckCommand(CLI::App* app, HostContext* context)
{
    const auto arguments = std::make_shared<CheckArguments>();
    CLI::App* const command = app->add_subcommand("check", "Check the library itself, each check in its own process");
    command
        ->add_option("CASE", arguments->casePaths,
                     "Case folders or .foam files in them; if none is given, built-in samples are checked")
        ->check(notEmpty());
    command->add_flag("--list", arguments->list, "Show name and claim of each check and run none");
    command
        ->add_option("--include", arguments->include,
                     "Run only checks whose name contains a match of RE, such as ^poll; those of a sample are named "
                     "like geometry.sets@zones")
        ->type_name("RE");
    command->add_option("--exclude", arguments->exclude, "Skip checks whose name contains a match of RE")
        ->type_name("RE");
    command->add_flag("--only-failed", arguments->onlyFailed,
                      "Show only checks that failed, timed out or crashed, the tally and the verdict");
    limitCount(
        command
            ->add_option("-j,--jobs", arguments->jobs, "Run at most N checks in parallel; by default one per processor")
            ->type_name("N"),
        1, 1024);
    limitNumber(command->add_option("--timeout", arguments->timeLimit, "Stop a check after S seconds, 60 by default")
                    ->type_name("S"),
                0.01, 86400);
    addExtendedFlag(command, &context->options);
    command->footer(
        "Warnings are about the case, known limits are faults that the library's documents declare. Both are "
        "shown\nand counted, and neither changes the exit code.");
    command->callback([=] { context->command = [=] { return runCheck(*context, *arguments); }; });
    addCheckChild(app, context);
}
