// SPDX-License-Identifier: MIT
#pragma once

#include "check/Check.h"
#include "check/CheckOutcome.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// One check of one case, or of the library without a case.
struct CheckJob
{
    const Check* check;
    std::string subject; ///< the case as given by the user, the name of a sample, or empty for the library
    std::filesystem::path casePath;
    bool sample = false;
    std::vector<std::string> settings; ///< of the sample; those of the user come after them
    CheckOutcome outcome;              ///< set once it has run

    /// The text that patterns are matched against, such as "load.twice" or, for a sample, "poll.remove@moving".
    std::string id() const { return std::string(check->name) + (sample ? "@" + subject : ""); }
};

/// What all jobs of a run share.
struct CheckRunOptions
{
    std::filesystem::path library;
    std::vector<std::string> settings; ///< as KEY=VALUE
    int threads = 0;                   ///< 0 uses the default of the machine
    std::size_t parallelJobs = 1;      ///< the most processes that run at once
    double timeLimit = 60;             ///< seconds for one job
    std::filesystem::path workFolder;  ///< each job gets its own folder in it
};

/// Runs each job in its own process and fills in the outcomes.
///
/// @param onDone called after each job
/// @param goOn   called many times a second; false stops the running jobs
/// @return false if it was stopped; jobs that have not run are then skipped
/// @throws HostError of `LibraryRefused` when the file is not a library, of `Usage` for a setting that it lacks
bool runChecks(std::vector<CheckJob>* jobs, const CheckRunOptions& options, const std::function<void()>& onDone,
               const std::function<bool()>& goOn);
