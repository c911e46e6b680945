// SPDX-License-Identifier: MIT
#include "support/LogCapture.h"
#include "support/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(CasePath, LosesItsFileName)
{
    const std::pair<const char*, const char*> cases[] = {
        {"/no/run/case.foam", "/no/run"}, {"C:\\no\\run\\case.foam", "C:/no/run"}, {"no/run//case.foam", "no/run"}};
    for (const auto& [key, folder] : cases) {
        const LogCapture log;
        EXPECT_EQ(OpenFoamProvider().init(DDPString(key), HostOptions(), nullptr), 0);
        EXPECT_EQ(joined(log.errors()),
                  "OFReader : Failed to open case " + std::string(folder) + " - file does not exist");
    }
    for (const char* const key : {"case.foam", "//", ""}) {
        EXPECT_EQ(OpenFoamProvider().init(DDPString(key), HostOptions(), nullptr), 0);
    }
}

TEST(Settings, AreReadInTheirOrderAndLoggedWhereGiven)
{
    HostOptions options = settings({{"LOAD_FACE_ZONES", true}, {"NODE_AVG_RES", false}});
    options.setString("RESULTS_NAMES_MAPPING", "secret=1");
    const LogCapture log;
    OpenFoamProvider().init(DDPString("case.foam"), options, nullptr);
    EXPECT_EQ(joined(options.askedKeys()), "LOAD_GLOBAL_MESH, LOAD_LOCAL_MESHES, LOAD_BC_PARTS, LOAD_CELL_ZONES, "
                                           "LOAD_FACE_ZONES, NODE_AVG_RES, HIDE_PARALLEL_INTERFACES, "
                                           "RESULTS_NAMES_MAPPING");
    const Texts lines = log.infos();
    ASSERT_EQ(lines.size(), 10U);
    EXPECT_EQ(lines[0], "OpenFoamProvider : init(key = 'case.foam')");
    EXPECT_EQ(joined({lines.begin() + 5, lines.end()}),
              "OpenFoamProvider : ** User settings **, OpenFoamProvider :  - LOAD_FACE_ZONES: ON, "
              "OpenFoamProvider :  - NODE_AVG_RES: OFF, OpenFoamProvider :  - RESULTS_NAMES_MAPPING: ENABLED, "
              "OpenFoamProvider :  ");
}

// Each switch has one visible effect of its own, so a setting that reaches the wrong setter shows.
TEST(Settings, ReachTheReader)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    writeTwoCubes(folder, "constant/region/polyMesh");
    writePressure(folder, "0");
    const std::tuple<const char*, bool, const char*> switches[] = {
        {"LOAD_BC_PARTS", true, "22210 2"},     {"LOAD_BC_PARTS", false, "20010 2"},
        {"LOAD_CELL_ZONES", false, "22200 2"},  {"LOAD_FACE_ZONES", true, "22211 2"},
        {"LOAD_GLOBAL_MESH", false, "11100 0"}, {"LOAD_LOCAL_MESHES", false, "11110 2"},
        {"NODE_AVG_RES", false, "22210 1"}};
    for (const auto& [key, value, expected] : switches) {
        OpenCase openCase(folder.path(), settings({{key, value}}));
        std::string shape;
        for (const char* const type : {"", "patch", "wall", "CellZone", "FaceZone"}) {
            shape += std::to_string(std::ranges::count(openCase.metaData().groups, type, &HostGroup::type));
        }
        EXPECT_EQ(shape + " " + std::to_string(openCase.metaData().results.size()), expected) << key << value;
    }
}

} // namespace
