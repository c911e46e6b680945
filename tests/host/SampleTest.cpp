// SPDX-License-Identifier: MIT
#include "border/HostError.h"
#include "sample/FoamOutput.h"
#include "sample/SampleCase.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

namespace {

namespace fs = std::filesystem;

void writeCase(const fs::path& folder, SampleKind kind, FoamFormat format, int cells, bool overwrite = false)
{
    SampleOptions options;
    options.kind = kind;
    options.cells = cells;
    options.format = format;
    options.overwrite = overwrite;
    writeSampleCase(folder, options);
}

} // namespace

TEST(FoamOutput, PrintsNumbersAsOpenFoamDoes)
{
    std::mt19937_64 random(1);
    std::vector<double> values = {0.0, -0.0, 1.0, 0.1, 999999.5, 1e6, 1e-5, 0.0001, 123456.0, 1e300, 5e-324};
    for (int i = 0; i < 10000; ++i) {
        const auto value = std::bit_cast<double>(random());
        values.push_back(std::isfinite(value) ? value : 0.5);
    }
    std::string expected;
    const TempFolder folder;
    FoamOutput file(folder / "numbers");
    for (const double value : values) {
        std::array<char, 40> text = {};
        std::snprintf(text.data(), text.size(), "%.6g\n", value);
        expected += text.data();
        file.scalar(value);
        file.text("\n");
    }
    file.close();
    EXPECT_EQ(fileBytes(folder / "numbers"), expected);
}

// Readers skip line feeds after the "(" of a binary list, so a list whose data begin with that byte would be shifted.
TEST(SampleCase, NoBinaryListBeginsWithALineFeed)
{
    const TempFolder folder;
    for (int kind = 0; kind < 8; ++kind) {
        writeCase(folder / std::to_string(kind), static_cast<SampleKind>(kind), {true, false}, 3000);
    }
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder.path())) {
        const std::string content = entry.is_regular_file() ? fileBytes(entry) : std::string();
        if (content.find("format      binary;") != std::string::npos) {
            for (std::size_t at = content.find("\n(\n"); at != std::string::npos; at = content.find("\n(\n", at + 1)) {
                EXPECT_FALSE(content[at - 1] >= '0' && content[at - 1] <= '9') << entry.path() << " at " << at;
            }
        }
    }
}

TEST(SampleCase, ReplacesACaseOnlyOnRequest)
{
    const TempFolder folder;
    writeCase(folder / "case", SampleKind::Hex, {}, 60);
    EXPECT_THROW(writeCase(folder / "case", SampleKind::Hex, {}, 60), HostError);
    // A leftover compressed file would hide the new plain one.
    writeCase(folder / "case", SampleKind::Hex, {false, true}, 60, true);
    EXPECT_FALSE(fs::exists(folder / "case/0/T"));
    writeCase(folder / "case", SampleKind::Hex, {}, 60, true);
    EXPECT_FALSE(fs::exists(folder / "case/0/T.gz"));
    EXPECT_TRUE(fs::exists(folder / "case/0/T"));
}
