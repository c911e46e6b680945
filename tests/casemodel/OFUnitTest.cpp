// SPDX-License-Identifier: MIT
#include "casemodel/OFUnit.h"

#include <gtest/gtest.h>

namespace {

TEST(OFUnit, TranslatesADimensionsLine)
{
    const auto translated = [](const char* line) {
        return OFUnit::fromString(dvn::Str(line).split(" ")).translate().toStdString();
    };
    EXPECT_EQ(translated("dimensions [1 -1 -2 0 0 0 0];"), "Kg m-1 s-2 ");
    EXPECT_EQ(translated("dimensions [0 0 0 1 2 -3 0];"), "K mol2 A-3 ");
    EXPECT_EQ(translated("dimensions [0 2 -2 0 0];"), "DIMENSIONLESS");
    EXPECT_EQ(translated("dimensions [ 0 2 -2 0 0 0 0];"), "DIMENSIONLESS");
    // The seventh exponent takes as many characters as the sixth token has, less one.
    EXPECT_EQ(translated("dimensions [0 0 0 0 0 0 1];"), "DIMENSIONLESS");
    EXPECT_EQ(translated("dimensions [0 0 0 0 0 -1 2];"), "A-1 cd2 ");
}

} // namespace
