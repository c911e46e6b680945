// SPDX-License-Identifier: MIT
#include "border/HostError.h"
#include "sample/SampleCase.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;

void writeCase(const fs::path& folder, SampleKind kind, FoamFormat format, int cells, bool overwrite = false)
{
    SampleOptions options;
    options.kind = kind;
    options.cells = cells;
    options.format = format;
    options.overwrite = overwrite;
    writeSampleCase(folder, options);
}

} // namespace

TEST(SampleCase, ReplacesACaseOnlyOnRequest)
{
    const TempFolder folder;
    writeCase(folder / "case", SampleKind::Hex, {}, 60);
    EXPECT_THROW(writeCase(folder / "case", SampleKind::Hex, {}, 60), HostError);
    // A leftover compressed file would hide the new plain one.
    writeCase(folder / "case", SampleKind::Hex, {false, true}, 60, true);
    EXPECT_FALSE(fs::exists(folder / "case/0/T"));
    writeCase(folder / "case", SampleKind::Hex, {}, 60, true);
    EXPECT_FALSE(fs::exists(folder / "case/0/T.gz"));
    EXPECT_TRUE(fs::exists(folder / "case/0/T"));
    // Times of the former mesh would belong to no cells; what others put there stays.
    writeSampleCase(folder / "case", {.cells = 8, .states = 3, .format = {}, .overwrite = true});
    folder.write("case/notes", "mine");
    writeCase(folder / "case", SampleKind::Hex, {}, 60, true);
    EXPECT_FALSE(fs::exists(folder / "case/1"));
    EXPECT_TRUE(fs::exists(folder / "case/notes") && !fs::exists(folder / "case/.ddphost-sample-new"));
    folder.write("computed/0/T", "days of work");
    EXPECT_THROW(writeCase(folder / "computed", SampleKind::Hex, {}, 60, true), HostError);
    EXPECT_EQ(fileBytes(folder / "computed/0/T"), "days of work");
}
