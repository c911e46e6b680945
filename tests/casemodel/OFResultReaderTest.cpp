// SPDX-License-Identifier: MIT
#include "casemodel/OFResultReader.h"
#include "casemodel/CaseFiles.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <regex>

namespace {

using Values = std::vector<double>;

void expectLine(const LogCapture& log, const std::string& pattern)
{
    ASSERT_EQ(log.infos().size(), 1U);
    EXPECT_TRUE(std::regex_match(log.infos()[0], std::regex(pattern))) << log.infos()[0];
}

TEST(OFResultReader, TellsWhatItReadAndNothingOfWhatItCouldNot)
{
    const TempFolder folder;
    folder.write("p", fieldFile("volScalarField", "p", scalarList({1, 2}), {{"in", "type zeroGradient;"}}));
    folder.write("bare", "\n2\n(\n5\n6\n)\n");
    const OFResultReader reader;
    OFBoundary patch;
    patch.setPatchName("in");
    patch.createFaceToCellMapping(1);
    patch.cellIndex(0) = 1;
    Values values(2);
    std::vector<Values> patchValues(1, Values(1));
    {
        const LogCapture log;
        bool isInteriorRead = false;
        EXPECT_TRUE(reader.readValuesForCellAndBoundaries(folder.str(), "p", "volScalarField", &values, {patch},
                                                          patchValues, &isInteriorRead));
        EXPECT_TRUE(isInteriorRead);
        EXPECT_EQ(values, (Values{1, 2}));
        EXPECT_EQ(patchValues[0], Values{2});
        expectLine(log, "OFResultReader : Result p file done\\. Read 2 cellItems\\. Read 1 boundary patches containing "
                        "1 boundaryItems\\. Time used : [0-9.e-]+");
    }
    {
        const LogCapture log;
        EXPECT_TRUE(reader.readNonHeaderValues(folder.str(), "bare", "pointScalarField", &values));
        EXPECT_EQ(values, (Values{5, 6}));
        expectLine(log, "OFResultReader : Result bare file done\\. Read 2 items\\. Time used : [0-9.e-]+");
    }
    const LogCapture log;
    Values tooMany(3);
    EXPECT_FALSE(reader.readValues(folder.str(), "p", "volScalarField", &tooMany));
    EXPECT_TRUE(log.infos().empty());
}

} // namespace
