// SPDX-License-Identifier: MIT
#pragma once

#include "output/Interrupt.h"

#include <filesystem>
#include <mutex>
#include <string>
#include <system_error>
#include <vector>

/// The names of an export in its folder.
struct ExportLayout
{
    std::vector<std::string> dataFolders; ///< one for each state
    std::vector<std::string> indexes;     ///< each names files of the data folders, the last one also the other indexes
};

/// The folder of an export, which appears there as a whole or not at all.
///
/// Everything is written to the sub-folder `.ddphost-export` and moved to its place by `commit`: the data first, then
/// the indexes. A data folder never takes the place of an existing one, so an old index keeps its files until a new
/// index has replaced it; only then is the former export removed. What belongs to it is in its list, `.ddphost-files`.
/// A process that is killed at any moment therefore leaves only whole files under final names, and each index with all
/// its files. The next export into the folder clears the rest away.
///
/// An interrupt or an exception before the end of `commit` removes what was written, and the folder if it was made.
/// One thread uses an object. All members throw `HostError` of `CannotWrite`.
class ExportFolder
{
public:
    /// Makes the folder and its parents if necessary.
    ///
    /// Fails, and leaves everything as it is, if another process is exporting to this folder, or if there is a former
    /// export or a file with the name of an index and `overwrite` is false.
    ExportFolder(const std::filesystem::path& folder, const ExportLayout& layout, bool overwrite);

    /// Removes what was written unless it was committed.
    ~ExportFolder();

    ExportFolder(const ExportFolder&) = delete;
    ExportFolder& operator=(const ExportFolder&) = delete;

    /// The final name of the data folder at this position of the layout, which has a number if the name is taken.
    const std::string& dataFolder(std::size_t position) const { return m_dataFolders[position]; }

    /// Where to write a file with this final path, relative to the folder, until `commit` moves it.
    std::filesystem::path temporaryPath(const std::string& file) const { return m_temporary / file; }

    /// Makes the data folder at this position of the layout.
    void makeDataFolder(std::size_t position);

    /// Moves everything to its place and removes the former export.
    ///
    /// @param files all files written, relative to the folder
    void commit(const std::vector<std::string>& files);

private:
    void refuseToOverwrite() const;
    void chooseDataFolders(const ExportLayout& layout);
    void makeFolderAndLock();
    void lockTemporary();
    void discard();
    void writeList(std::vector<std::string> files, const std::vector<std::string>& more);
    void moveToPlace();
    void undoMoves(std::size_t folderCount, std::size_t indexCount);
    std::vector<std::string> removeFormer(const std::vector<std::string>& files, std::error_code* reason);

    std::filesystem::path m_folder;
    std::filesystem::path m_temporary;
    bool m_overwrite;
    std::vector<std::string> m_former; ///< files of the former export, its last index at the end
    std::vector<std::string> m_dataFolders;
    std::vector<std::string> m_indexes;
    std::vector<std::filesystem::path> m_madeFolders; ///< from the outermost to the folder itself
    int m_lock = -1;                                  ///< the open temporary folder; -1 before it is ours
    std::mutex m_mutex;                               ///< held while files move and while they are removed
    bool m_committed = false;
    OnInterrupt m_onInterrupt; ///< last, so that it starts when the rest is ready and ends first
};
