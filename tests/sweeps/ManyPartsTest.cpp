// SPDX-License-Identifier: MIT
#include "support/CaseFiles.h"
#include "sweeps/UseCase.h"

#include <gtest/gtest.h>
#include <tbb/global_control.h>
#include <tbb/task_arena.h>

// More parts, patches and files than threads, so that they all compete for shared data.
TEST(ManyParts, AreTheSameWithOneThreadAndEight)
{
    constexpr int REGIONS = 20;
    constexpr int PATCHES = 30;
    const TempFolder folder;
    writeControlDict(folder);
    for (int region = 0; region < REGIONS; ++region) {
        const std::string name = "region" + std::to_string(region);
        writeTwoCubes(folder, "constant/" + name + "/polyMesh");
        std::vector<PatchEntry> patches;
        for (int patch = 0; patch < PATCHES; ++patch) {
            patches.push_back({"patch" + std::to_string(patch), "wall", 1 + patch % 2, 1 + patch % 9});
        }
        folder.write("constant/" + name + "/polyMesh/boundary", boundaryFile(patches));
        writePressure(folder, "0/" + name);
        writePressure(folder, "1/" + name, "uniform " + std::to_string(region));
    }
    const tbb::global_control threads(tbb::global_control::max_allowed_parallelism, 8);
    std::optional<std::string> alone;
    tbb::task_arena(1).execute([&] { alone = useCase(folder.path()); });
    ASSERT_TRUE(alone.has_value());
    for (int round = 0; round < 5; ++round) {
        tbb::task_arena(8).execute([&] { EXPECT_EQ(useCase(folder.path()), alone); });
    }
}
