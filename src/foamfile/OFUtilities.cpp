// SPDX-License-Identifier: MIT
#include "foamfile/OFUtilities.h"

#include "LibCore/Numbers.h"
#include "foamfile/OFLogger.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <string>
#include <string_view>
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

/// Compatibility (docs/compatibility.md, "links to folders"): one bit is tested and not the whole type field, and the
/// link's text is not resolved against the link's own folder.
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

bool isListedFolder(const std::string& folder, const dirent& entry)
{
    if (entry.d_type == DT_LNK) {
        return isLinkToFolder(folder + "/" + entry.d_name);
    }
    return entry.d_type == DT_DIR;
}

bool logUnlisted(const dvn::Str& folder)
{
    return OFLogger::get().logError("OFUtilities", dvn::Str("Cannot list folder %1").arg(folder));
}

/// Calls `visit(entry)` for each entry until it returns false.
/// @return false, with a line in the log, if the folder exists but cannot be read to its end
template <typename Visitor>
bool visitEntries(const dvn::Str& folder, const Visitor& visit)
{
    const std::unique_ptr<DIR, FolderCloser> stream(opendir(folder.toUtf8().c_str()));
    if (stream == nullptr) {
        return errno == ENOENT || errno == ENOTDIR || logUnlisted(folder);
    }
    for (;;) {
        // Only errno distinguishes the end of a folder from a failure.
        errno = 0;
        const dirent* const entry = readdir(stream.get());
        if (entry == nullptr) {
            return errno == 0 || logUnlisted(folder);
        }
        if (!isDotEntry(*entry) && !visit(*entry)) {
            return true;
        }
    }
}

/// True if a file of this name has itself as its base name, and the same name with ".gz" does too.
bool isPlainName(const std::string& name)
{
    return !name.empty() && name.find_first_of("./\\") == std::string::npos;
}

} // namespace

std::vector<dvn::Str> OFUtilities::subFolders(const dvn::Str& folder)
{
    std::vector<dvn::Str> names;
    (void)listSubFolders(folder, &names); // an unreadable folder has what was read so far
    return names;
}

std::vector<dvn::Str> OFUtilities::filesInFolder(const dvn::Str& folder)
{
    std::vector<dvn::Str> paths;
    const dvn::Str prefix = folder + "/";
    (void)visitEntries(folder, [&](const dirent& entry) {
        paths.push_back(prefix + entry.d_name);
        return true;
    });
    return paths;
}

bool OFUtilities::listSubFolders(const dvn::Str& folder, std::vector<dvn::Str>* names)
{
    names->clear();
    const std::string path = folder.toUtf8();
    return visitEntries(folder, [&](const dirent& entry) {
        if (isListedFolder(path, entry)) {
            names->emplace_back(entry.d_name);
        }
        return true;
    });
}

bool OFUtilities::listFoldersThroughLinks(const dvn::Str& folder, std::vector<dvn::Str>* names)
{
    names->clear();
    const bool isListed = visitEntries(folder, [&](const dirent& entry) {
        // Some file systems do not say what an entry is.
        const bool mayBeFolder = entry.d_type == DT_DIR || entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN;
        if (entry.d_type == DT_DIR || (mayBeFolder && isFolder(folder + "/" + entry.d_name))) {
            names->emplace_back(entry.d_name);
        }
        return true;
    });
    std::sort(names->begin(), names->end());
    return isListed;
}

bool OFUtilities::hasFileOfBaseName(const dvn::Str& folder, const dvn::Str& baseName)
{
    const std::string name = baseName.toUtf8();
    if (isPlainName(name) && (fileExists(folder + "/" + baseName) || fileExists(folder + "/" + baseName + ".gz"))) {
        return true;
    }
    bool isFound = false;
    (void)visitEntries(folder, [&](const dirent& entry) {
        // The search avoids the conversion for nearly all entries.
        isFound = std::string_view(entry.d_name).find(name) != std::string_view::npos &&
                  fileBaseName(entry.d_name) == baseName;
        return !isFound;
    });
    return isFound;
}

bool OFUtilities::hasFieldFile(const dvn::Str& folder, const dvn::Str& fieldName)
{
    const std::string name = fieldName.toUtf8();
    const bool isDotted = name.find('.') != std::string::npos && name.find_first_of("/\\") == std::string::npos;
    // The whole name comes first, since finding a base name with a dot takes a listing.
    return (isDotted && isRegularFileOrGz(folder + "/" + fieldName)) || hasFileOfBaseName(folder, fieldName);
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
    // guard: regular-file
    return stat(path.toUtf8().c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool OFUtilities::isRegularFileOrGz(const dvn::Str& path)
{
    return isRegularFile(path) || isRegularFile(path + ".gz");
}

bool OFUtilities::isFolder(const dvn::Str& path)
{
    struct stat info = {};
    return stat(path.toUtf8().c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool OFUtilities::isTimeName(const dvn::Str& name)
{
    const std::string text = name.toUtf8();
    // Words such as "inf" are numbers to the conversion, but no solver gives a time folder such a name.
    double time = 0.0;
    return text.find_first_not_of("0123456789+-.eE") == std::string::npos && dvf::tokenToDouble(text, &time);
}

bool OFUtilities::isSetAside(const dvn::Str& fileName)
{
    static constexpr std::array<std::string_view, 6> ENDINGS = {"~", ".orig", ".bak", ".BAK", ".old", ".save"};
    const std::string name = fileName.toUtf8();
    return name.starts_with('.') ||
           std::ranges::any_of(ENDINGS, [&name](std::string_view ending) { return name.ends_with(ending); });
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

dvn::Str OFUtilities::fileNameWithoutGz(const dvn::Str& path)
{
    dvn::Str name = fileNameFromPath(path);
    return name.toStdWString().ends_with(L".gz") ? fileBaseName(name) : name;
}
