// SPDX-License-Identifier: MIT
#pragma once

#include "border/CutTables.h"
#include "border/OpenedCase.h"
#include "border/PluginLibrary.h"
#include "check/CheckOutcome.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// The task of one process.
struct CheckTask
{
    std::filesystem::path library;
    std::filesystem::path casePath;     ///< empty for a check that does not need one
    std::vector<std::string> settings;  ///< as KEY=VALUE
    std::vector<std::string> preferred; ///< the same, used only if the library may have such a setting; `settings` win
    std::filesystem::path workFolder;   ///< for files of the check; whoever created it removes it
};

/// Ends a check that cannot run.
struct CheckSkipped
{
    std::string reason;
};

/// A loaded library with one open case, for checks.
///
/// Unlike `OpenedCase` it hands deliveries on as they are, with every fault in them, because each fault is reported
/// only by the check that looks for it. Faults in the calls themselves still end the check with a `HostError`.
class CheckedCase
{
public:
    CheckedCase(std::shared_ptr<PluginLibrary> library, const std::filesystem::path& casePath, HostOptions options);

    const HostOptions& options() const { return m_options; }
    DDPDataProvider& provider() { return m_opened.provider(); }

    /// True if the library was asked for extended reading, by a setting or by the environment.
    bool readsExtended() const;

    /// Makes a new request on each call, as do all of the following.
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

/// Metadata and geometry of a case, with arrays that can safely be walked by their counts.
struct SoundGeometry
{
    std::unique_ptr<CheckedCase> open;
    std::unique_ptr<HostMetaData> metaData;
    std::unique_ptr<HostGeometry> geometry;
    std::vector<const HostGroup*> groups; ///< the declaration of each element group
    ElementsByGroup cutCells;             ///< general elements whose faces are unknown; their tables are empty

    /// Skips the check if no part has a cell.
    void needCells() const;
};

/// A running check: what it works on and what it has found.
class CheckRun
{
public:
    /// @param report receives each sentence immediately, so that a later crash does not lose it
    CheckRun(CheckTask task, std::function<void(NoteKind, const std::string&)> report);

    const CheckTask& task() const { return m_task; }

    /// Notes in one sentence that the library is wrong. Only the first few sentences of each kind are kept.
    void fail(const std::string& finding) { note(NoteKind::Finding, finding); }

    /// Notes that the case lacks something that a correct library cannot make up for.
    void warn(const std::string& warning) { note(NoteKind::Warning, warning); }

    /// Notes a fault that is documented.
    /// @param where what documents it, such as "decision 12"
    void limit(const std::string& where, const std::string& what)
    {
        note(NoteKind::KnownLimit, "known limit (" + where + "): " + what);
    }

    /// Notes a finding unless the condition holds.
    void expect(bool condition, const std::string& finding)
    {
        if (!condition) {
            fail(finding);
        }
    }

    std::size_t findingCount() const { return noteCount(NoteKind::Finding); }

    /// All sentences of this kind, those that were not kept included.
    std::size_t noteCount(NoteKind kind) const { return m_counts[static_cast<std::size_t>(kind)]; }

    /// Loads the library.
    std::unique_ptr<PluginLibrary> load(PluginLibrary::Registration answer = PluginLibrary::Registration::Accept) const;

    /// True once the library has been loaded: if it does not load again, that is a finding and not a wrong file.
    bool hasLoaded() const { return m_loaded; }

    /// The settings of the task, limited to those that this library has.
    HostOptions options(const PluginLibrary& library) const;

    /// Loads the library and opens the case.
    std::unique_ptr<CheckedCase> open() const { return open(m_task.casePath); }
    /// The same for another case with the same settings.
    std::unique_ptr<CheckedCase> open(const std::filesystem::path& casePath) const { return open(load(), casePath); }
    std::unique_ptr<CheckedCase> open(std::shared_ptr<PluginLibrary> library,
                                      const std::filesystem::path& casePath) const;

    /// Opens the case and requests its geometry.
    /// @throws CheckSkipped if its arrays are broken, which another check reports
    SoundGeometry openGeometry() const;

private:
    void note(NoteKind kind, const std::string& text);

    CheckTask m_task;
    std::function<void(NoteKind, const std::string&)> m_report;
    std::array<std::size_t, NOTE_KINDS.size()> m_counts = {};
    mutable bool m_loaded = false;
};

/// Notes the known limit that makes some cells of a group unknown, if there are any.
void noteCutCells(CheckRun& run, const std::string& group, const std::vector<std::size_t>& cutCells);

/// The states that checks of values look at: all if there are few, else the first, the middle and the last.
std::vector<const HostState*> sampleOfStates(const HostMetaData& metaData);
