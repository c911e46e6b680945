// SPDX-License-Identifier: MIT
#include "check/CheckRunner.h"

#include "border/HostError.h"
#include "check/CheckProcess.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <memory>

#include <poll.h>

namespace {

// Pipes end the wait, so this only bounds how late a time limit is noticed. Once its pipes are closed a process ends
// soon, and nothing ends the wait for that.
constexpr int WAIT_MILLISECONDS = 20;
constexpr int WAIT_FOR_END_MILLISECONDS = 1;

struct RunningJob
{
    CheckJob* job;
    std::unique_ptr<CheckProcess> process;
};

std::vector<std::string> argumentsOf(const CheckJob& job, const CheckRunOptions& options,
                                     const std::filesystem::path& workFolder)
{
    std::vector<std::string> arguments = {
        "ddphost", "check-one",        std::string(job.check->name), "--plugin", options.library.string(),
        "--work",  workFolder.string()};
    if (!job.casePath.empty()) {
        arguments.insert(arguments.end(), {"--case", job.casePath.string()});
    }
    for (const std::string& setting : job.settings) {
        arguments.insert(arguments.end(), {"--prefer", setting});
    }
    for (const std::string& setting : options.settings) {
        arguments.insert(arguments.end(), {"--set", setting});
    }
    if (options.threads > 0) {
        arguments.insert(arguments.end(), {"--threads", std::to_string(options.threads)});
    }
    return arguments;
}

/// The jobs of one run, some of them running.
class Schedule
{
public:
    Schedule(std::vector<CheckJob>* jobs, const CheckRunOptions& options) : m_jobs(*jobs), m_options(options) {}

    void startMore()
    {
        while (m_next < m_jobs.size() && m_running.size() < m_options.parallelJobs) {
            CheckJob& job = m_jobs[m_next];
            const std::filesystem::path work = m_options.workFolder / fmt::format("{}-{}", job.check->name, m_next);
            std::filesystem::create_directory(work);
            ++m_next;
            m_running.push_back({&job, std::make_unique<CheckProcess>(argumentsOf(job, m_options, work))});
        }
    }

    bool busy() const { return !m_running.empty(); }

    void wait() const
    {
        std::vector<pollfd> watched;
        bool someClosed = false;
        for (const RunningJob& running : m_running) {
            for (const int descriptor : running.process->descriptors()) {
                watched.push_back({descriptor, POLLIN, 0});
                someClosed = someClosed || descriptor < 0;
            }
        }
        poll(watched.data(), watched.size(), someClosed ? WAIT_FOR_END_MILLISECONDS : WAIT_MILLISECONDS);
    }

    /// Removes the finished jobs. @return their number
    std::size_t collect()
    {
        return std::erase_if(m_running, [this](const RunningJob& running) {
            if (!running.process->advance(std::chrono::duration<double>(m_options.timeLimit))) {
                return false;
            }
            running.job->outcome = running.process->outcome();
            if (const int code = running.job->outcome.stopCode; code != 0) {
                throw HostError(static_cast<ExitCode>(code), running.job->outcome.reason);
            }
            noteOutput(running);
            return true;
        });
    }

private:
    static void noteOutput(const RunningJob& running)
    {
        CheckOutcome& outcome = running.job->outcome;
        const std::string& output = running.process->output();
        if (!running.job->check->silent || output.empty() || outcome.verdict == CheckVerdict::Crashed) {
            return;
        }
        outcome.notes[NoteKind::Finding].push_back(fmt::format("{} bytes on stdout or stderr, the first line '{}'",
                                                               output.size(), output.substr(0, output.find('\n'))));
        outcome.verdict = CheckVerdict::Failed;
    }

    std::vector<CheckJob>& m_jobs;
    const CheckRunOptions& m_options;
    std::size_t m_next = 0;
    std::deque<RunningJob> m_running;
};

} // namespace

bool runChecks(std::vector<CheckJob>* jobs, const CheckRunOptions& options, const std::function<void()>& onDone,
               const std::function<bool()>& goOn)
{
    for (CheckJob& job : *jobs) {
        job.outcome.verdict = CheckVerdict::Skipped;
        job.outcome.reason = "the run was interrupted";
    }
    Schedule schedule(jobs, options);
    schedule.startMore();
    while (schedule.busy()) {
        if (!goOn()) {
            return false;
        }
        schedule.wait();
        for (std::size_t done = schedule.collect(); done > 0; --done) {
            onDone();
        }
        schedule.startMore();
    }
    return true;
}
