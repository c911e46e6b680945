// SPDX-License-Identifier: MIT
#pragma once

#include "border/OpenedCase.h"
#include "border/PluginLibrary.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// What one process has to check.
struct CheckTask
{
    std::filesystem::path library;
    std::filesystem::path casePath;     ///< empty for a check that needs none
    std::vector<std::string> settings;  ///< as KEY=VALUE
    std::vector<std::string> preferred; ///< the same, given if the library has such a setting; `settings` win
    std::filesystem::path workFolder;   ///< for files of the check; whoever made it removes it
};

/// Ends a check that cannot be made.
struct CheckSkipped
{
    std::string reason;
};

/// A loaded library with one open case, for checks.
///
/// Unlike `OpenedCase` it hands deliveries on as they come, with every fault in them: what is wrong there is for the
/// one check to tell that claims it. Faults of the calls themselves still end the check by a `HostError`.
class CheckedCase
{
public:
    CheckedCase(std::shared_ptr<PluginLibrary> library, const std::filesystem::path& casePath, HostOptions options);

    const HostOptions& options() const { return m_options; }
    DDPDataProvider& provider() { return m_opened.provider(); }

    /// Asks anew each time, as all the following do.
    std::unique_ptr<HostMetaData> metaData();
    std::unique_ptr<HostGeometry> geometry();
    /// Null if the library has no such result.
    std::unique_ptr<HostResult> result(std::int32_t resultId, std::int32_t stateId);
    std::vector<HostNotice> poll();

private:
    std::shared_ptr<PluginLibrary> m_library;
    HostOptions m_options;
    OpenedCase m_opened;
};

/// The metadata and the geometry of a case, with arrays that can be walked by their counts.
struct SoundGeometry
{
    std::unique_ptr<CheckedCase> open;
    std::unique_ptr<HostMetaData> metaData;
    std::unique_ptr<HostGeometry> geometry;
    std::vector<const HostGroup*> groups; ///< of each element group its declaration

    /// Skips the check if no part has a cell.
    void needCells() const;
};

/// One check on its way: what it works on and what it has found.
class CheckRun
{
public:
    /// @param report takes each finding as it comes, so that it is not lost in a later crash
    CheckRun(CheckTask task, std::function<void(const std::string&)> report);

    const CheckTask& task() const { return m_task; }

    /// Notes that something is wrong, in a sentence. Of many findings the first few are kept.
    void fail(const std::string& finding);

    /// Notes a finding unless the condition holds.
    void expect(bool condition, const std::string& finding)
    {
        if (!condition) {
            fail(finding);
        }
    }

    std::size_t findingCount() const { return m_findings; }

    /// Loads the library.
    std::unique_ptr<PluginLibrary> load(PluginLibrary::Registration answer = PluginLibrary::Registration::Accept) const;

    /// True once the library was loaded: that it does not load again is a finding then, and no wrong file.
    bool hasLoaded() const { return m_loaded; }

    /// The settings of the task, as this library takes them.
    HostOptions options(const PluginLibrary& library) const;

    /// Loads the library and opens the case.
    std::unique_ptr<CheckedCase> open() const { return open(m_task.casePath); }
    /// The same with another case of the same settings.
    std::unique_ptr<CheckedCase> open(const std::filesystem::path& casePath) const { return open(load(), casePath); }
    std::unique_ptr<CheckedCase> open(std::shared_ptr<PluginLibrary> library,
                                      const std::filesystem::path& casePath) const;

    /// Opens the case and takes its geometry.
    /// @throws CheckSkipped if its arrays are broken, which another check tells
    SoundGeometry openGeometry() const;

private:
    CheckTask m_task;
    std::function<void(const std::string&)> m_report;
    std::size_t m_findings = 0;
    mutable bool m_loaded = false;
};

/// The states that checks of values look at: all of a few, else the first, the middle and the last.
std::vector<const HostState*> sampleOfStates(const HostMetaData& metaData);
