// SPDX-License-Identifier: MIT
#include "casemodel/CaseFiles.h"
#include "casemodel/OFReader.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

class OFReaderStates : public testing::Test
{
protected:
    void open(const std::vector<std::string>& folders, const std::string& controlEntries = {})
    {
        writeControlDict(m_folder, controlEntries);
        makeFolders({"constant"});
        makeFolders(folders);
        m_reader.close();
        ASSERT_TRUE(m_reader.init(m_folder.str()));
    }

    void makeFolders(const std::vector<std::string>& folders)
    {
        for (const std::string& folder : folders) {
            std::filesystem::create_directories(m_folder.path() / folder);
        }
    }

    /// Id and shown name of each state in list order.
    std::vector<std::string> states() const
    {
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < m_reader.stateCount(); ++i) {
            const OFState& state = m_reader.state(i);
            texts.push_back(std::to_string(state.id()) + " " + state.name().toStdString());
        }
        return texts;
    }

    std::vector<std::string> knownFolders() const
    {
        std::vector<std::string> names;
        for (const dvn::Str& name : m_reader.statesFolder()) {
            names.push_back(name.toUtf8());
        }
        return names;
    }

    TempFolder m_folder;
    LogCapture m_log;
    OFReader m_reader;
};

using Texts = std::vector<std::string>;

// Ids run in text order over the accepted folders, the list in the order of time.
TEST_F(OFReaderStates, AreFoldersWhoseNamesBeginWithANumber)
{
    open({"0", "1", "10", "2", "postProcessing", "dynamicCode", "0.orig", "-1"});
    EXPECT_EQ(states(), (Texts{"1 Time -1.00000 #0", "2 Time 0.00000 #1", "3 Time 0.00000 #2", "4 Time 1.00000 #3",
                               "6 Time 2.00000 #4", "5 Time 10.00000 #5"}));
    EXPECT_EQ(m_log.infos(), Texts{"OFReader : Parsed folder, non registered " +
                                   (m_folder.path() / "dynamicCode").string() + " state."});
    EXPECT_EQ(knownFolders(),
              (Texts{"-1", "0", "0.orig", "1", "10", "2", "constant", "dynamicCode", "postProcessing", "system"}));
}

TEST_F(OFReaderStates, TakeTheStepIndexFromTheirFolderOrFromTheInterval)
{
    m_folder.write("0.1/uniform/time", foamFile("dictionary", "time", "index 150;\n"));
    m_folder.write("0.2/uniform/time", foamFile("dictionary", "time", "index -1;\n"));
    m_folder.write("0.3/uniform/time", "no header");
    open({"0"}, "writeInterval 20;\n");
    EXPECT_EQ(states(),
              (Texts{"1 Time 0.00000 #0", "2 Time 0.10000 #150", "3 Time 0.20000 #40", "4 Time 0.30000 #60"}));
    open({}, "writeInterval 0.5;\n");
    EXPECT_EQ(states()[2], "3 Time 0.20000 #0");
    m_log.clear();
    open({}, "writeInterval every $n;\n");
    EXPECT_EQ(states()[2], "3 Time 0.20000 #2");
    EXPECT_EQ(m_log.infos(), Texts{"OFReader : Failed to convert writeInterval value ( $n ) from controlDict. Using 1 "
                                   "instead"});
}

TEST_F(OFReaderStates, AreNumberedAnewWhenAFolderIsAdded)
{
    open({"0", "1", "2"});
    makeFolders({"0.5", "other"});
    EXPECT_EQ(m_reader.addState("0.5"), 1002);
    EXPECT_EQ(states(),
              (Texts{"1001 Time 0.00000 #0", "1002 Time 0.50000 #1", "1003 Time 1.00000 #2", "1004 Time 2.00000 #3"}));
    EXPECT_EQ(m_reader.addState("other"), -1);
    EXPECT_EQ(m_reader.stateCount(), 4U);
    EXPECT_EQ(knownFolders(), (Texts{"0", "0.5", "1", "2", "constant", "other", "system"}));
}

// The folder list loses the name at the state's position, whatever it is: with 10 before 2 that is another one.
TEST_F(OFReaderStates, LoseTheFolderAtTheirPositionWhenOneIsDeleted)
{
    open({"0", "1", "10", "2"});
    EXPECT_EQ(m_reader.deleteState("2"), 2);
    EXPECT_EQ(states(), (Texts{"1001 Time 0.00000 #0", "1002 Time 1.00000 #1", "1003 Time 10.00000 #2"}));
    EXPECT_EQ(knownFolders(), (Texts{"0", "1", "2", "constant", "system"}));
    EXPECT_EQ(m_reader.deleteState("2"), -1);
    EXPECT_EQ(m_reader.deleteState("10"), 2);
    EXPECT_EQ(m_reader.deleteState("0"), 0);
    EXPECT_EQ(m_reader.deleteState("1"), 0);
    EXPECT_EQ(m_reader.stateCount(), 0U);
}

TEST_F(OFReaderStates, TakeSurfaceValuesOfTheirNameAndThoseOfRejectedFoldersBehindThem)
{
    const std::string root = "postProcessing/sampleSurface/";
    m_folder.write(root + "1/cut/scalarField/p", "1\n(\n1\n)\n");
    m_folder.write(root + "1/cut/vectorField/U.gz", "");
    m_folder.write(root + "1/rim/scalarField/p", "");
    m_folder.write(root + "abc/cut/scalarField/q", "");
    m_folder.write(root + "0a/cut/scalarField/lost", "");
    // "/" sorts before every digit, so the folder that is no time comes first and has no state to go to.
    open({"+a", "0", "1", "abc"});
    std::vector<std::string> results;
    for (std::size_t i = 0; i < m_reader.state(1).resultCount(); ++i) {
        const OFResult& result = m_reader.state(1).result(i);
        results.push_back(result.nativeName().toUtf8() + "|" + result.name().toUtf8() + "|" +
                          result.idString().toUtf8() + "|" + result.className().toUtf8());
    }
    std::sort(results.begin(), results.end());
    EXPECT_EQ(results, (Texts{"U|U [N]|VELOCITY_N*|pointVectorField", "p|p [N]|PRESSURE_N*|pointScalarField",
                              "p|p [N]|PRESSURE_N*|pointScalarField", "q|q [N]|Q_N*|pointScalarField"}));
    EXPECT_EQ(m_reader.state(0).resultCount(), 0U);
}

} // namespace
