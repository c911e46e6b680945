// SPDX-License-Identifier: MIT
#include "casemodel/CaseFiles.h"
#include "provider/OpenCase.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <tbb/version.h>

#include <algorithm>

namespace {

using Texts = std::vector<std::string>;

/// The folder that a key leads to, as the log names it; empty if nothing was tried.
std::string folderOf(const std::string& key)
{
    const LogCapture log;
    OpenFoamProvider provider;
    EXPECT_EQ(provider.init(DDPString(key.c_str()), HostOptions(), nullptr), 0);
    const std::string start = "OFReader : Failed to open case ";
    const std::string end = " - file does not exist";
    const Texts errors = log.errors();
    return errors.empty() ? "" : errors[0].substr(start.size(), errors[0].size() - start.size() - end.size());
}

TEST(CasePath, LosesItsFileName)
{
    EXPECT_EQ(folderOf("/no/run/case.foam"), "/no/run");
    EXPECT_EQ(folderOf("C:\\no\\run\\case.foam"), "C:/no/run");
    EXPECT_EQ(folderOf("no/run//case.foam"), "no/run");
    EXPECT_EQ(folderOf("no/case.foam"), "no");
    EXPECT_EQ(folderOf("case.foam"), "");
    EXPECT_EQ(folderOf("//"), "");
    EXPECT_EQ(folderOf(""), "");
}

TEST(Settings, AreReadInTheirOrderAndLoggedWhereGiven)
{
    HostOptions options;
    options.setBool("LOAD_FACE_ZONES", true);
    options.setBool("NODE_AVG_RES", false);
    options.setString("RESULTS_NAMES_MAPPING", "secret=1");
    const LogCapture log;
    OpenFoamProvider provider;
    provider.init(DDPString("case.foam"), options, nullptr);
    EXPECT_EQ(options.askedKeys(),
              (Texts{"LOAD_GLOBAL_MESH", "LOAD_LOCAL_MESHES", "LOAD_BC_PARTS", "LOAD_CELL_ZONES", "LOAD_FACE_ZONES",
                     "NODE_AVG_RES", "HIDE_PARALLEL_INTERFACES", "RESULTS_NAMES_MAPPING"}));
    const std::string source = "OpenFoamProvider : ";
    const std::string header = std::to_string(TBB_VERSION_MAJOR) + "." + std::to_string(TBB_VERSION_MINOR) +
                               " (Interface version: " + std::to_string(TBB_INTERFACE_VERSION) + ")";
    EXPECT_EQ(log.infos(),
              (Texts{source + "init(key = 'case.foam')", source + "Dalvorn Data Providers version: 1.9.99",
                     source + "Dalvorn Core Modules version: 3.10.0", source + "DDP API version: 7.0",
                     source + "Using Intel TBB version: " + header +
                         " - Runtime interface: " + std::to_string(TBB_runtime_interface_version()),
                     source + "** User settings **", source + " - LOAD_FACE_ZONES: ON", source + " - NODE_AVG_RES: OFF",
                     source + " - RESULTS_NAMES_MAPPING: ENABLED", source + " "}));
}

// Each switch has one visible effect of its own, so a setting that reaches the wrong setter shows.
TEST(Settings, ReachTheReader)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    writeTwoCubes(folder, "constant/region/polyMesh");
    folder.write("0/p", fieldFile("volScalarField", "p", "uniform 0"));
    const auto shape = [&](const std::string& key, bool value) {
        HostOptions options;
        if (!key.empty()) {
            options.setBool(key, value);
        }
        OpenCase openCase(folder.path(), options);
        const HostMetaData& description = openCase.metaData();
        std::string text;
        for (const char* const kind : {"patch", "wall", "CellZone", "FaceZone"}) {
            text += std::to_string(std::ranges::count(description.groups, kind, &HostGroup::type));
        }
        const auto parts = std::ranges::count(description.groups, HostGroupKind::Part, &HostGroup::kind);
        return text + " " + std::to_string(parts) + " " + std::to_string(description.results.size());
    };
    EXPECT_EQ(shape("", true), "2210 2 2");
    EXPECT_EQ(shape("LOAD_BC_PARTS", false), "0010 2 2");
    EXPECT_EQ(shape("LOAD_CELL_ZONES", false), "2200 2 2");
    EXPECT_EQ(shape("LOAD_FACE_ZONES", true), "2211 2 2");
    EXPECT_EQ(shape("LOAD_GLOBAL_MESH", false), "1100 1 0");
    EXPECT_EQ(shape("LOAD_LOCAL_MESHES", false), "1110 1 2");
    EXPECT_EQ(shape("NODE_AVG_RES", false), "2210 2 1");
}

} // namespace
