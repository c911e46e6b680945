// SPDX-License-Identifier: MIT
#include "casemodel/CaseFiles.h"
#include "casemodel/OFReader.h"
#include "foamfile/OFUtilities.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

/// An empty case with a `constant` folder, and a reader that takes everything.
class OFReaderGeometry : public testing::Test
{
protected:
    OFReaderGeometry()
    {
        writeControlDict(m_folder);
        std::filesystem::create_directories(m_folder.path() / "constant");
        m_reader.setLoadBoundariesFlag(true);
        m_reader.setLoadCellZonesFlag(true);
        m_reader.setLoadFaceZonesFlag(true);
    }

    void writeMesh(const std::string& meshFolder, const std::vector<PatchEntry>& patches)
    {
        m_folder.write(meshFolder + "/boundary", boundaryFile(patches));
        m_folder.write(meshFolder + "/cellZones", cellZonesFile({{"core", {0}}, {"rim", {1}}}));
        m_folder.write(meshFolder + "/faceZones", faceZonesFile({{"cut", {0}}}));
    }

    std::vector<std::string> patchNames(std::size_t part)
    {
        std::vector<std::string> names;
        for (const OFBoundary& boundary : m_reader.part(part).boundaries()) {
            names.push_back(boundary.patchName().toUtf8() + "#" + std::to_string(boundary.boundaryID()));
        }
        return names;
    }

    std::string path(const std::string& relative) { return (m_folder.path() / relative).string(); }

    TempFolder m_folder;
    LogCapture m_log;
    OFReader m_reader;
};

using Names = std::vector<std::string>;

TEST_F(OFReaderGeometry, NumbersPartsBehindTheGroupsOfThePartsBefore)
{
    const std::vector<PatchEntry> patches = {{"in", "patch", 2, 4},
                                             {"gone", "wall", 0, 6},
                                             {"minus", "wall", -3, 6},
                                             {"procBoundary0to1", "processor", 2, 6}};
    for (const char* const region : {"constant/polyMesh", "constant/a", "constant/b"}) {
        writeMesh(std::string(region) + (std::string(region) == "constant/polyMesh" ? "" : "/polyMesh"), patches);
    }
    std::filesystem::create_directories(m_folder.path() / "constant/triSurface");
    ASSERT_TRUE(m_reader.init(m_folder.str()));

    EXPECT_EQ(m_reader.simulationDescription(), dvn::Str("Multi-Region Simulation\n"));
    ASSERT_EQ(m_reader.partCount(), 3U);
    int expectedId = 1;
    std::size_t position = 0;
    for (const dvn::Str& name : OFUtilities::subFolders(m_folder.str("constant"))) {
        if (name == dvn::Str("triSurface")) {
            continue;
        }
        const bool isDefault = name == dvn::Str("polyMesh");
        const OFPart& part = m_reader.part(position);
        SCOPED_TRACE(name.toUtf8());
        EXPECT_EQ(part.id(), expectedId);
        EXPECT_EQ(part.isDefaultRegion(), isDefault);
        EXPECT_EQ(part.name(), isDefault ? dvn::Str("default_region") : name);
        // Dropped patches leave no gap, and zones of a region are not read.
        EXPECT_EQ(patchNames(position), (Names{"in#1", "procBoundary0to1#2"}));
        EXPECT_EQ(part.cellZones().size() + part.faceZones().size(), isDefault ? 3U : 0U);
        expectedId += isDefault ? 1 + 2 + 3 : 1 + 2;
        ++position;
    }
    EXPECT_TRUE(m_log.errors().empty());
}

TEST_F(OFReaderGeometry, TakesProcessorFoldersBeforeAllElse)
{
    writeMesh("constant/polyMesh", {{"in", "patch", 2, 4}});
    writeMesh("processorData/constant/polyMesh", {{"in", "patch", 2, 4}, {"procBoundary0to1", "processor", 2, 6}});
    m_folder.write("processor1/constant/polyMesh/boundary", "no header");
    std::filesystem::create_directories(m_folder.path() / "processor2/constant");
    std::filesystem::create_directories(m_folder.path() / "postProcessing/sampleSurface/0/plane");
    m_reader.setHideProcessorInterfacesAsBoundariesFlag(true);
    // No effect on a decomposed case.
    m_reader.setLoadGlobalMesh(false);
    m_reader.setLoadLocalMeshes(false);
    ASSERT_TRUE(m_reader.init(m_folder.str()));

    EXPECT_EQ(m_reader.simulationDescription(), dvn::Str("Parallel Simulation\n"));
    EXPECT_EQ(m_reader.sampledSurfaceCount(), 0U);
    ASSERT_EQ(m_reader.partCount(), 2U);
    const std::size_t sound = m_reader.part(0).name() == dvn::Str("processorData") ? 0 : 1;
    EXPECT_EQ(patchNames(sound), Names{"in#1"});
    EXPECT_FALSE(m_reader.part(sound).isDefaultRegion());
    EXPECT_EQ(m_reader.part(sound).folder(), m_folder.str("processorData/constant/polyMesh"));
    // A broken boundary file costs the part its patches; ids move on as if it had none.
    EXPECT_EQ(patchNames(1 - sound), Names{});
    EXPECT_EQ(m_reader.part(1).id(), sound == 0 ? 1 + 1 + 1 + 3 : 2);
    EXPECT_EQ(m_log.errors().back(), "OFReader : Cannot init geometry. Boundary File/Folder " +
                                         path("processor1/constant/polyMesh/boundary") + " does not exist.");
}

TEST_F(OFReaderGeometry, FallsBackToTheMeshOfTimeZeroWithoutItsGroups)
{
    writeMesh("0/polyMesh", {{"in", "patch", 2, 4}});
    m_reader.setLoadGlobalMesh(false);
    ASSERT_TRUE(m_reader.init(m_folder.str()));
    ASSERT_EQ(m_reader.partCount(), 1U);
    EXPECT_EQ(m_reader.part(0).name(), dvn::Str("default_region"));
    EXPECT_FALSE(m_reader.part(0).isDefaultRegion());
    EXPECT_EQ(m_reader.part(0).folder(), m_folder.str("0/polyMesh"));
    EXPECT_EQ(patchNames(0), Names{});
    EXPECT_TRUE(m_reader.part(0).cellZones().empty());
    EXPECT_EQ(m_reader.simulationDescription(), dvn::Str("Single-Region Simulation"));

    // The description files of this mesh are looked for beside the time folder.
    m_folder.write("0polyMesh/cellZones", "broken");
    m_reader.close();
    EXPECT_FALSE(m_reader.init(m_folder.str()));
    EXPECT_EQ(m_log.errors().back(),
              "OFReader : Cannot init cell zones. A parsing problem occurred in " + path("0/polyMesh/cellZones") + ".");
}

TEST_F(OFReaderGeometry, OpensACaseWithoutAnyMesh)
{
    m_folder.write("constant/polyMesh/boundary.gz", gzipped(boundaryFile({{"in", "patch", 2, 4}})));
    m_reader.setLoadGlobalMesh(false);
    ASSERT_TRUE(m_reader.init(m_folder.str() + "/"));
    EXPECT_EQ(m_reader.partCount(), 0U);
    EXPECT_EQ(m_reader.simulationDescription(), dvn::Str("Single-Region Simulation"));
    EXPECT_EQ(m_reader.simulationTitle().toUtf8(), m_folder.path().filename().string());

    m_reader.setLoadGlobalMesh(true);
    m_reader.close();
    ASSERT_TRUE(m_reader.init(m_folder.str()));
    EXPECT_EQ(patchNames(0), Names{"in#1"});
}

TEST_F(OFReaderGeometry, TellsWhyACaseDoesNotOpen)
{
    const std::string root = m_folder.path().string();
    const auto errorsOf = [&](const dvn::Str& folder) {
        m_log.clear();
        EXPECT_FALSE(m_reader.init(folder));
        return m_log.errors();
    };
    EXPECT_EQ(errorsOf("no\\such"), Names{"OFReader : Failed to open case no/such - file does not exist"});

    m_folder.write("constant/polyMesh/boundary", "broken");
    EXPECT_EQ(errorsOf(m_folder.str()),
              (Names{"OFFile : Failed to open boundary file. File basename is " + path("constant/polyMesh/boundary"),
                     "OFReader : Cannot init geometry. Boundary File/Folder " + path("constant/polyMesh/boundary") +
                         " does not exist.",
                     "OFReader : Cannot init Boundary. A parsing problem occurred in " +
                         path("constant/polyMesh/boundary") + "."}));
    EXPECT_EQ(m_reader.partCount(), 0U);

    std::filesystem::remove_all(m_folder.path() / "constant");
    EXPECT_EQ(errorsOf(m_folder.str()),
              Names{"OFReader : Cannot init geometry. Folder " + root + "/constant does not exist."});
    std::filesystem::remove_all(m_folder.path() / "system");
    EXPECT_EQ(errorsOf(m_folder.str()).back(),
              "OFReader : Failed to open case " + root + " - could not read system/controlDict");
}

TEST_F(OFReaderGeometry, TakesTheSurfacesOfTheFirstTimeInTextOrder)
{
    std::filesystem::create_directories(m_folder.path() / "postProcessing/sampleSurface");
    ASSERT_TRUE(m_reader.init(m_folder.str()));
    EXPECT_EQ(m_reader.sampledSurfaceCount(), 0U);

    std::filesystem::create_directories(m_folder.path() / "postProcessing/sampleSurface/2/old");
    std::filesystem::create_directories(m_folder.path() / "postProcessing/sampleSurface/10/cut");
    m_reader.close();
    ASSERT_TRUE(m_reader.init(m_folder.str()));
    ASSERT_EQ(m_reader.sampledSurfaceCount(), 1U);
    EXPECT_EQ(m_reader.sampledSurface(0).id(), 1);
    EXPECT_EQ(m_reader.sampledSurface(0).userName(), dvn::Str("cut[Surf]"));
    EXPECT_EQ(m_reader.sampledSurface(0).folder(), m_folder.str("postProcessing/sampleSurface/10/cut"));
}

} // namespace
