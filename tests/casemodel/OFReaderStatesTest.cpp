// SPDX-License-Identifier: MIT
#include "support/CaseFiles.h"
#include "casemodel/OFReader.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace {

class OFReaderStates : public testing::Test
{
protected:
    void open(const Texts& folders, const std::string& controlEntries = {})
    {
        writeControlDict(m_folder, controlEntries);
        makeFolders(folders);
        m_reader.close();
        m_log.clear();
        ASSERT_TRUE(m_reader.init(m_folder.str()));
    }

    void makeFolders(const Texts& folders)
    {
        for (const std::string& folder : folders) {
            std::filesystem::create_directories(m_folder.path() / folder);
        }
    }

    /// Id and shown name of each state in list order.
    std::string states() const
    {
        Texts texts;
        for (std::size_t i = 0; i < m_reader.stateCount(); ++i) {
            texts.push_back(std::to_string(m_reader.state(i).id()) + " " + m_reader.state(i).name().toStdString());
        }
        return joined(texts);
    }

    std::string knownFolders() const
    {
        Texts names;
        std::ranges::transform(m_reader.statesFolder(), std::back_inserter(names), &dvn::Str::toUtf8);
        return joined(names);
    }

    TempFolder m_folder;
    LogCapture m_log;
    OFReader m_reader;
};

// Ids run in text order over the accepted folders, the list in the order of time.
TEST_F(OFReaderStates, AreFoldersWhoseNamesBeginWithANumber)
{
    open({"0", "1", "10", "2", "postProcessing", "dynamicCode", "0.orig", "-1"});
    EXPECT_EQ(states(), "1 Time -1.00000 #0, 2 Time 0.00000 #1, 3 Time 0.00000 #2, 4 Time 1.00000 #3, "
                        "6 Time 2.00000 #4, 5 Time 10.00000 #5");
    EXPECT_EQ(joined(m_log.infos()),
              "OFReader : Parsed folder, non registered " + (m_folder.path() / "dynamicCode").string() + " state.");
    EXPECT_EQ(knownFolders(), "-1, 0, 0.orig, 1, 10, 2, constant, dynamicCode, postProcessing, system");
}

TEST_F(OFReaderStates, TakeTheStepIndexFromTheirFolderOrFromTheInterval)
{
    m_folder.write("0.1/uniform/time", foamtext::header("dictionary", "time") + "index 150;\n");
    m_folder.write("0.2/uniform/time", foamtext::header("dictionary", "time") + "index -1;\n");
    open({"0"}, "writeInterval 20;\n");
    EXPECT_EQ(states(), "1 Time 0.00000 #0, 2 Time 0.10000 #150, 3 Time 0.20000 #40");
    open({}, "writeInterval 0.5;\n");
    EXPECT_EQ(states(), "1 Time 0.00000 #0, 2 Time 0.10000 #150, 3 Time 0.20000 #0");
    open({}, "writeInterval every $n;\n");
    EXPECT_EQ(states(), "1 Time 0.00000 #0, 2 Time 0.10000 #150, 3 Time 0.20000 #2");
    EXPECT_EQ(joined(m_log.infos()),
              "OFReader : Failed to convert writeInterval value ( $n ) from controlDict. Using 1 instead");
}

// The folder list loses the name at the state's position, whatever it is: with 10 before 2 that is another one.
TEST_F(OFReaderStates, LoseTheFolderAtTheirPositionWhenOneIsDeleted)
{
    open({"0", "1", "10", "2"});
    EXPECT_EQ(m_reader.deleteState("2"), 2);
    EXPECT_EQ(states(), "1001 Time 0.00000 #0, 1002 Time 1.00000 #1, 1003 Time 10.00000 #2");
    EXPECT_EQ(knownFolders(), "0, 1, 2, constant, system");
    EXPECT_EQ(m_reader.deleteState("2"), -1);
    EXPECT_EQ(m_reader.deleteState("10"), 2);
    EXPECT_EQ(m_reader.deleteState("0"), 0);
    EXPECT_EQ(m_reader.deleteState("1"), 0);
    EXPECT_EQ(states(), "");
}

// "+" sorts before every digit: that folder is no time and comes when there is no state yet to take its values.
TEST_F(OFReaderStates, TakeSurfaceValuesOfTheirNameAndThoseOfRejectedFoldersBehindThem)
{
    for (const char* const file : {"1/cut/scalarField/p", "1/cut/vectorField/U.gz", "1/rim/scalarField/p",
                                   "abc/cut/scalarField/q", "+a/cut/scalarField/lost"}) {
        m_folder.write(std::string("postProcessing/sampleSurface/") + file, "");
    }
    open({"+a", "0", "1", "abc"});
    EXPECT_EQ(m_reader.state(0).resultCount(), 0U);
    Texts results;
    for (std::size_t i = 0; i < m_reader.state(1).resultCount(); ++i) {
        const OFResult& result = m_reader.state(1).result(i);
        results.push_back(result.name().toUtf8() + " " + result.idString().toUtf8() + " " +
                          result.className().toUtf8());
    }
    std::ranges::sort(results);
    EXPECT_EQ(joined(results), "U [N] VELOCITY_N* pointVectorField, p [N] PRESSURE_N* pointScalarField, "
                               "p [N] PRESSURE_N* pointScalarField, q [N] Q_N* pointScalarField");
}

} // namespace
