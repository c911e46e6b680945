// SPDX-License-Identifier: MIT
#include "foamfile/OFUtilities.h"

#include <array>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t LINK_BUFFER_SIZE = 1024;

struct FolderCloser
{
    void operator()(DIR* folder) const { closedir(folder); }
};

bool isDotEntry(const dirent& entry)
{
    return std::strcmp(entry.d_name, ".") == 0 || std::strcmp(entry.d_name, "..") == 0;
}

/// One bit is tested and not the whole type field, and the link's text is taken as it stands: both are what decides
/// which links show as folders.
bool isLinkToFolder(const std::string& linkPath)
{
    std::array<char, LINK_BUFFER_SIZE> target = {};
    // One byte less than the buffer, so that the text stays terminated.
    if (readlink(linkPath.c_str(), target.data(), target.size() - 1) < 0) {
        return false;
    }
    struct stat info = {};
    return stat(target.data(), &info) == 0 && (info.st_mode & S_IFDIR) != 0;
}

bool isFolder(const std::string& folder, const dirent& entry)
{
    if (entry.d_type == DT_LNK) {
        return isLinkToFolder(folder + "/" + entry.d_name);
    }
    return entry.d_type == DT_DIR;
}

template <typename Visitor>
void visitEntries(const dvn::Str& folder, const Visitor& visit)
{
    const std::unique_ptr<DIR, FolderCloser> stream(opendir(folder.toUtf8().c_str()));
    if (stream == nullptr) {
        return;
    }
    while (const dirent* const entry = readdir(stream.get())) {
        if (!isDotEntry(*entry)) {
            visit(*entry);
        }
    }
}

} // namespace

std::vector<dvn::Str> OFUtilities::subFolders(const dvn::Str& folder)
{
    std::vector<dvn::Str> names;
    const std::string path = folder.toUtf8();
    visitEntries(folder, [&](const dirent& entry) {
        if (isFolder(path, entry)) {
            names.emplace_back(entry.d_name);
        }
    });
    return names;
}

std::vector<dvn::Str> OFUtilities::filesInFolder(const dvn::Str& folder)
{
    std::vector<dvn::Str> paths;
    const dvn::Str prefix = folder + "/";
    visitEntries(folder, [&](const dirent& entry) { paths.push_back(prefix + entry.d_name); });
    return paths;
}

bool OFUtilities::fileExists(const dvn::Str& path)
{
    return access(path.toUtf8().c_str(), F_OK) == 0;
}

bool OFUtilities::hasSubFolder(const dvn::Str& folder, const dvn::Str& name)
{
    const std::string path = (folder + "/" + name).toUtf8();
    struct stat info = {};
    if (lstat(path.c_str(), &info) != 0) {
        return false;
    }
    return S_ISLNK(info.st_mode) ? isLinkToFolder(path) : S_ISDIR(info.st_mode);
}

bool OFUtilities::isRegularFile(const dvn::Str& path)
{
    struct stat info = {};
    return stat(path.toUtf8().c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

dvn::Str OFUtilities::fileNameFromPath(const dvn::Str& path)
{
    const std::vector<dvn::Str> pieces = path.split("/\\");
    return pieces.empty() ? dvn::Str() : pieces.back();
}

dvn::Str OFUtilities::folderNameFromPath(const dvn::Str& path)
{
    return fileNameFromPath(path);
}

dvn::Str OFUtilities::fileBaseName(const dvn::Str& path)
{
    dvn::Str name = fileNameFromPath(path);
    const std::size_t dot = name.toStdWString().rfind(L'.');
    if (dot == std::wstring::npos) {
        return name;
    }
    return dvn::Str(name.toStdWString().substr(0, dot));
}
