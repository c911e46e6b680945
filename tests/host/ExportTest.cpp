// SPDX-License-Identifier: MIT
// What an export leaves in its folder, whichever way it ends.
#include "border/HostError.h"
#include "host/ProgramRun.h"
#include "output/ExportFolder.h"
#include "support/CaseFiles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

using Files = std::map<std::string, std::string>; ///< content by path in a folder; empty for a folder

Files filesIn(const fs::path& folder)
{
    Files found;
    if (fs::exists(folder)) {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
            found[entry.path().lexically_relative(folder)] = entry.is_directory() ? "" : fileBytes(entry.path());
        }
    }
    return found;
}

/// What happens at one of the calls that change folders.
struct Blow
{
    int callsBefore; ///< none happens if negative
    bool kills;      ///< otherwise the call fails
};
Blow blow = {-1, false};

/// Counts one call. Returns true if it has to fail.
bool isHit()
{
    if (blow.callsBefore < 0 || blow.callsBefore-- != 0) {
        return false;
    }
    blow.kills ? void(raise(SIGKILL)) : void();
    errno = EIO;
    return true;
}

/// Exports two states, each with a file and an index that hold the same word.
void exportWord(const fs::path& folder, const std::string& word)
{
    ExportFolder target(folder, {{"a", "b"}, {"a.vtm", "b.vtm", "all.series"}}, true);
    std::vector<std::string> written;
    const auto write = [&](const std::string& path, const std::string& content) {
        std::ofstream(target.temporaryPath(path)) << content;
        written.push_back(path);
    };
    for (const std::size_t position : {0U, 1U}) {
        target.makeDataFolder(position);
        write(target.dataFolder(position) + "/" + word, word);
    }
    write("a.vtm", target.dataFolder(0) + "/" + word);
    write("b.vtm", target.dataFolder(1) + "/" + word);
    write("all.series", word);
    target.commit(written);
}

/// Runs an export in a process of its own, since the blow may end it.
/// @return true if it got to its end without the blow
bool exportWithBlow(const fs::path& folder, const std::string& word, Blow planned)
{
    const pid_t child = fork();
    if (child == 0) {
        blow = planned;
        try {
            exportWord(folder, word);
        } catch (const HostError&) {
        }
        _exit(blow.callsBefore >= 0 ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Runs exports of a case of two cubes with a pressure at the times 0.5 and 1.
class Export : public testing::Test
{
protected:
    Export()
    {
        writeControlDict(m_folder);
        writeTwoCubes(m_folder);
        writePressure(m_folder, "0.5");
        writePressure(m_folder, "1");
    }

    ProgramRun run(const std::string& options, const std::string& environment = "")
    {
        return runProgram(m_folder, "export " + options + " -o" + inQuotes(m_out) + inQuotes(m_folder.path()),
                          environment);
    }

    Files files() const { return filesIn(m_out); }

    TempFolder m_folder;
    fs::path m_out = m_folder / "new/vtk";
};

} // namespace

TEST_F(Export, OverwriteRemovesTheFormerExportAndNothingElse)
{
    m_folder.write("precious", "precious");
    m_folder.write("absolute", "precious");
    m_folder.write("new/vtk/case_0000/notes", "mine");
    ASSERT_EQ(run("").code, 0);
    const Files geometry = files();
    ASSERT_EQ(run("--state all").code, 6);
    EXPECT_EQ(files(), geometry) << "a refusal changes nothing";
    m_folder.write("new/vtk/.ddphost-files",
                   geometry.at(".ddphost-files") + "../../precious\n" + (m_folder / "absolute").string() + "\n");

    ASSERT_EQ(run("--state all --overwrite").code, 0);
    EXPECT_TRUE(fs::exists(m_out / "case_0001-2/default_region.vtu")) << "a name is taken, so all get a number";
    EXPECT_TRUE(fs::exists(m_out / "case.vtm.series") && !fs::exists(m_out / "case.vtm") &&
                !fs::exists(m_out / "case"));
    EXPECT_EQ(fileBytes(m_folder / "precious") + fileBytes(m_folder / "absolute"), "preciousprecious");
    ASSERT_EQ(run("--overwrite").code, 0);
    Files expected = geometry;
    EXPECT_EQ(files(), expected) << "the same export again, and the user's file";
}

TEST_F(Export, FailureLeavesTheFolderAsItWas)
{
    // No file may exceed this many blocks of 512 bytes; the limit is the shell's way to fill a disk.
    // A build that counts coverage must not try to write its own file, and complain.
    const std::string limited = "sh -c 'ulimit -f 1; exec \"$@\"' sh env LLVM_PROFILE_FILE=/dev/null";
    const ProgramRun full = run("--state all", limited);
    EXPECT_EQ(full.code, 6);
    EXPECT_EQ(std::ranges::count(full.err, '\n'), 1) << full.err;
    EXPECT_NE(full.err.find("default_region.vtu: File too large"), std::string::npos) << full.err;
    EXPECT_FALSE(fs::exists(m_folder / "new")) << "the folders that were made are removed";
    ASSERT_EQ(run("--state all").code, 0);
    const Files former = files();
    const std::string faulty = "DDP_PLUGIN='" FAULTY_PLUGIN "' FAULT=";
    EXPECT_EQ(run("--overwrite", limited).code, 6);
    EXPECT_EQ(run("--state all --overwrite", faulty + "'lost value'").code, 5);
    EXPECT_EQ(run("--overwrite", faulty + "hang timeout --preserve-status -s INT 0.5 env").code, 130);
    EXPECT_EQ(run("--overwrite", faulty + "hang timeout --preserve-status -s TERM 0.5 env").code, 143);
    EXPECT_EQ(files(), former);
}

// A kill or a full disk may come at any of the calls that change the folder, also while the exports change places.
TEST(ExportFolder, HasAWholeExportAfterABlowAtAnyCall)
{
    for (const bool kills : {true, false}) {
        bool isOver = false;
        int calls = 0;
        for (; !isOver; ++calls) {
            SCOPED_TRACE(testing::Message() << (kills ? "killed" : "failed") << " at call " << calls);
            const TempFolder folder;
            exportWord(folder.path(), "old");
            isOver = exportWithBlow(folder.path(), "new", {calls, kills});
            for (const char* const name : {"a.vtm", "b.vtm"}) {
                const fs::path file = fileBytes(folder / name);
                ASSERT_TRUE(fs::exists(folder.path() / file)) << name;
                EXPECT_EQ(fileBytes(folder.path() / file), file.filename()) << name;
            }
            EXPECT_EQ(fileBytes(folder / "all.series").size(), 3U);
            EXPECT_TRUE(kills || !fs::exists(folder / ".ddphost-export"));
            exportWord(folder.path(), "last");
            EXPECT_EQ(filesIn(folder.path()).size(), 8U) << "what the blow has left is removed";
        }
        EXPECT_GT(calls, 15);
    }
}

TEST(ExportFolder, IsNotMadeIfTheFirstExportFails)
{
    const TempFolder folder;
    for (int calls = 0; !exportWithBlow(folder / "new/out", "word", {calls, false}); ++calls) {
        const bool isThere = fs::exists(folder / "new/out/all.series");
        EXPECT_EQ(filesIn(folder / "new").size(), isThere ? 9U : 0U) << calls;
        fs::remove_all(folder / "new");
    }
}

TEST_F(Export, OneAtATimeWritesToAFolder)
{
    fs::create_directories(m_out / ".ddphost-export/case_0000");
    const ProgramRun second = run("", "flock" + inQuotes(m_out / ".ddphost-export") + " env");
    EXPECT_EQ(second.code, 6);
    EXPECT_NE(second.err.find("another export to"), std::string::npos) << second.err;
    EXPECT_EQ(run("").code, 0) << "what a killed export has left is not in the way";
    EXPECT_FALSE(fs::exists(m_out / ".ddphost-export"));
}

TEST_F(Export, TellsWhatItWrote)
{
    const ProgramRun result = run("--json --state all");
    ASSERT_EQ(result.code, 0);
    const json document = json::parse(result.out);
    EXPECT_EQ(document["index"], (m_out / "case.vtm.series").string());
    EXPECT_EQ(document["states"][1]["index"], (m_out / "case_0001.vtm").string());
    std::uintmax_t bytes = 0;
    for (const json& file : document["files"]) {
        EXPECT_EQ(file["bytes"], fs::file_size(file["path"].get<std::string>()));
        bytes += file["bytes"].get<std::uintmax_t>();
    }
    EXPECT_EQ(document["bytes"], bytes);
    // Cells, two patches and a face zone in two states, an index for each, and the series.
    EXPECT_EQ(result.err.find("wrote " + (m_out / "case.vtm.series").string() + ": 2 states, 11 files, "), 0U)
        << result.err;
    EXPECT_EQ(run("--overwrite -q").err, "");
}

TEST_F(Export, TellsOfAMeshThatIsNotRead)
{
    m_folder.write("constant/polyMesh/faces", "cut off");
    const ProgramRun result = run("");
    EXPECT_EQ(result.code, 1);
    EXPECT_NE(result.err.find("mesh not read: "), std::string::npos) << result.err;
}

TEST_F(Export, RefusesEmptyTextsByTheirOption)
{
    for (const char* const option : {"--part", "--state", "--result", "--output"}) {
        const ProgramRun result = run(std::string(option) + " ''");
        EXPECT_EQ(result.code, 2) << option;
        EXPECT_NE(result.err.find(option), std::string::npos) << result.err;
    }
    EXPECT_FALSE(fs::exists(m_out));
}

// Two fields with one shown name must not end as one array, and nothing else says which fields they are.
TEST_F(Export, KeepsFieldsApartThatShareAShownName)
{
    m_folder.write("1/q", fieldFile("volScalarField", "q", "uniform 5"));
    ASSERT_EQ(run("--state 1 --result '_E$' --ascii --set 'RESULTS_NAMES_MAPPING=p=PartId;q=PartId'").code, 0);
    const std::string content = fileBytes(m_out / "case_0000/default_region.vtu");
    for (const char* const name : {"PartId", "PartId (p)", "PartId (q)"}) {
        EXPECT_NE(content.find("Name=\"" + std::string(name) + "\""), std::string::npos) << name;
    }
    EXPECT_NE(content.find("Name=\"ResultField\" NumberOfTuples=\"2\" format=\"ascii\">\n112 0\n113 0\n"),
              std::string::npos);
}

// The calls that change folders, in the place of those of the C library, for the standard library too.
#pragma GCC visibility push(default)
extern "C" {

int mkdir(const char* path, mode_t mode) noexcept
{
    return isHit() ? -1 : static_cast<int>(syscall(SYS_mkdirat, AT_FDCWD, path, mode));
}

int rename(const char* from, const char* to) noexcept
{
    return isHit() ? -1 : static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept
{
    return isHit() ? -1 : static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

int unlinkat(int folder, const char* path, int flags) noexcept
{
    return isHit() ? -1 : static_cast<int>(syscall(SYS_unlinkat, folder, path, flags));
}

int remove(const char* path) noexcept
{
    const int done = unlinkat(AT_FDCWD, path, 0);
    return done != 0 && errno == EISDIR ? unlinkat(AT_FDCWD, path, AT_REMOVEDIR) : done;
}
}
#pragma GCC visibility pop
