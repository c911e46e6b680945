// SPDX-License-Identifier: MIT
#include "host/ProgramRun.h"
#include "support/CaseFiles.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

/// Completes command lines about a case of two cubes with a pressure at the times 0.5 and 1.
class Completion : public testing::Test
{
protected:
    Completion()
    {
        writeControlDict(m_folder);
        writeTwoCubes(m_folder);
        writePressure(m_folder, "0.5");
        writePressure(m_folder, "1");
    }

    /// The candidates without their descriptions, in order. Nothing may be said on stderr.
    std::string complete(const std::string& words, const std::string& environment = "")
    {
        const ProgramRun result = runProgram(m_folder, "complete " + words, environment);
        EXPECT_EQ(result.err, "") << words;
        std::istringstream lines(result.out);
        std::string candidates;
        for (std::string line; std::getline(lines, line);) {
            candidates += line.substr(0, line.find('\t')) + " ";
        }
        return candidates;
    }

    /// Completes the name of a result with a faulty library.
    std::string completeWithFault(const std::string& words, const std::string& fault)
    {
        return complete("-- stats" + m_case + " " + words,
                        "FAULT='" + fault + "' DDP_PLUGIN='" FAULTY_PLUGIN "' timeout 10");
    }

    TempFolder m_folder;
    std::string m_case = inQuotes(m_folder.path());
};

} // namespace

TEST_F(Completion, KnowsWhatEachWordOfALineIs)
{
    const std::pair<std::string, const char*> lines[] = {
        {"-- stats" + m_case + " --result ''", "p "},
        {"-- stats --result= --json" + m_case + " -q --state 1,", "1,first 1,latest 1,all 1,noZero 1,0.5 1,1 "},
        {"-- --color always doctor" + m_case + " --state ''", "some first latest all 0.5 1 "},
        {"-- sample x --kind=", "--kind=decomposed --kind=hex --kind=mixed --kind=moving --kind=poly --kind=regions "
                                "--kind=surface --kind=zones "},
        {"-- sample x --states ''", ""},
        {"-- sample ''", "folders "},
        {"-- sample x ''", ""},
        {"-- info ''", "files "},
        {"-- info -- -", "files "},
        {"-- info x ''", ""},
        {"-- bench x ''", "files "},
        {"-- export x -o ''", "folders "},
        {"-- --plugin ''", "files "},
        {"-- info --set NODE_AVG_RES=", "NODE_AVG_RES=on NODE_AVG_RES=off "},
        {"-- info --set RESULTS_NAMES_MAPPING=", ""},
        {"--", ""},
        {"", ""},
    };
    for (const auto& [line, candidates] : lines) {
        EXPECT_EQ(complete(line), candidates) << line;
    }
}

TEST_F(Completion, OffersWhatTheOptionsOfTheLineDeliver)
{
    EXPECT_EQ(complete("-- stats" + m_case + " --part ''"), "default_region left side rest ");
    EXPECT_EQ(complete("-- stats" + m_case + " --set LOAD_BC_PARTS=off --part ''"), "default_region ");
}

// A word that goes on after a quote or a character that divides words is replaced only from there on.
TEST_F(Completion, GivesBashThePartOfTheWordThatItReplaces)
{
    const std::pair<const char*, const char*> lines[] = {{"--kind=de", "decomposed "},
                                                         {"--kind de", "decomposed "},
                                                         {"'--kind' \"de", "decomposed "},
                                                         {"--kin\\d d\"e", "ecomposed "},
                                                         {"--kind \"x", ""}};
    for (const auto& [line, candidates] : lines) {
        std::ofstream(m_folder / "line") << "ddphost sample x " << line;
        EXPECT_EQ(complete("--bash \"$(cat" + inQuotes(m_folder / "line") + ")\" '=:'"), candidates) << line;
    }
}

TEST_F(Completion, StaysQuietWhateverTheLibraryDoes)
{
    for (const char* const fault : {"throws", "crash in the description", "hang in the description"}) {
        EXPECT_EQ(completeWithFault("--result ''", fault), "") << fault;
        EXPECT_EQ(completeWithFault("--state ''", fault), "first latest all noZero ") << fault;
    }
    for (const char* const fault : {"log lines", "prints"}) {
        EXPECT_EQ(completeWithFault("--result ''", fault), "p ") << fault;
    }
    EXPECT_EQ(complete("-- stats" + m_case + " --plugin absent.so --result ''"), "");
    EXPECT_EQ(complete("-- stats absent --result ''"), "");
}
