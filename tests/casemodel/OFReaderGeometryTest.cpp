// SPDX-License-Identifier: MIT
#include "support/CaseFiles.h"
#include "casemodel/OFReader.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

/// An empty case, and a reader that takes everything.
class OFReaderGeometry : public testing::Test
{
protected:
    OFReaderGeometry()
    {
        writeControlDict(m_folder);
        m_reader.setLoadBoundariesFlag(true);
        m_reader.setLoadCellZonesFlag(true);
        m_reader.setLoadFaceZonesFlag(true);
    }

    void writeMesh(const std::string& meshFolder)
    {
        m_folder.writeGz(meshFolder + "/boundary.gz", boundaryFile({{"in", "patch", 2, 4},
                                                                    {"gone", "wall", 0, 6},
                                                                    {"minus", "wall", -3, 6},
                                                                    {"procBoundary0to1", "processor", 2, 6}}));
        m_folder.write(meshFolder + "/cellZones", zonesFile(false, {{"core", {0}}, {"rim", {1}}}));
        m_folder.write(meshFolder + "/faceZones", zonesFile(true, {{"cut", {0}}}));
    }

    /// Name, marks, patches with their ids and zone counts of a part.
    std::string shape(const OFPart& part)
    {
        std::string text = part.name().toUtf8() + (part.isDefaultRegion() ? "*" : "") + ":";
        for (const OFBoundary& boundary : part.boundaries()) {
            text += " " + boundary.patchName().toUtf8() + "#" + std::to_string(boundary.boundaryID());
        }
        return text + " " + std::to_string(part.cellZones().size()) + std::to_string(part.faceZones().size());
    }

    Texts errorsOfOpening(const dvn::Str& folder)
    {
        m_log.clear();
        EXPECT_FALSE(m_reader.init(folder));
        return m_log.errors();
    }

    std::string path(const std::string& relative) { return (m_folder.path() / relative).string(); }

    TempFolder m_folder;
    LogCapture m_log;
    OFReader m_reader;
};

TEST_F(OFReaderGeometry, TakesProcessorFoldersBeforeAllElse)
{
    writeMesh("constant/polyMesh");
    writeMesh("processorData/constant/polyMesh");
    m_folder.write("processor1/constant/polyMesh/boundary", "no header");
    m_folder.write("processor2/constant/x", "");
    m_folder.write("postProcessing/sampleSurface/0/plane/x", "");
    m_reader.setHideProcessorInterfacesAsBoundariesFlag(true);
    m_reader.setLoadGlobalMesh(false);
    m_reader.setLoadLocalMeshes(false);
    ASSERT_TRUE(m_reader.init(m_folder.str()));
    EXPECT_EQ(m_reader.simulationDescription(), dvn::Str("Parallel Simulation\n"));
    EXPECT_EQ(m_reader.sampledSurfaceCount(), 0U);
    ASSERT_EQ(m_reader.partCount(), 2U);
    const std::size_t sound = m_reader.part(0).name() == dvn::Str("processorData") ? 0 : 1;
    EXPECT_EQ(shape(m_reader.part(sound)), "processorData: in#1 21");
    EXPECT_EQ(m_reader.part(sound).folder(), m_folder.str("processorData/constant/polyMesh"));
    // A broken file costs the part its patches; ids move on as if it had none.
    EXPECT_EQ(shape(m_reader.part(1 - sound)), "processor1: 00");
    EXPECT_EQ(m_reader.part(1).id(), sound == 0 ? 1 + 1 + 1 + 3 : 2);
}

TEST_F(OFReaderGeometry, FallsBackToTheMeshOfTimeZeroWithoutItsGroups)
{
    writeMesh("0/polyMesh");
    m_reader.setLoadGlobalMesh(false);
    ASSERT_TRUE(m_reader.init(m_folder.str() + "/"));
    ASSERT_EQ(m_reader.partCount(), 1U);
    EXPECT_EQ(shape(m_reader.part(0)), "default_region: 00");

    EXPECT_EQ(m_reader.simulationDescription(), dvn::Str("Single-Region Simulation"));
    EXPECT_EQ(m_reader.simulationTitle().toUtf8(), m_folder.path().filename().string());
    // The description files of this mesh are looked for beside the time folder.
    m_folder.write("0polyMesh/cellZones", "broken");
    EXPECT_EQ(errorsOfOpening(m_folder.str()).back(),
              "OFReader : Cannot init cell zones. A parsing problem occurred in " + path("0/polyMesh/cellZones") + ".");
}

TEST_F(OFReaderGeometry, TellsWhyACaseDoesNotOpen)
{
    EXPECT_EQ(joined(errorsOfOpening("no\\such")), "OFReader : Failed to open case no/such - file does not exist");
    const std::string file = path("constant/polyMesh/boundary");
    m_folder.write("constant/polyMesh/boundary", "broken");
    EXPECT_EQ(joined(errorsOfOpening(m_folder.str())),
              "OFFile : Failed to open boundary file. File basename is " + file +
                  ", OFReader : Cannot init geometry. Boundary File/Folder " + file + " does not exist." +
                  ", OFReader : Cannot init Boundary. A parsing problem occurred in " + file + ".");
    std::filesystem::remove_all(m_folder.path() / "constant");
    EXPECT_EQ(joined(errorsOfOpening(m_folder.str())),
              "OFReader : Cannot init geometry. Folder " + path("constant") + " does not exist.");
    std::filesystem::remove_all(m_folder.path() / "system");
    EXPECT_EQ(errorsOfOpening(m_folder.str()).back(),
              "OFReader : Failed to open case " + m_folder.path().string() + " - could not read system/controlDict");
}

TEST_F(OFReaderGeometry, TakesTheSurfacesOfTheFirstTimeInTextOrder)
{
    std::filesystem::create_directories(m_folder.path() / "postProcessing/sampleSurface");
    ASSERT_TRUE(m_reader.init(m_folder.str()));
    EXPECT_EQ(m_reader.partCount() + m_reader.sampledSurfaceCount(), 0U);
    m_folder.write("postProcessing/sampleSurface/2/old/x", "");
    m_folder.write("postProcessing/sampleSurface/10/cut/x", "");
    ASSERT_TRUE(m_reader.init(m_folder.str()));
    ASSERT_EQ(m_reader.sampledSurfaceCount(), 1U);
    EXPECT_EQ(m_reader.sampledSurface(0).id(), 1);
    EXPECT_EQ(m_reader.sampledSurface(0).folder(), m_folder.str("postProcessing/sampleSurface/10/cut"));
}

} // namespace
