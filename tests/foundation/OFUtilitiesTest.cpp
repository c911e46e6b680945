// SPDX-License-Identifier: MIT
#include "foamfile/OFUtilities.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

/// Names in the order in which the file system lists them.
std::vector<dvn::Str> systemOrder(const fs::path& folder)
{
    std::vector<dvn::Str> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        names.emplace_back(entry.path().filename().string());
    }
    return names;
}

} // namespace

TEST(OFUtilities, ListsFoldersInSystemOrder)
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
    EXPECT_EQ(OFUtilities::filesInFolder(folder.str()), paths) << "sub-folders are included";
    EXPECT_EQ(OFUtilities::subFolders(folder.str()).size(), 6U);
    for (const char* name : {"missing", "file"}) {
        EXPECT_TRUE(OFUtilities::subFolders(folder.str(name)).empty());
        EXPECT_TRUE(OFUtilities::filesInFolder(folder.str(name)).empty());
    }
}

// Compatibility (docs/compatibility.md, "links to folders"): the text of a link is resolved against the working folder,
// not against the folder that holds the link.
TEST(OFUtilities, ResolvesLinksFromTheWorkingFolder)
{
    TempFolder folder;
    folder.write("case/target/file", "x");
    fs::create_directory_symlink(folder / "case/target", folder / "case/absolute");
    fs::create_symlink(folder / "case/target/file", folder / "case/toFile");
    fs::create_directory_symlink("target", folder / "case/relative");
    fs::create_symlink(folder / "gone", folder / "case/broken");
    const fs::path before = fs::current_path();
    using Names = std::vector<dvn::Str>;
    for (const auto& [place, expected] : {std::pair(folder.path(), Names{"absolute", "target"}),
                                          std::pair(folder / "case", Names{"absolute", "relative", "target"})}) {
        fs::current_path(place);
        Names found = OFUtilities::subFolders(folder.str("case"));
        std::sort(found.begin(), found.end());
        EXPECT_EQ(found, expected) << place;
    }
    fs::current_path(before);
}

TEST(OFUtilities, SplitsPathsAtBothSlashes)
{
    const std::array<const char*, 3> cases[] = {{"/a/b.tar.gz", "b.tar.gz", "b.tar"},
                                                {"a\\b\\c", "c", "c"},
                                                {"/a.b/.hidden", ".hidden", ""},
                                                {"a/b/", "b", "b"},
                                                {"///", "", ""},
                                                {"", "", ""}};
    for (const auto& [path, name, base] : cases) {
        EXPECT_EQ(OFUtilities::fileNameFromPath(path), name) << path;
        EXPECT_EQ(OFUtilities::fileBaseName(path), base) << path;
    }
}

// Most names are looked up directly, and the answer must be that of the listing.
TEST(OFUtilities, FindsABaseNameExactlyIfTheListingHasIt)
{
    const TempFolder folder;
    const std::vector<std::string> files = {"p",     "U.gz",         "k.orig", "alpha.water", "beta.water.gz",
                                            "x.1.2", ".hidden",      "..gz",   "back\\slash", "T.gz.gz",
                                            "q.",    "caf\xc3\xa9.1"};
    for (const std::string& file : files) {
        folder.write(file, "");
    }
    fs::create_directory(folder / "sub");
    fs::create_symlink(folder / "gone", folder / "dangling");
    const std::vector<dvn::Str> paths = OFUtilities::filesInFolder(folder.str());
    std::vector<dvn::Str> names = {"",     ".",   "missing", "sub",         "dangling", "k",
                                   "x",    "x.1", "alpha",   "beta.water",  "slash",    "T",
                                   "T.gz", "q",   "U",       "caf\xc3\xa9", "sub/p",    "pp"};
    names.insert(names.end(), files.begin(), files.end());
    for (const dvn::Str& name : names) {
        EXPECT_EQ(OFUtilities::hasFileOfBaseName(folder.str(), name),
                  std::ranges::count(paths, name, &OFUtilities::fileBaseName) != 0)
            << name.toStdString();
    }
    EXPECT_FALSE(OFUtilities::hasFileOfBaseName(folder.str("missing"), "p"));
}
