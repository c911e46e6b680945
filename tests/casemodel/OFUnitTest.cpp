// SPDX-License-Identifier: MIT
#include "casemodel/OFUnit.h"
#include "casemodel/OFResult.h"

#include <gtest/gtest.h>

namespace {

std::string translated(const char* line)
{
    return OFUnit::fromString(dvn::Str(line).split(" ")).translate().toStdString();
}

TEST(OFUnit, JoinsExponentsInFileOrderWithATrailingBlank)
{
    EXPECT_EQ(translated("dimensions [1 -1 -2 0 0 0 0];"), "Kg m-1 s-2 ");
    EXPECT_EQ(translated("dimensions [0 0 0 1 2 -3 0];"), "K mol2 A-3 ");
    EXPECT_EQ(OFUnit::fromBase(0, 1, 0, 0, 0, 0, 0).translate().toStdString(), "m ");
}

TEST(OFUnit, IsDimensionlessWhereTheLineHasAnotherNumberOfTokens)
{
    EXPECT_EQ(translated("dimensions [0 2 -2 0 0];"), "DIMENSIONLESS");
    EXPECT_EQ(translated("dimensions [ 0 2 -2 0 0 0 0];"), "DIMENSIONLESS");
    EXPECT_EQ(translated("dimensions [0 0 0 0 0 0 0];"), "DIMENSIONLESS");
}

// The seventh exponent takes as many characters as the sixth token has, less one, so it needs a long sixth to be seen.
TEST(OFUnit, ReadsTheLastExponentByTheLengthOfTheTokenBefore)
{
    EXPECT_EQ(translated("dimensions [0 0 0 0 0 0 1];"), "DIMENSIONLESS");
    EXPECT_EQ(translated("dimensions [0 0 0 0 0 -1 2];"), "A-1 cd2 ");
}

TEST(OFResult, CountsValuesByMappingAndSaysWhenThereAreNone)
{
    const auto count = [](OFResultType type, OFResultMapping mapping) {
        return OFResult("f", "f", "F", OFUnit(), type, mapping).expectedValueCount(10, 4);
    };
    EXPECT_EQ(count(OFResultScalar, OFResultOnCell), 4U);
    EXPECT_EQ(count(OFResultVector, OFResultOnNode), 30U);
    EXPECT_EQ(count(OFResultTensor, OFResultNodeAverage), 60U);
    EXPECT_EQ(count(OFResultDisplacement, OFResultOnNode), static_cast<std::size_t>(-1));
}

} // namespace
