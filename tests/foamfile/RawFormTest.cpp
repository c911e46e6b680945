// SPDX-License-Identifier: MIT
#include "foamfile/ListHeader.h"
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/RawText.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>

using namespace foamtext;

namespace {

/// Files of raw lists.
class RawLists : public testing::Test
{
protected:
    void write(const std::string& className, const std::string& arch, const std::string& body)
    {
        bytes =
            header(className, "thing", "binary", note(42) + (arch.empty() ? "" : "    arch " + arch + ";\n")) + body;
        folder.write("thing", bytes);
        folder.writeGz("zipped.gz", bytes);
    }

    std::vector<int> labels(Reading reading, const char* file = "thing") const
    {
        std::vector<int> values;
        int cells = 0;
        EXPECT_TRUE(OFFile(true, reading).readLabelList(folder.str(file), "thing", &values, &cells));
        return values;
    }

    TempFolder folder;
    std::string bytes;
};

} // namespace

TEST_F(RawLists, TheHeaderDecidesOnlyInExtendedReading)
{
    const std::vector<int> usual = {7, 8, 9};
    write("labelList", "\"LSB;label=64;scalar=32\"", rawList(usual));
    EXPECT_EQ(labels(Reading::Plain), usual);
    write("labelList", "\"LSB;label=64;scalar=64\"", "3\n(" + rawLabels(usual, {.labelBits = 64}) + ")");
    EXPECT_EQ(labels(Reading::Extended), usual);
    // Entries that say nothing of use leave the usual form.
    for (const char* const arch : {"", "\"\"", "\"LSB\"", "\"LSB;label=;scalar=x\"", "\"LSB;label=6464;scalar=128\""}) {
        write("labelList", arch, rawList(usual));
        EXPECT_EQ(labels(Reading::Extended), usual) << arch;
    }
}

TEST_F(RawLists, AFileDoesNotInheritTheFormOfTheOneBefore)
{
    write("labelList", "\"MSB;label=64\"", "");
    folder.write("next", header("labelList", "thing", "ascii"));
    FoamFile file;
    file.reading = Reading::Extended;
    ASSERT_TRUE(file.open(folder.str("thing")));
    EXPECT_FALSE(file.text.rawForm().hasUsualLabels());
    ASSERT_TRUE(file.text.open(folder.str("next")));
    EXPECT_TRUE(file.text.rawForm().hasUsualLabels());
}

// A label that is cut to 32 bits would name another cell.
TEST_F(RawLists, LabelsThatDoNotFitAreNoLabels)
{
    constexpr long long LARGEST = std::numeric_limits<int>::max();
    for (const bool isBigEndian : {false, true}) {
        const RawWidths widths{.labelBits = 64, .isBigEndian = isBigEndian};
        write("labelList", '"' + archOf(widths) + '"',
              "5\n(" + rawLabels(std::vector<long long>{1, LARGEST, LARGEST + 1, 0x100000007, -0x100000007}, widths) +
                  ")");
        EXPECT_EQ(labels(Reading::Extended), (std::vector<int>{1, static_cast<int>(LARGEST), -1, -1, -1}));
    }
}

// 10 is a line feed. The first list holds it right after its bracket, as OpenFOAM writes it; others add line feeds.
TEST_F(RawLists, ALineFeedAfterTheBracketIsDataIfTheListThenEnds)
{
    const std::vector<int> ten = {10, 11, 12};
    const std::vector<int> lineFeeds = {0x0A0A0A0A, 0x0A0A0A0A, 5};
    for (const std::vector<int>& values : {ten, lineFeeds, someLabels(3)}) {
        for (const int labelBits : {32, 64}) {
            const std::string data = rawLabels(values, {.labelBits = labelBits});
            const std::string arch = labelBits == 64 ? "\"LSB;label=64\"" : "";
            for (const char* const lineFeed : {"", "\n", "\n\n\n"}) {
                write("labelList", arch, std::string("3\n(") + lineFeed + data + ")\n");
                EXPECT_EQ(labels(Reading::Extended), values) << labelBits << ' ' << *lineFeed;
                EXPECT_EQ(labels(Reading::Extended, "zipped"), values) << labelBits << ' ' << *lineFeed;
            }
        }
    }
    // One that ends on no bracket either way is read as OpenFOAM writes it.
    write("labelList", "", "3\n(" + raw(ten));
    EXPECT_EQ(labels(Reading::Extended), ten);
}

TEST_F(RawLists, LineFeedsAsDataDoNotShiftPointsAndFaces)
{
    // Reals and labels whose first byte is a line feed.
    const std::vector<double> values = {std::bit_cast<double>(0x3FF000000000000AULL), 2.0, 3.0};
    const Faces faceSet = {{10, 1, 2}, {2, 1, 0}};
    write("vectorField", "", rawList(values, 3));
    std::vector<double> points;
    EXPECT_TRUE(OFFile(true, Reading::Extended).readVectorField(folder.str("thing"), "thing", &points));
    EXPECT_EQ(points, values);

    write("faceCompactList", "", compactFaces(faceSet));
    FacesData read;
    EXPECT_TRUE(OFFile(true, Reading::Extended).readFaceList(folder.str("thing"), "thing", &read));
    EXPECT_EQ(unpacked(read), faceSet);
}
