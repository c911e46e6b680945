// SPDX-License-Identifier: MIT
#include "foamfile/OFUtilities.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <dirent.h>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

/// Names in the order in which the system lists them.
std::vector<dvn::Str> systemOrder(const fs::path& folder)
{
    std::vector<dvn::Str> names;
    DIR* const stream = opendir(folder.c_str());
    while (const dirent* const entry = readdir(stream)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    closedir(stream);
    return names;
}

} // namespace

TEST(OFUtilities, FoldersAreListedInTheOrderOfTheSystem)
{
    TempFolder folder;
    for (const char* name : {"9", "10", "1", "constant", ".hidden", "z\xc3\xa9ro"}) {
        fs::create_directory(folder.path() / name);
    }
    EXPECT_EQ(OFUtilities::subFolders(folder.str()), systemOrder(folder.path()));
    folder.write("file", "x");
    folder.write("1/file", "x");
    std::vector<dvn::Str> paths;
    for (const dvn::Str& name : systemOrder(folder.path())) {
        paths.push_back(folder.str() + "/" + name);
    }
    EXPECT_EQ(OFUtilities::filesInFolder(folder.str()), paths) << "sub-folders are entries, too";
    EXPECT_EQ(OFUtilities::subFolders(folder.str()).size(), 6U) << "a file is no sub-folder";
    for (const char* name : {"missing", "file"}) {
        EXPECT_TRUE(OFUtilities::subFolders(folder.str(name)).empty());
        EXPECT_TRUE(OFUtilities::filesInFolder(folder.str(name)).empty());
    }
}

// A link's text is taken from the working folder, not from the folder that holds the link.
TEST(OFUtilities, LinksCountByTheirTextAsItStands)
{
    TempFolder folder;
    fs::create_directories(folder.path() / "case/target");
    folder.write("case/file", "x");
    fs::create_directory_symlink(folder.path() / "case/target", folder.path() / "case/absolute");
    fs::create_symlink(folder.path() / "case/file", folder.path() / "case/toFile");
    fs::create_directory_symlink("target", folder.path() / "case/relative");
    fs::create_symlink(folder.path() / "gone", folder.path() / "case/broken");
    const auto names = [&] {
        std::vector<dvn::Str> found = OFUtilities::subFolders(folder.str("case"));
        std::sort(found.begin(), found.end());
        return found;
    };
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    EXPECT_EQ(names(), (std::vector<dvn::Str>{"absolute", "target"}));
    fs::current_path(folder.path() / "case");
    EXPECT_EQ(names(), (std::vector<dvn::Str>{"absolute", "relative", "target"}));
    fs::current_path(before);
}

TEST(OFUtilities, RegularFilesAreToldFromAllElse)
{
    TempFolder folder;
    folder.write("\xe4\xf6.txt", "12345");
    std::uint64_t size = 0;
    EXPECT_TRUE(OFUtilities::fileExists(folder.str("\xe4\xf6.txt")));
    EXPECT_TRUE(OFUtilities::isRegularFile(folder.str("\xe4\xf6.txt"), &size));
    EXPECT_EQ(size, 5U);
    EXPECT_TRUE(OFUtilities::fileExists(folder.str())) << "a folder exists, but is no file";
    EXPECT_FALSE(OFUtilities::isRegularFile(folder.str(), &size));
    EXPECT_FALSE(OFUtilities::isRegularFile("/dev/null", &size));
    EXPECT_FALSE(OFUtilities::fileExists(folder.str("missing")));
    EXPECT_FALSE(OFUtilities::isRegularFile(folder.str("missing"), &size));
}

TEST(OFUtilities, PathsAreSplitAtBothSlashes)
{
    const std::pair<const char*, const char*> names[] = {
        {"/a/b.tar.gz", "b.tar.gz"}, {"a\\b\\c", "c"}, {"a/b/", "b"}, {"b", "b"}, {"", ""}, {"///", ""}};
    for (const auto& [path, name] : names) {
        EXPECT_EQ(OFUtilities::fileNameFromPath(path), name) << path;
        EXPECT_EQ(OFUtilities::folderNameFromPath(path), name) << path;
    }
    const std::pair<const char*, const char*> bases[] = {
        {"/a/b.tar.gz", "b.tar"}, {"/a.b/.hidden", ""}, {"/a.b/c", "c"}, {"", ""}, {"x.", "x"}};
    for (const auto& [path, base] : bases) {
        EXPECT_EQ(OFUtilities::fileBaseName(path), base) << path;
    }
}
