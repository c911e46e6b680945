// SPDX-License-Identifier: MIT
#include "foamfile/ListAt.h"
#include "foamfile/FieldList.h"
#include "foamfile/ListHeader.h"
#include "support/FoamText.h"
#include "support/RawText.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <tbb/task_arena.h>

#include <memory>
#include <numeric>
#include <string>

namespace {

/// What a reader left: its values, and the text after the list.
template <typename Value>
struct ListRead
{
    bool isRead = false;
    std::vector<Value> values;
    std::string rest;
};

std::vector<double> counted(std::size_t count)
{
    std::vector<double> values(count);
    std::iota(values.begin(), values.end(), 1.0);
    return values;
}

class ListsAt : public testing::Test
{
protected:
    /// Opens a file in which a list comes next, after a line of the chunk if the file is ascii.
    void open(const std::string& list, const std::string& format, const std::string& arch = "LSB;label=32;scalar=64")
    {
        folder.write("lists", foamtext::header("dictionary", "lists", format, "    arch \"" + arch + "\";\n") +
                                  "key value;\n" + list);
        // A new one, because the first value of a header's key wins.
        m_file = std::make_unique<FoamFile>();
        m_file->reading = Reading::Extended;
        ASSERT_TRUE(m_file->open(folder.str("lists")));
        std::string_view line;
        while (line.substr(0, 3) != "key") {
            ASSERT_TRUE((text().isBinary() || text().makeChunkPending()) && text().takeLine(&line));
        }
    }

    std::string rest()
    {
        std::string lines;
        std::string_view line;
        while (text().takeLine(&line)) {
            lines += line;
        }
        return lines;
    }

    ListRead<double> reals(std::size_t count, const ListItems& items)
    {
        ListRead<double> read;
        read.isRead = ListAt::readReals(text(), count, items, &read.values);
        read.rest = rest();
        return read;
    }

    ListRead<int> labels(std::size_t count)
    {
        ListRead<int> read;
        read.isRead = ListAt::readLabels(text(), count, &read.values);
        read.rest = rest();
        return read;
    }

    ListRead<int> flags(std::size_t count)
    {
        ListRead<int> read;
        read.isRead = ListAt::readFlags(text(), count, &read.values);
        read.rest = rest();
        return read;
    }

    TextSource& text() { return m_file->text; }

    TempFolder folder;

private:
    std::unique_ptr<FoamFile> m_file;
};

} // namespace

TEST_F(ListsAt, AsciiItemsMayHaveAnyWhiteSpaceAndComments)
{
    const struct
    {
        const char* list;
        std::size_t count;
        ListItems items;
        std::size_t numbers;
    } cases[] = {
        {"(1 2 3)", 3, ListItems::scalars(), 3},
        {" \n\t( 1\t2\r\n3e0\n)", 3, ListItems::scalars(), 3},
        {"(1// one\n2/* two\n(2 */+3.)", 3, ListItems::scalars(), 3},
        {"((1 2 3)(4 5 6))", 2, ListItems::vectors(), 6},
        {"(\n(1 2 3)\n(4 5 6)\n)", 2, ListItems::vectors(), 6},
        {"( ( 1\n2 3\n)\n(4/**/5//\n6) )", 2, ListItems::vectors(), 6},
        {"((1)\n(2))", 2, ListItems::sphericalTensors(), 2},
        {"((1 2 3 4 5 6)\n(7 8 9 10 11 12))", 2, ListItems::symmTensors(), 12},
        {"(\n(1 2 3 4 5\n6 7 8 9)\n)", 1, ListItems::tensors(), 9},
        {"((1 2)(3 4))", 2, {2, true}, 4},
        {"()", 0, ListItems::vectors(), 0},
        {"", 0, ListItems::scalars(), 0},
        {"{}", 0, ListItems::scalars(), 0},
    };
    for (const auto& [list, count, items, numbers] : cases) {
        open(std::string(list) + ";after;\nlast\n", "ascii");
        const ListRead<double> read = reals(count, items);
        EXPECT_TRUE(read.isRead) << list;
        EXPECT_EQ(read.values, counted(numbers)) << list;
        EXPECT_EQ(read.rest, ";after;last") << list;
    }
}

TEST_F(ListsAt, RefusesListsOfAnotherShape)
{
    const struct
    {
        const char* list;
        std::size_t count;
        ListItems items;
    } cases[] = {
        {"(1 2)", 3, ListItems::scalars()},
        {"(1 2 3 4)", 3, ListItems::scalars()},
        {"(1 x 3)", 3, ListItems::scalars()},
        {"(1 2,3)", 2, ListItems::scalars()},
        {"((1) (2))", 2, ListItems::scalars()},
        {"1 2 3", 3, ListItems::scalars()},
        {"(1 /2 3)", 3, ListItems::scalars()},
        {"(1 2 3/*)", 3, ListItems::scalars()},
        {"", 1, ListItems::scalars()},
        {"((1 2 3 4))", 1, ListItems::vectors()},
        {"(1 2 3)", 1, ListItems::vectors()},
        {"(x(1 2 3))", 1, ListItems::vectors()},
        {"((1 2 3)x(1 2 3))", 2, ListItems::vectors()},
        {"((1 2 3 4 5 6 7))", 1, ListItems::symmTensors()},
        {"{1", 2, ListItems::scalars()},
        {"{(1 2)}", 2, ListItems::vectors()},
        {"(1)", 0, ListItems::scalars()},
    };
    for (const auto& [list, count, items] : cases) {
        open(std::string(list) + ";\n", "ascii");
        EXPECT_FALSE(reals(count, items).isRead) << list;
    }
    open(std::string("(1 \0 2)\n", 8), "ascii");
    EXPECT_FALSE(reals(2, ListItems::scalars()).isRead) << "a NUL ends no token";
}

TEST_F(ListsAt, EqualItemsAreTextInBothFormats)
{
    for (const char* const format : {"ascii", "binary"}) {
        open("{(1 2 3)};\n", format);
        const ListRead<double> read = reals(2, ListItems::vectors());
        EXPECT_TRUE(read.isRead) << format;
        EXPECT_EQ(read.values, (std::vector<double>{1, 2, 3, 1, 2, 3})) << format;
        EXPECT_EQ(read.rest.substr(0, 1), ";") << format;
        open("{ 7 };\n", format);
        EXPECT_EQ(labels(3).values, std::vector<int>(3, 7)) << format;
        open("{1};\n", format);
        EXPECT_EQ(flags(3).values, std::vector<int>(3, 1)) << format;
        open("{" + std::string(100000, ' '), format);
        EXPECT_FALSE(flags(3).isRead) << format;
    }
}

TEST_F(ListsAt, RefusesCountsThatTheFileCannotHoldUnlessTheTargetIsThatLarge)
{
    for (const char* const list : {"{7};\n", "(1 2 3);\n"}) {
        for (const std::size_t count : {std::size_t{100000}, std::size_t{2147483646}, ~std::size_t{0}}) {
            open(list, "ascii");
            const ListRead<int> read = labels(count);
            EXPECT_FALSE(read.isRead) << list;
            EXPECT_EQ(read.values.capacity(), 0U) << list;
        }
    }
    open("{7};\n", "ascii");
    std::vector<double> field(1000);
    EXPECT_TRUE(ListAt::readReals(text(), 1000, ListItems::scalars(), &field));
    EXPECT_EQ(field, std::vector<double>(1000, 7.0));
}

TEST_F(ListsAt, LabelsAndFlagsOfAscii)
{
    open("(\n12\n-3 +4 2147483647 2147483648 99999999999999999999\n);\n", "ascii");
    const ListRead<int> read = labels(6);
    EXPECT_TRUE(read.isRead);
    EXPECT_EQ(read.values, (std::vector<int>{12, -3, 4, 2147483647, -1, -1}));
    EXPECT_EQ(read.rest, ";");
    open("(0 1 true no\nyes false off on);\n", "ascii");
    EXPECT_EQ(flags(8).values, (std::vector<int>{0, 1, 1, 0, 1, 0, 0, 1}));
    for (const char* const list : {"(1.5)", "(-)", "(x)", "(1", "(1 2)", "(1x)"}) {
        open(list, "ascii");
        EXPECT_FALSE(labels(1).isRead) << list;
    }
    open("(2)", "ascii");
    EXPECT_FALSE(flags(1).isRead);
}

TEST_F(ListsAt, RawListsOfEveryWidthEndOnTheirBracket)
{
    for (const RawWidths& widths : {RawWidths{}, RawWidths{.labelBits = 64}, RawWidths{.scalarBits = 32},
                                    RawWidths{.labelBits = 64, .scalarBits = 32, .isBigEndian = true}}) {
        const std::string arch = archOf(widths);
        // The first label is a line feed.
        const std::vector<int> expected = {10, 41, 41};
        for (const char* const before : {"", "\n", " \r\n"}) {
            open(before + ("(" + rawLabels(expected, widths)) + ");\n", "binary", arch);
            const ListRead<int> read = labels(3);
            EXPECT_TRUE(read.isRead) << arch;
            EXPECT_EQ(read.values, expected) << arch;
            EXPECT_EQ(read.rest, ";\n") << arch;
        }
        for (const ListItems& items :
             {ListItems::scalars(), ListItems::vectors(), ListItems::symmTensors(), ListItems::tensors()}) {
            open("(" + rawReals(counted(2 * items.components), widths) + ");\n", "binary", arch);
            const ListRead<double> read = reals(2, items);
            EXPECT_TRUE(read.isRead) << arch;
            EXPECT_EQ(read.values, counted(2 * items.components)) << arch;
            EXPECT_EQ(read.rest, ";\n") << arch;
        }
        open("(" + rawLabels(expected, widths) + ";\n", "binary", arch);
        EXPECT_FALSE(labels(3).isRead) << "no bracket";
        open("(" + rawLabels(expected, widths), "binary", arch);
        EXPECT_FALSE(labels(4).isRead) << "too short";
    }
    open("(" + std::string("\0\1\1", 3) + ");\n", "binary");
    EXPECT_EQ(flags(3).values, (std::vector<int>{0, 1, 1}));
    open(";\n", "binary");
    EXPECT_TRUE(reals(0, ListItems::vectors()).isRead) << "an empty raw list has no brackets";
    open("x(", "binary");
    EXPECT_FALSE(labels(1).isRead);
}

// The list is several windows long. Odd lines are left to the walk, which has to go on from the right place.
TEST_F(ListsAt, LongListsReadAlikeWithOneAndManyThreads)
{
    for (const ListItems& items : {ListItems::scalars(), ListItems::vectors(), ListItems::sphericalTensors(),
                                   ListItems::symmTensors(), ListItems::tensors()}) {
        const std::size_t count = 300000 / items.components;
        for (const std::string& odd : std::vector<std::string>{"", "\n", "// )\n", "\r\n\t ", "/*\n(\n*/"}) {
            std::string list = "(\n";
            std::vector<double> expected;
            for (std::size_t i = 0; i < count; ++i) {
                list += items.isBracketed ? "(" : "";
                for (std::size_t k = 0; k < items.components; ++k) {
                    expected.push_back(static_cast<double>(i + k));
                    list += (k == 0 ? "" : " ") + (i % 9999 == 77 ? odd : "") + std::to_string(i + k);
                }
                list += items.isBracketed ? ")\n" : "\n";
            }
            for (const int threads : {1, 4}) {
                open(list + ");\nlast\n", "ascii");
                ListRead<double> read;
                tbb::task_arena(threads).execute([&] { read = reals(count, items); });
                EXPECT_TRUE(read.isRead) << items.components << odd;
                EXPECT_TRUE(read.values == expected) << items.components << odd;
                EXPECT_EQ(read.rest, ";last") << items.components << odd;
            }
            open(list + ");\n", "ascii");
            std::vector<double> tooMany;
            EXPECT_FALSE(ListAt::readReals(text(), count + 1, items, &tooMany));
        }
    }
}

// Each byte of a list comes last in its chunk once: the line feeds are where the chunk may end.
TEST_F(ListsAt, NothingIsLostAtAChunkBorder)
{
    const std::string list = "(\n(1\n2 3)/*\n*/\n(4 5\n6)\n)\n;\n";
    for (std::size_t i = 0; i < 2 * list.size(); ++i) {
        const std::string filler(TextSource::CHUNK_SIZE - 11 - i, '\n');
        open(filler + list, "ascii");
        const ListRead<double> read = reals(2, ListItems::vectors());
        EXPECT_TRUE(read.isRead) << i;
        EXPECT_EQ(read.values, counted(6)) << i;
        EXPECT_EQ(read.rest.substr(0, 1), ";") << i;
    }
}
