// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "records/OFBoundary.h"
#include "support/FoamText.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <bit>
#include <cstdint>

using namespace foamtext;

namespace {

/// Enough for several chunks, each of them long enough to be cut into pieces.
constexpr std::size_t ITEMS = 40000;
constexpr std::size_t PATCH_FACES = 2;

struct Outcome
{
    bool isRead = false;
    bool isInteriorRead = false;
    std::vector<double> values;
    std::vector<std::vector<double>> patchValues;
    std::vector<std::string> errors;

    /// NaN equals NaN here.
    friend bool operator==(const Outcome& a, const Outcome& b)
    {
        const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
        return a.isRead == b.isRead && a.isInteriorRead == b.isInteriorRead && a.errors == b.errors &&
               std::ranges::equal(a.values, b.values, {}, bits, bits) && a.patchValues == b.patchValues;
    }
};

/// The lines of a list, one item per line.
std::vector<std::string> itemLines(std::size_t components)
{
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < ITEMS; ++i) {
        const std::string x = std::to_string(i) + ".25";
        lines.push_back(components == 1 ? x : "(" + x + " -1 2e" + std::to_string(i % 5) + ")");
    }
    return lines;
}

class FieldPieces : public testing::TestWithParam<std::size_t>
{
protected:
    FieldPieces() : boundaries(1)
    {
        boundaries.front().setPatchName("wall");
        boundaries.front().createFaceToCellMapping(PATCH_FACES);
    }

    /// Reads a field with these lines as its list, with one thread or with several.
    Outcome read(const std::vector<std::string>& lines, int threads)
    {
        const std::size_t components = GetParam();
        const std::string kind = components == 1 ? "Scalar" : "Vector";
        std::string items;
        for (const std::string& line : lines) {
            items += line + '\n';
        }
        const std::string list = "List<" + std::string(components == 1 ? "scalar" : "vector") + "> \n";
        const std::string patchItem = components == 1 ? "7\n" : "(7 8 9)\n";
        folder.write("p", header("vol" + kind + "Field", "p") +
                              "dimensions [0 0 0 0 0 0 0];\ninternalField nonuniform " + "List<x>\n" +
                              std::to_string(ITEMS) + "\n(\n" + items +
                              ")\n;\n\nboundaryField\n{\n    wall\n    {\n        type fixedValue;\n"
                              "        value nonuniform " +
                              list + "2\n(\n" + patchItem + patchItem + ")\n;\n    }\n}\n");
        const LogCapture log;
        Outcome outcome;
        outcome.values.assign(ITEMS * components, -1.0);
        outcome.patchValues.assign(1, std::vector<double>(PATCH_FACES * components, -1.0));
        OFFile file(true);
        tbb::task_arena(threads).execute([&] {
            outcome.isRead = file.readValuesOfCellAndBoundaries(folder.str("p"), "p", ("vol" + kind + "Field").c_str(),
                                                                &outcome.values, boundaries, outcome.patchValues);
        });
        outcome.isInteriorRead = file.interiorWasRead();
        outcome.errors = log.errors();
        return outcome;
    }

    TempFolder folder;
    std::vector<OFBoundary> boundaries;
};

} // namespace

TEST_P(FieldPieces, ReadsAListInFileOrder)
{
    const Outcome outcome = read(itemLines(GetParam()), 4);
    ASSERT_TRUE(outcome.isRead);
    EXPECT_EQ(outcome.errors, std::vector<std::string>{});
    for (std::size_t i = 0; i < ITEMS; ++i) {
        ASSERT_EQ(outcome.values[i * GetParam()], static_cast<double>(i) + 0.25);
    }
    EXPECT_EQ(outcome.patchValues.front().front(), 7.0);
    EXPECT_EQ(outcome.patchValues.front().back(), GetParam() == 1 ? 7.0 : 9.0);
}

TEST_P(FieldPieces, OddLinesReadAsWithOneThread)
{
    // Each replaces a line. "%" becomes a NUL, and "#" repeats the character after it many times.
    std::vector<std::string> oddities = {""};
    for (const dvn::Str& text :
         dvn::Str("\n\n|abc|1|1 2|1 2 3 |(1 2|(1|(1 2 3|(1 2 3)(4 5 6)|((1 2 3)|( 1 2 3 )|1\r|(1 2 3)\r|)\n;|(1\n2\n3)|"
                  "// 1 (2)|nan|(inf 1 2)|1e999|%|1%2|(1 2 3)%|wall|# |#1|#\n")
             .split("|")) {
        std::string oddity = text.toUtf8();
        std::ranges::replace(oddity, '%', '\0');
        oddities.push_back(oddity[0] == '#' ? std::string(oddity[1] == '1' ? 300000 : 70000, oddity[1]) : oddity);
    }
    std::vector<std::string> lines = itemLines(GetParam());
    // The first and last lines, lines near the cuts of the first chunk, and others.
    const std::size_t places[] = {0, 3001, 8000, ITEMS - 4096, ITEMS - 1};
    for (const std::string& oddity : oddities) {
        for (const std::size_t place : places) {
            std::string line = oddity;
            std::swap(line, lines[place]);
            EXPECT_EQ(read(lines, 4), read(lines, 1)) << '"' << oddity.substr(0, 20) << "\" in line " << place;
            std::swap(line, lines[place]);
        }
    }
}

TEST_P(FieldPieces, OddAndTooLongListsReadAsWithOneThread)
{
    const std::vector<std::string> usual = itemLines(GetParam());
    std::vector<std::string> twice = usual;
    twice.insert(twice.end(), usual.begin(), usual.end());
    // Vectors with another one after their first line, where a cut may fall.
    std::vector<std::string> cut(ITEMS);
    std::ranges::generate(cut, [i = 0]() mutable { return "(" + std::to_string(i++) + "\n(2 3 4)"; });
    const std::vector<std::string> lists[] = {twice, cut, std::vector<std::string>(ITEMS, "(1 2\n3\n4 5)"),
                                              std::vector<std::string>(ITEMS, "1 2 \n\n"),
                                              std::vector<std::string>(ITEMS, "\n)")};
    for (const std::vector<std::string>& lines : lists) {
        EXPECT_EQ(read(lines, 4), read(lines, 1)) << "a list of " << lines.front();
    }
}

INSTANTIATE_TEST_SUITE_P(Fields, FieldPieces, testing::Values(1, 3),
                         [](const auto& test) { return test.param == 1 ? "scalars" : "vectors"; });
