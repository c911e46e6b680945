// SPDX-License-Identifier: MIT
//
// Checks of polling, on a copy of the case: which change of the folders leads to which notices.
#include "check/Check.h"
#include "check/CheckRun.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace {

namespace fs = std::filesystem;

// Each of these checks makes a copy, which must not fill the disk.
constexpr std::uintmax_t MOST_COPIED_BYTES = 200'000'000;

// Compatibility (docs/compatibility.md, "renewed ids from 1001"): a change renumbers the states from here, in order of
// time.
constexpr std::int32_t FIRST_ID = 1001;

/// The time of a folder: the number that its name starts with, or that it is in extended reading.
std::optional<double> timeOf(const fs::path& folder, bool wholeName)
{
    const std::string name = folder.filename().string();
    double value = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), value);
    const bool complete = !wholeName || end == name.data() + name.size();
    return error == std::errc() && complete ? std::optional(value) : std::nullopt;
}

std::uintmax_t bytesIn(const fs::path& folder)
{
    std::uintmax_t bytes = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        bytes += entry.is_regular_file() ? entry.file_size() : 0;
    }
    return bytes;
}

/// Copies a folder with all its content. Folders are created afresh, because those of a case may be read-only; a link
/// to a folder stays a link, since it may point anywhere.
void copyFolder(const fs::path& source, const fs::path& target)
{
    fs::create_directories(target);
    for (const fs::directory_entry& entry : fs::directory_iterator(source)) {
        const fs::path copy = target / entry.path().filename();
        if (entry.is_directory() && entry.is_symlink()) {
            fs::create_directory_symlink(fs::canonical(entry.path()), copy);
        } else if (entry.is_directory()) {
            copyFolder(entry.path(), copy);
        } else if (entry.is_regular_file()) {
            fs::copy_file(entry.path(), copy);
        }
    }
}

/// An open copy of the case, whose folders the checks change, and the notices expected from its polls.
class PolledCase
{
public:
    explicit PolledCase(CheckRun& run) : m_run(run)
    {
        const fs::path source = OpenedCase::tokenFile(run.task().casePath).parent_path();
        if (const std::uintmax_t bytes = bytesIn(source); bytes > MOST_COPIED_BYTES) {
            throw CheckSkipped{fmt::format("the case has {} MB, but at most {} MB are copied", bytes / 1'000'000,
                                           MOST_COPIED_BYTES / 1'000'000)};
        }
        m_folder = run.task().workFolder / source.filename();
        copyFolder(source, m_folder);
        m_open = run.open(m_folder);
        m_metaData = m_open->metaData();
        for (const HostState& state : m_metaData->states) {
            m_times.push_back(state.referenceValue);
        }
    }

    /// Skips the check if the case has fewer states.
    void needStates(std::size_t count) const
    {
        if (m_times.size() < count) {
            throw CheckSkipped{fmt::format("the case has {} states, but {} are needed", m_times.size(), count)};
        }
    }

    /// The times of the states that are now in the folder.
    const std::vector<double>& times() const { return m_times; }

    /// Creates a time folder like the last one.
    void addTime(double time)
    {
        const fs::path source = foldersOf(m_times.back()).front();
        const fs::path target = source.parent_path() / fmt::format("{}", time);
        if (fs::exists(target)) {
            throw CheckSkipped{fmt::format("the case has a folder {} already", target.filename().string())};
        }
        copyFolder(source, target);
        m_times.insert(std::ranges::upper_bound(m_times, time), time);
    }

    void removeTime(std::size_t position)
    {
        for (const fs::path& folder : foldersOf(m_times[position])) {
            fs::remove_all(folder);
        }
        m_times.erase(m_times.begin() + static_cast<std::ptrdiff_t>(position));
    }

    /// Creates a folder that the case does not have and whose name is no time.
    void addForeignFolder()
    {
        std::string name = "foreignFolder";
        while (!fs::create_directory(m_folder / name)) {
            name += "s";
        }
    }

    /// Polls and compares the notices; `when` describes what happened since the last poll.
    void expectPoll(const std::string& when, const std::vector<std::string>& wanted)
    {
        std::vector<std::string> found;
        for (const HostNotice& notice : m_open->poll()) {
            found.push_back(textOf(notice));
        }
        m_run.expect(found == wanted,
                     fmt::format("{}: [{}], not [{}]", when, fmt::join(found, ", "), fmt::join(wanted, ", ")));
    }

    std::string update(std::size_t position) const
    {
        return fmt::format("update {} {}", FIRST_ID + static_cast<int>(position), m_times[position]);
    }

    std::string add(std::size_t position) const
    {
        return fmt::format("add {} {}", FIRST_ID + static_cast<int>(position), m_times[position]);
    }

    /// An update for every state.
    std::vector<std::string> updateAll() const
    {
        std::vector<std::string> notices;
        for (std::size_t i = 0; i < m_times.size(); ++i) {
            notices.push_back(update(i));
        }
        return notices;
    }

private:
    /// Includes the name only if it does not match the time of the notice.
    static std::string textOf(const HostNotice& notice)
    {
        if (notice.kind == HostNotice::Kind::Remove) {
            return fmt::format("remove {}", notice.id);
        }
        const char* const kind = notice.kind == HostNotice::Kind::Add ? "add" : "update";
        const bool named = notice.name.starts_with(fmt::format("Time {:.5f} #", notice.referenceValue));
        return fmt::format("{} {} {}{}", kind, notice.id, notice.referenceValue,
                           named ? "" : fmt::format(" '{}'", notice.name));
    }

    /// The folders that may hold time folders: that of the case and, in a decomposed case, those of its pieces.
    std::vector<fs::path> places() const
    {
        std::vector<fs::path> folders = {m_folder};
        for (const fs::directory_entry& entry : fs::directory_iterator(m_folder)) {
            if (entry.is_directory() && entry.path().filename().string().starts_with("processor")) {
                folders.push_back(entry.path());
            }
        }
        return folders;
    }

    /// All folders of a time; at least one, and no two in the same place, since the library takes each for a state.
    std::vector<fs::path> foldersOf(double time) const
    {
        std::vector<fs::path> found;
        for (const fs::path& place : places()) {
            const std::size_t before = found.size();
            for (const fs::directory_entry& entry : fs::directory_iterator(place)) {
                if (entry.is_directory() && timeOf(entry.path(), m_open->readsExtended()) == time) {
                    found.push_back(entry.path());
                }
            }
            if (found.size() > before + 1) {
                throw CheckSkipped{fmt::format("{} folders are named after the time {}", found.size() - before, time)};
            }
        }
        if (found.empty()) {
            throw CheckSkipped{fmt::format("no folder is named after the time {}", time)};
        }
        return found;
    }

    CheckRun& m_run;
    fs::path m_folder;
    std::unique_ptr<CheckedCase> m_open;
    std::unique_ptr<HostMetaData> m_metaData;
    std::vector<double> m_times;
};

/// A time greater than all of these, which are in ascending order.
double timeAfter(const std::vector<double>& times)
{
    const double last = times.back();
    const double span = last - times.front();
    // At least as large as the last time itself: 1 would vanish beside a very large one.
    const double time = last + (span > 0 ? span : std::max(1.0, std::abs(last)));
    if (!std::isfinite(time) || !(time > last)) {
        throw CheckSkipped{fmt::format("there is no time after {}", last)};
    }
    return time;
}

/// The notices of a removal: the remaining states, then the positions from their count up to and including the old
/// count. Compatibility (docs/compatibility.md, "remove one more position").
std::vector<std::string> removalNotices(const PolledCase& polled, std::size_t oldCount)
{
    std::vector<std::string> notices = polled.updateAll();
    for (std::size_t position = polled.times().size(); position <= oldCount; ++position) {
        notices.push_back(fmt::format("remove {}", position));
    }
    return notices;
}

} // namespace

void checkPollUnchanged(CheckRun& run)
{
    PolledCase polled(run);
    for (int poll = 0; poll < 3; ++poll) {
        polled.expectPoll("nothing has changed", {});
    }
}

void checkPollAddAtEnd(CheckRun& run)
{
    PolledCase polled(run);
    polled.needStates(1);
    polled.addTime(timeAfter(polled.times()));
    polled.expectPoll("a folder was added at the end", {polled.add(polled.times().size() - 1)});
    // Compatibility (docs/compatibility.md, "announce all on the next poll"): it reports all states and looks at no
    // folder.
    const std::vector<std::string> all = polled.updateAll();
    polled.addTime(timeAfter(polled.times()));
    polled.expectPoll("the poll after that", all);
    polled.expectPoll("the next poll, with another folder", {polled.add(polled.times().size() - 1)});
    polled.expectPoll("the poll after the other folder", polled.updateAll());
    polled.expectPoll("nothing more has changed", {});
}

void checkPollAddInMiddle(CheckRun& run)
{
    PolledCase polled(run);
    polled.needStates(2);
    const double before = polled.times()[polled.times().size() - 2];
    const double after = polled.times().back();
    const double between = before + (after - before) / 2;
    if (!(before < between && between < after)) {
        throw CheckSkipped{"there is no time between those of the last two states"};
    }
    polled.addTime(between);
    const std::size_t last = polled.times().size() - 1;
    polled.expectPoll("a folder was added in the middle", {polled.update(last - 1), polled.add(last)});
    polled.expectPoll("the poll after that", polled.updateAll());
    polled.expectPoll("nothing more has changed", {});
}

void checkPollRemove(CheckRun& run)
{
    PolledCase polled(run);
    polled.needStates(2);
    const std::size_t oldCount = polled.times().size();
    polled.removeTime(oldCount / 2);
    polled.expectPoll("a folder was removed", removalNotices(polled, oldCount));
    polled.expectPoll("the poll after that", polled.updateAll());
}

void checkPollRemoveAndAdd(CheckRun& run)
{
    PolledCase polled(run);
    polled.needStates(2);
    const std::size_t oldCount = polled.times().size();
    // Computed before the removal: a time that comes back in the same poll is no change.
    const double added = timeAfter(polled.times());
    polled.removeTime(oldCount / 2);
    std::vector<std::string> wanted = removalNotices(polled, oldCount);
    polled.addTime(added);
    wanted.push_back(polled.add(polled.times().size() - 1));
    polled.expectPoll("a folder was removed and one added", wanted);
    polled.expectPoll("the poll after that", polled.updateAll());
}

void checkPollForeignFolder(CheckRun& run)
{
    PolledCase polled(run);
    polled.addForeignFolder();
    polled.expectPoll("a folder was added that is not a time", {});
    polled.expectPoll("the poll after that", polled.updateAll());
    polled.expectPoll("nothing more has changed", {});
}
