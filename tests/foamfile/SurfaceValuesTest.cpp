// SPDX-License-Identifier: MIT
#include "foamfile/SurfaceValues.h"
#include "support/FoamText.h"
#include "support/RawText.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using foamtext::header;
using Values = std::vector<double>;

constexpr RawWidths SHORT_REALS = {.labelBits = 32, .scalarBits = 32, .isBigEndian = true};

/// A list file that holds the scalars 1.5 and -2.
struct Form
{
    const char* name;
    std::string text;
};

std::vector<Form> forms()
{
    const std::string comment = "/*---*- C++ -*---*\\\n| =========\n\\*---*/\n";
    return {{"lines", "\n2\n(\n1.5\n-2\n)\n"},
            {"one line", "2(1.5 -2)"},
            {"comments", comment + "\n\n2 // values\n(\n1.5 // first\n-2\n)\n"},
            {"carriage returns", "\r\n2\r\n(\r\n1.5\r\n-2\r\n)\r\n"},
            {"header", comment + header("scalarField", "p") + "\n2\n(\n1.5\n-2\n)\n"},
            {"header in a file of another object", header("scalarAverageField", "q") + "2(1.5 -2)"},
            {"binary", header("scalarField", "p", "binary") + "\n" + foamtext::rawList(Values{1.5, -2}) + "\n"},
            {"binary floats", header("scalarField", "p", "binary", "    arch \"" + archOf(SHORT_REALS) + "\";\n") +
                                  "\n2\n(" + rawReals({1.5, -2}, SHORT_REALS) + ")"}};
}

} // namespace

TEST(SurfaceValues, AreTheSameInEveryForm)
{
    const TempFolder folder;
    for (const Form& form : forms()) {
        SCOPED_TRACE(form.name);
        folder.write("p", form.text);
        folder.writeGz("zipped/p.gz", form.text);
        for (const char* const file : {"p", "zipped/p"}) {
            EXPECT_EQ(SurfaceValues::hasHeader(folder.str(file)), form.text.find("FoamFile") != std::string::npos);
            EXPECT_EQ(SurfaceValues::countItems(folder.str(file)), 2U);
            Values values;
            EXPECT_TRUE(SurfaceValues::read(folder.str(file), ListItems::scalars(), 2, &values));
            EXPECT_EQ(values, (Values{1.5, -2}));
        }
    }
}

TEST(SurfaceValues, AreRefusedIfTheFileBreaksOff)
{
    const TempFolder folder;
    for (const Form& form : forms()) {
        SCOPED_TRACE(form.name);
        // The list, with the end of what comes before it. After its bracket only white space may follow.
        constexpr std::size_t MOST = 80;
        const std::size_t whole = form.text.rfind(')');
        for (std::size_t size = whole - std::min(whole, MOST); size <= whole; ++size) {
            folder.write("p", form.text.substr(0, size));
            Values values = {7};
            EXPECT_FALSE(SurfaceValues::read(folder.str("p"), ListItems::scalars(), 2, &values)) << size;
            EXPECT_EQ(values, Values{7});
        }
    }
}

TEST(SurfaceValues, AreRefusedIfTheirCountOrKindIsAnother)
{
    const TempFolder folder;
    for (const char* const text :
         {"3(1 2 3)", "1(1)", "2(1 2 3)", "2((1 2 3) (4 5 6))", "2{(1 2 3)}", "4294967294(1 2)", "2", ""}) {
        SCOPED_TRACE(text);
        folder.write("p", text);
        Values values;
        EXPECT_FALSE(SurfaceValues::read(folder.str("p"), ListItems::scalars(), 2, &values));
    }
    EXPECT_EQ(SurfaceValues::countItems(folder.str("missing")), std::nullopt);
}

TEST(SurfaceValues, CountFacesInBothKindsOfLists)
{
    const TempFolder folder;
    const std::string faces = "\n3\n(\n3(0 1 2)\n3(1 3 2)\n3(0 1 3)\n)\n";
    folder.write("bare", faces);
    folder.write("plain", header("faceList", "faces") + faces);
    folder.write("compact", header("faceCompactList", "faces", "binary") +
                                foamtext::compactFaces({{0, 1, 2}, {1, 3, 2}, {0, 1, 3}}));
    for (const char* const file : {"bare", "plain", "compact"}) {
        EXPECT_EQ(SurfaceValues::countItems(folder.str(file)), 3U) << file;
    }
}
