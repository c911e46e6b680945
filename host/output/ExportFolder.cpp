// SPDX-License-Identifier: MIT
#include "output/ExportFolder.h"

#include "border/HostError.h"
#include "output/OutputFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr const char* TEMPORARY_NAME = ".ddphost-export";
constexpr const char* LIST_NAME = ".ddphost-files";
/// The first line of a list, so that no other file is taken for one.
constexpr const char* LIST_TITLE = "ddphost/1 export";

[[noreturn]] void fail(const char* action, const fs::path& path, int error)
{
    throw HostError(ExitCode::CannotWrite,
                    fmt::format("cannot {} {}: {}", action, path.string(), std::strerror(error)));
}

/// True for anything that has this name, also for a link that leads nowhere.
bool isTaken(const fs::path& path)
{
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

/// False for a path that could lead out of the folder, should the list be damaged.
bool staysInFolder(const fs::path& path)
{
    return !path.empty() && path.is_relative() && std::ranges::find(path, fs::path("..")) == path.end();
}

/// The files of a list; none if there is no list.
std::vector<std::string> readFiles(const fs::path& list)
{
    std::vector<std::string> files;
    std::ifstream stream(list);
    std::string line;
    if (!std::getline(stream, line) || line != LIST_TITLE) {
        return files;
    }
    while (std::getline(stream, line)) {
        if (staysInFolder(line)) {
            files.push_back(line);
        }
    }
    return files;
}

/// Moves a file or folder within a file system.
void move(const fs::path& from, const fs::path& to, bool replace)
{
    if (!replace) {
        if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
            return;
        }
        // Not all file systems can refuse; the look at the name leaves a gap, but a short one.
        if (errno != EINVAL && errno != ENOSYS) {
            fail("write", to, errno);
        }
        if (isTaken(to)) {
            fail("write", to, EEXIST);
        }
    }
    if (std::rename(from.c_str(), to.c_str()) != 0) {
        fail("write", to, errno);
    }
}

/// Removes a folder of ours, also while another thread still writes to it: that one fails as soon as the folder is
/// gone.
void removeTree(const fs::path& folder)
{
    constexpr int TRIES = 100;
    std::error_code error;
    for (int i = 0; i < TRIES && isTaken(folder); ++i) {
        fs::remove_all(folder, error);
    }
}

/// The folders that have to be made, from the outermost to `folder` itself.
std::vector<fs::path> missingFolders(const fs::path& folder)
{
    std::vector<fs::path> missing;
    for (fs::path path = fs::absolute(folder).lexically_normal(); !isTaken(path); path = path.parent_path()) {
        if (path.has_filename()) {
            missing.insert(missing.begin(), path);
        }
    }
    return missing;
}

} // namespace

ExportFolder::ExportFolder(const fs::path& folder, const ExportLayout& layout, bool overwrite)
    : m_folder(folder), m_temporary(folder / TEMPORARY_NAME), m_overwrite(overwrite), m_indexes(layout.indexes),
      m_onInterrupt([this] {
          const std::lock_guard lock(m_mutex);
          discard();
      })
{
    const std::lock_guard lock(m_mutex);
    try {
        makeFolderAndLock();
        m_former = readFiles(m_folder / LIST_NAME);
        refuseToOverwrite();
        chooseDataFolders(layout);
    } catch (...) {
        discard();
        throw;
    }
}

ExportFolder::~ExportFolder()
{
    const std::lock_guard lock(m_mutex);
    discard();
}

void ExportFolder::makeFolderAndLock()
{
    m_madeFolders = missingFolders(m_folder);
    makeFolder(m_folder);
    lockTemporary();
}

/// The lock ends with the process, however it ends, so a folder that can be locked is new or left by a killed one.
void ExportFolder::lockTemporary()
{
    while (m_lock == -1) {
        if (mkdir(m_temporary.c_str(), 0777) != 0 && errno != EEXIST) {
            fail("create the folder", m_temporary, errno);
        }
        const int opened = open(m_temporary.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (opened == -1 && errno != ENOENT) {
            fail("open the folder", m_temporary, errno);
        }
        if (opened == -1) {
            continue;
        }
        // A file system without locks must not prevent the export.
        if (flock(opened, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
            close(opened);
            throw HostError(ExitCode::CannotWrite, fmt::format("another export to {} is running", m_folder.string()));
        }
        // The process that had the lock may have removed the folder in between.
        struct stat ours = {};
        struct stat present = {};
        if (fstat(opened, &ours) == 0 && stat(m_temporary.c_str(), &present) == 0 && ours.st_ino == present.st_ino) {
            m_lock = opened;
        } else {
            close(opened);
        }
    }
    for (const fs::directory_entry& left : fs::directory_iterator(m_temporary)) {
        removeTree(left.path());
    }
}

/// Looks at everything before the first file is written, so that a refusal costs nothing.
void ExportFolder::refuseToOverwrite() const
{
    if (m_overwrite) {
        return;
    }
    for (const std::vector<std::string>* const names : {&m_indexes, &m_former}) {
        // The last one is what a user opens.
        const auto taken =
            std::find_if(names->rbegin(), names->rend(), [this](const auto& name) { return isTaken(m_folder / name); });
        if (taken != names->rend()) {
            throw HostError(ExitCode::CannotWrite,
                            fmt::format("{} exists; --overwrite replaces it", (m_folder / *taken).string()));
        }
    }
}

/// All get the same number, the first with which none of the names is taken.
void ExportFolder::chooseDataFolders(const ExportLayout& layout)
{
    const auto taken = [this](const std::string& name) { return isTaken(m_folder / name); };
    m_dataFolders = layout.dataFolders;
    for (int number = 2; std::ranges::any_of(m_dataFolders, taken); ++number) {
        m_dataFolders.clear();
        for (const std::string& name : layout.dataFolders) {
            m_dataFolders.push_back(fmt::format("{}-{}", name, number));
        }
    }
}

void ExportFolder::makeDataFolder(std::size_t position)
{
    const fs::path path = temporaryPath(m_dataFolders[position]);
    // Without its parents: after an interrupt they must stay removed.
    if (mkdir(path.c_str(), 0777) != 0) {
        fail("create the folder", path, errno);
    }
}

/// Removes what is left of the temporary folder and, unless there is an export now, the folders that were made for it.
void ExportFolder::discard()
{
    if (m_lock != -1) {
        removeTree(m_temporary);
        close(m_lock);
        m_lock = -1;
    }
    std::error_code error;
    for (; !m_committed && !m_madeFolders.empty(); m_madeFolders.pop_back()) {
        fs::remove(m_madeFolders.back(), error); // fails if anyone has put something there
    }
}

void ExportFolder::commit(const std::vector<std::string>& files)
{
    const std::lock_guard lock(m_mutex);
    // First a list of both exports, so that whatever a kill leaves is known to the next one.
    writeList(m_former, files);
    moveToPlace();
    m_committed = true;
    std::error_code reason;
    const std::vector<std::string> left = removeFormer(files, &reason);
    writeList(left, files);
    if (!left.empty()) {
        throw HostError(ExitCode::CannotWrite,
                        fmt::format("the export is complete, but {} of the former one cannot be removed: {}",
                                    (m_folder / left.back()).string(), reason.message()));
    }
}

void ExportFolder::writeList(std::vector<std::string> files, const std::vector<std::string>& more)
{
    files.insert(files.end(), more.begin(), more.end());
    OutputFile list(m_temporary / LIST_NAME, true);
    list.write(fmt::format("{}\n{}\n", LIST_TITLE, fmt::join(files, "\n")));
    list.close();
    move(m_temporary / LIST_NAME, m_folder / LIST_NAME, true);
}

void ExportFolder::moveToPlace()
{
    std::size_t folders = 0;
    std::size_t indexes = 0;
    bool replaced = false;
    try {
        for (; folders < m_dataFolders.size(); ++folders) {
            move(m_temporary / m_dataFolders[folders], m_folder / m_dataFolders[folders], false);
        }
        for (; indexes < m_indexes.size(); ++indexes) {
            const fs::path target = m_folder / m_indexes[indexes];
            const bool replaces = m_overwrite && isTaken(target);
            move(m_temporary / m_indexes[indexes], target, replaces);
            replaced = replaced || replaces;
        }
    } catch (...) {
        // An index that was replaced cannot be restored; all files of both exports stay for those that name them.
        if (!replaced) {
            undoMoves(folders, indexes);
        }
        throw;
    }
}

void ExportFolder::undoMoves(std::size_t folderCount, std::size_t indexCount)
{
    std::error_code error;
    for (std::size_t i = 0; i < indexCount; ++i) {
        fs::remove(m_folder / m_indexes[i], error);
    }
    for (std::size_t i = 0; i < folderCount; ++i) {
        removeTree(m_folder / m_dataFolders[i]);
    }
    if (m_former.empty()) {
        fs::remove(m_folder / LIST_NAME, error);
    }
}

/// Removes the files of the former export that are not of the new one, indexes first, and folders that become empty.
/// @return the files that could not be removed, or whose folder could not, with the last reason
std::vector<std::string> ExportFolder::removeFormer(const std::vector<std::string>& files, std::error_code* reason)
{
    const std::set<std::string> kept(files.begin(), files.end());
    std::vector<std::string> left;
    std::map<fs::path, std::string> folders; // with one of their files
    const auto remove = [&](const fs::path& path, const std::string& file) {
        std::error_code error;
        fs::remove(path, error);
        if (error && error != std::errc::directory_not_empty) {
            left.push_back(file);
            *reason = error;
        }
    };
    for (auto file = m_former.rbegin(); file != m_former.rend(); ++file) {
        if (kept.contains(*file)) {
            continue;
        }
        remove(m_folder / *file, *file);
        if (fs::path(*file).has_parent_path()) {
            folders.emplace((m_folder / *file).parent_path(), *file);
        }
    }
    // A folder in which the user has put something is not empty, and stays.
    for (const auto& [folder, file] : folders) {
        remove(folder, file);
    }
    return left;
}
