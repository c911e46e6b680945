// SPDX-License-Identifier: MIT
//
// Checks that the library leaves no trace in the process, on the terminal or on the disk.
#include "check/Check.h"
#include "check/CheckRun.h"
#include "check/DeliveryDigest.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cfenv>
#include <clocale>
#include <cstdlib>
#include <locale>
#include <map>

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

using Facts = std::map<std::string, std::string>;

/// The whole life of a case, from loading to unloading.
void liveThrough(const CheckRun& run)
{
    const std::unique_ptr<CheckedCase> open = run.open();
    (void)digestOf(*open);
    (void)open->poll();
}

/// Notes each fact that is new, missing or different.
void expectSame(CheckRun& run, const Facts& before, const Facts& after)
{
    for (const auto& [name, value] : before) {
        const auto found = after.find(name);
        run.expect(found != after.end(), name + " is missing");
        run.expect(found == after.end() || found->second == value,
                   fmt::format("{} was {} and is {}", name, value, found == after.end() ? "" : found->second));
    }
    for (const auto& [name, value] : after) {
        run.expect(before.contains(name), fmt::format("{} is new: {}", name, value));
    }
}

/// Size and modification time of everything below a folder.
void addFiles(const fs::path& folder, Facts* facts)
{
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        struct stat status = {};
        if (lstat(entry.path().c_str(), &status) == 0) {
            (*facts)[entry.path().string()] =
                fmt::format("{} bytes of {}.{:09}", status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
        }
    }
}

/// The part of a signal's handling that another library can change.
std::string handlingOf(int signalNumber)
{
    struct sigaction action = {};
    if (sigaction(signalNumber, nullptr, &action) != 0) {
        return "none";
    }
    return fmt::format("{} {:x}", reinterpret_cast<const void*>(action.sa_sigaction), action.sa_flags);
}

/// Everything that exists once per process and that a library must leave to its host.
Facts processFacts()
{
    Facts facts;
    facts["the C locale"] = std::setlocale(LC_ALL, nullptr);
    facts["the C++ locale"] = std::locale().name();
    facts["the working folder"] = fs::current_path().string();
    facts["the rounding mode"] = std::to_string(std::fegetround());
    const mode_t mask = umask(0);
    umask(mask);
    facts["the file mask"] = std::to_string(mask);
    sigset_t blocked = {};
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    for (int signalNumber = 1; signalNumber < SIGRTMIN; ++signalNumber) {
        facts[fmt::format("the handling of signal {}", signalNumber)] =
            handlingOf(signalNumber) + (sigismember(&blocked, signalNumber) == 1 ? " blocked" : "");
    }
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        facts["the variable " + text.substr(0, text.find('='))] = text;
    }
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        const std::string target = fs::read_symlink(entry.path(), error).string();
        // The descriptor used for listing is closed by now.
        if (!error && !target.ends_with("/fd")) {
            facts["the descriptor " + entry.path().filename().string()] = target;
        }
    }
    return facts;
}

} // namespace

void checkSilentOutput(CheckRun& run)
{
    // The parent process reads stdout and stderr and reports any output.
    liveThrough(run);
}

void checkFilesUntouched(CheckRun& run)
{
    const fs::path caseFolder = fs::absolute(OpenedCase::tokenFile(run.task().casePath).parent_path());
    // A library that writes files without being given a path writes them in one of these folders.
    const fs::path folder = run.task().workFolder / "empty";
    fs::create_directory(folder);
    fs::current_path(folder);
    for (const char* const variable : {"HOME", "TMPDIR", "TMP", "TEMP"}) {
        setenv(variable, folder.c_str(), 1);
    }
    const auto filesNow = [&] {
        Facts facts;
        addFiles(caseFolder, &facts);
        addFiles(folder, &facts);
        return facts;
    };
    const Facts before = filesNow();
    liveThrough(run);
    expectSame(run, before, filesNow());
}

void checkProcessUntouched(CheckRun& run)
{
    // Loading TBB is not the library's doing; this program depends on it too, so it is loaded already.
    const Facts before = processFacts();
    liveThrough(run);
    expectSame(run, before, processFacts());
}
