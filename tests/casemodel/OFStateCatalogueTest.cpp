// SPDX-License-Identifier: MIT
#include "support/CaseFiles.h"
#include "casemodel/OFReader.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using NameMap = std::map<dvn::Str, dvn::Str>;

class OFStateCatalogue : public testing::Test
{
protected:
    void init(bool makeAverages, const NameMap& resultNames = {}, const std::vector<dvn::Str>& regions = {})
    {
        m_state = OFState(1);
        m_state.setGenerateNodeAverageResult(makeAverages);
        EXPECT_TRUE(m_state.init(m_folder.str("0.5"), "0.5", regions, resultNames));
    }

    /// Name, id string, class and unit of each result, sorted, as folders list in any order.
    Texts results() const
    {
        Texts texts;
        for (std::size_t i = 0; i < m_state.resultCount(); ++i) {
            const OFResult& result = m_state.result(i);
            texts.push_back(result.name().toUtf8() + "|" + result.idString().toUtf8() + "|" +
                            result.className().toUtf8() + "|" + result.unit().translate().toUtf8());
        }
        std::ranges::sort(texts);
        return texts;
    }

    TempFolder m_folder;
    LogCapture m_log;
    OFState m_state{1};
};

TEST_F(OFStateCatalogue, GivesEachFieldItsNamesAndEachCellFieldATwin)
{
    m_folder.write("0.5/p", fieldFile("volScalarField", "p", "uniform 0"));
    m_folder.writeGz("0.5/alpha.gz", fieldFile("volVectorField", "alpha.water", "uniform (0 0 0)"));
    m_folder.write("0.5/shift", foamtext::header("pointVectorField", "shift") + "dimensions [0 1];\n");
    m_folder.write("0.5/phi", fieldFile("surfaceScalarField", "phi", "uniform 0"));
    m_folder.write("0.5/cloud/x", fieldFile("volScalarField", "x", "uniform 0"));
    m_folder.write("0.5/polyMesh/points", foamtext::header("vectorField", "points"));
    const std::string average = "Dalvorn averaged result from volume data";
    init(true, {{"p", "Pressure %1"}, {"points", "Moved"}});
    EXPECT_EQ(results(), (Texts{"Moved|POINTS||m ", "Pressure %1 [node]|PRESSURE_N|" + average + "|m s-1 ",
                                "Pressure %1|PRESSURE_E|volScalarField|m s-1 ",
                                "alpha.water [node]|ALPHA.WATER_N|" + average + "|m s-1 ",
                                "alpha.water|ALPHA.WATER_E|volVectorField|m s-1 ",
                                "shift [N]|SHIFT_N*|pointVectorField|DIMENSIONLESS"}));
    EXPECT_EQ(joined(m_log.infos()), "OFState : Ignoring class::surfaceScalarField foung in " +
                                         (m_folder.path() / "0.5/phi").string() +
                                         ", result not supported in this reader");
    init(false);
    EXPECT_EQ(m_state.resultCount(), 4U);
}

TEST_F(OFStateCatalogue, ListsAFieldOfSeveralRegionsOnceAndFindsItWhereItsFileIs)
{
    m_folder.write("0.5/left/T", fieldFile("volScalarField", "T", "uniform 0"));
    m_folder.write("0.5/right/T", fieldFile("volVectorField", "T", "uniform 0"));
    m_folder.write("0.5/right/renamed", fieldFile("volScalarField", "k", "uniform 0"));
    init(false, {}, {"left", "right"});
    EXPECT_EQ(results(), (Texts{"T|TEMPERATURE_E|volScalarField|m s-1 ", "k|K_E|volScalarField|m s-1 "}));
    const OFPart left(1, "left", "");
    const OFPart right(2, "right", "");
    OFPart whole(3, "default_region", "");
    whole.setDefaultRegion(true);
    EXPECT_TRUE(m_state.hasResultForPart(&m_state.result(0), &left));
    EXPECT_TRUE(m_state.hasResultForPart(&m_state.result(0), &right));
    EXPECT_FALSE(m_state.hasResultForPart(&m_state.result(0), &whole));
    // The header's name is looked for, so a renamed file is found nowhere.
    EXPECT_FALSE(m_state.hasResultForPart(&m_state.result(1), &right));
}

TEST_F(OFStateCatalogue, EndsWithTheKnownTextAtAFieldWithoutClass)
{
    m_folder.write("0.5/p", "FoamFile\n{\n    object p;\n}\n");
    try {
        init(false);
        FAIL() << "nothing thrown";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "map::at:  key not found");
    }
}

TEST(ResultNames, AreReadAsPairsAndPairsWithoutASecondSideSkipped)
{
    dvn::Str text(" U = Speed ; p=;k;T=Heat;T=Warmth;;a=b=c\n");
    EXPECT_EQ(OFReader().buildResultsNamesMap(text), (NameMap{{"U", "Speed"}, {"T", "Warmth"}, {"a", "b"}}));
    EXPECT_EQ(text, dvn::Str("U = Speed ; p=;k;T=Heat;T=Warmth;;a=b=c"));
}

} // namespace
