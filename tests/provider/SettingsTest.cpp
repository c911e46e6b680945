// SPDX-License-Identifier: MIT
#include "provider/OpenCase.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <tbb/version.h>

#include <algorithm>

namespace {

TEST(CasePath, LosesItsFileName)
{
    const auto firstErrorOf = [](const char* key) {
        const LogCapture log;
        EXPECT_EQ(OpenFoamProvider().init(DDPString(key), HostOptions(), nullptr), 0);
        return log.errors().empty() ? "" : log.errors()[0];
    };
    for (const auto& [key, folder] :
         std::vector<std::pair<const char*, std::string>>{{"/no/run/case.foam", "/no/run"},
                                                          {"C:\\no\\run\\case.foam", "C:/no/run"},
                                                          {"no/run//case.foam", "no/run"},
                                                          {"no/case.foam", "no"}}) {
        EXPECT_EQ(firstErrorOf(key), "OFReader : Failed to open case " + folder + " - file does not exist");
    }
    for (const char* const key : {"case.foam", "//", ""}) {
        EXPECT_EQ(firstErrorOf(key), "") << key;
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
    Texts expected = {"init(key = 'case.foam')",
                      "Dalvorn Data Providers version: 1.9.99",
                      "Dalvorn Core Modules version: 3.10.0",
                      "DDP API version: 7.0",
                      "Using Intel TBB version: " + std::to_string(TBB_VERSION_MAJOR) + "." +
                          std::to_string(TBB_VERSION_MINOR) +
                          " (Interface version: " + std::to_string(TBB_INTERFACE_VERSION) +
                          ") - Runtime interface: " + std::to_string(TBB_runtime_interface_version()),
                      "** User settings **",
                      " - LOAD_FACE_ZONES: ON",
                      " - NODE_AVG_RES: OFF",
                      " - RESULTS_NAMES_MAPPING: ENABLED",
                      " "};
    for (std::string& line : expected) {
        line = "OpenFoamProvider : " + line;
    }
    EXPECT_EQ(log.infos(), expected);
}

// Each switch has one visible effect of its own, so a setting that reaches the wrong setter shows.
TEST(Settings, ReachTheReader)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    writeTwoCubes(folder, "constant/region/polyMesh");
    folder.write("0/p", fieldFile("volScalarField", "p", "uniform 0"));
    const auto shape = [&](const HostOptions& options) {
        OpenCase openCase(folder.path(), options);
        std::string text;
        for (const char* const type : {"", "patch", "wall", "CellZone", "FaceZone"}) {
            text += std::to_string(std::ranges::count(openCase.metaData().groups, type, &HostGroup::type));
        }
        return text + " " + std::to_string(openCase.metaData().results.size());
    };
    EXPECT_EQ(shape({}), "22210 2");
    EXPECT_EQ(shape(settings({{"LOAD_BC_PARTS", false}})), "20010 2");
    EXPECT_EQ(shape(settings({{"LOAD_CELL_ZONES", false}})), "22200 2");
    EXPECT_EQ(shape(settings({{"LOAD_FACE_ZONES", true}})), "22211 2");
    EXPECT_EQ(shape(settings({{"LOAD_GLOBAL_MESH", false}})), "11100 0");
    EXPECT_EQ(shape(settings({{"LOAD_LOCAL_MESHES", false}})), "11110 2");
    EXPECT_EQ(shape(settings({{"NODE_AVG_RES", false}})), "22210 1");
}

} // namespace
