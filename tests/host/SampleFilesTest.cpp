// SPDX-License-Identifier: MIT
#include "TempFolder.h"
#include "border/HostError.h"
#include "sample/FoamOutput.h"
#include "sample/SampleCase.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <bit>
#include <charconv>
#include <cstring>
#include <random>

namespace {

namespace fs = std::filesystem;

std::string unpacked(const fs::path& file)
{
    std::string content;
    std::array<char, 65536> chunk = {};
    gzFile const stream = gzopen(file.c_str(), "rb");
    for (int count = gzread(stream, chunk.data(), chunk.size()); count > 0;) {
        content.append(chunk.data(), static_cast<std::size_t>(count));
        count = gzread(stream, chunk.data(), chunk.size());
    }
    gzclose(stream);
    return content;
}

/// The bytes behind the "(" of the first list whose count stands on a line of its own, and that count.
std::string_view listBody(const std::string& content, std::size_t* count, std::size_t from = 0)
{
    for (std::size_t line = content.find('\n', from); line != std::string::npos; line = content.find('\n', line + 1)) {
        const char* const first = content.data() + line + 1;
        const auto [end, error] = std::from_chars(first, content.data() + content.size(), *count);
        if (error == std::errc() && std::string_view(end, 2) == "\n(") {
            return std::string_view(content).substr(static_cast<std::size_t>(end - content.data()) + 2);
        }
    }
    return {};
}

/// All numbers of the first list of an ascii file.
std::vector<double> asciiNumbers(const std::string& content)
{
    std::size_t count = 0;
    std::string_view body = listBody(content, &count);
    body = body.substr(0, body.find("\n)"));
    std::vector<double> numbers;
    for (const char* at = body.data(); at < body.data() + body.size();) {
        double number = 0;
        const auto [end, error] = std::from_chars(at, body.data() + body.size(), number);
        if (error == std::errc()) {
            numbers.push_back(number);
        }
        at = error == std::errc() ? end : at + 1;
    }
    return numbers;
}

template <typename Value>
std::vector<double> binaryNumbers(const std::string& content, std::size_t perItem)
{
    std::size_t count = 0;
    const std::string_view body = listBody(content, &count);
    std::vector<Value> values(count * perItem);
    std::memcpy(values.data(), body.data(), values.size() * sizeof(Value));
    return {values.begin(), values.end()};
}

SampleReport writeCase(const fs::path& folder, SampleKind kind, FoamFormat format = {}, int cells = 60)
{
    SampleOptions options;
    options.kind = kind;
    options.cells = cells;
    options.format = format;
    return writeSampleCase(folder, options);
}

constexpr std::array<SampleKind, 8> ALL_KINDS = {SampleKind::Hex,    SampleKind::Poly,    SampleKind::Mixed,
                                                 SampleKind::Zones,  SampleKind::Regions, SampleKind::Decomposed,
                                                 SampleKind::Moving, SampleKind::Surface};

} // namespace

TEST(FoamOutput, PrintsNumbersAsOpenFoamDoes)
{
    std::mt19937_64 random(1);
    std::string expected;
    const TempFolder folder;
    FoamOutput file(folder / "numbers");
    const auto add = [&](double value) {
        std::array<char, 40> text = {};
        std::snprintf(text.data(), text.size(), "%.6g\n", value);
        expected += text.data();
        file.scalar(value);
        file.text("\n");
    };
    for (const double value : {0.0, -0.0, 1.0, 0.1, 999999.5, 1e6, 1e-5, 0.0001, 123456.0, 1e300, 5e-324}) {
        add(value);
    }
    for (int i = 0; i < 10000; ++i) {
        const auto value = std::bit_cast<double>(random());
        add(std::isfinite(value) ? value : 0.5);
    }
    file.close();
    EXPECT_EQ(contentOf(folder / "numbers"), expected);
}

TEST(SampleCase, HoldsTheSameNumbersInEveryFormat)
{
    const TempFolder folder;
    writeCase(folder / "ascii", SampleKind::Hex);
    writeCase(folder / "gzip", SampleKind::Hex, {false, true});
    writeCase(folder / "binary", SampleKind::Hex, {true, false});
    for (const char* const name : {"constant/polyMesh/points", "constant/polyMesh/faces", "constant/polyMesh/owner",
                                   "0.5/T", "0.5/U", "0.5/pointT"}) {
        const std::string ascii = contentOf(folder / "ascii" / name);
        EXPECT_FALSE(fs::exists(folder / "gzip" / name)) << "only the compressed file stands there";
        EXPECT_EQ(unpacked(folder / "gzip" / (std::string(name) + ".gz")), ascii) << name;
        if (std::string_view(name).ends_with("faces")) {
            continue;
        }
        const std::string binary = contentOf(folder / "binary" / name);
        const bool labels = std::string_view(name).ends_with("owner");
        const std::size_t perItem = std::string_view(name).ends_with("T") ? 1 : 3;
        const std::vector<double> exact =
            labels ? binaryNumbers<std::int32_t>(binary, 1) : binaryNumbers<double>(binary, perItem);
        const std::vector<double> printed = asciiNumbers(ascii);
        ASSERT_EQ(printed.size(), exact.size()) << name;
        for (std::size_t i = 0; i < exact.size(); ++i) {
            EXPECT_NEAR(printed[i], exact[i], 1e-5 * std::abs(exact[i])) << name << " " << i;
        }
    }
}

// Readers pass over line feeds behind the "(" of a binary list, so a list whose data begin with that byte is lost.
TEST(SampleCase, NoBinaryListBeginsWithALineFeed)
{
    const TempFolder folder;
    for (const SampleKind kind : ALL_KINDS) {
        const fs::path place = folder / std::to_string(static_cast<int>(kind));
        writeCase(place, kind, {true, false}, 3000);
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(place)) {
            const std::string content = entry.is_regular_file() ? contentOf(entry) : std::string();
            if (content.find("format      binary;") == std::string::npos) {
                continue;
            }
            std::size_t count = 0;
            const std::string_view body = listBody(content, &count);
            EXPECT_TRUE(body.empty() || count == 0 || body.front() != '\n') << entry.path();
        }
    }
}

TEST(SampleCase, HoldsFieldsThatAverageToTheMiddleOfTheBox)
{
    const TempFolder folder;
    writeCase(folder / "hex", SampleKind::Hex, {}, 64);
    const std::vector<double> temperatures = asciiNumbers(contentOf(folder / "hex/0.5/T"));
    ASSERT_EQ(temperatures.size(), 64U);
    double sum = 0;
    for (const double temperature : temperatures) {
        sum += temperature;
    }
    // The box has edges of 0.5; at its middle and time 0.5: 300 + (10 + 20 + 30) / 4 + 5 / 2.
    EXPECT_NEAR(sum / 64, 317.5, 1e-3);
}

TEST(SampleCase, SplitsAllCellsOverThePieces)
{
    const TempFolder folder;
    const auto cellsIn = [&](const std::string& mesh) {
        const std::string content = contentOf(folder / (mesh + "/polyMesh/owner"));
        return std::stoi(content.substr(content.find("nCells:") + 7));
    };
    const SampleReport whole = writeCase(folder / "r", SampleKind::Regions);
    EXPECT_EQ(cellsIn("r/constant/left") + cellsIn("r/constant/right"), whole.cells);
    writeCase(folder / "d", SampleKind::Decomposed);
    int cells = 0;
    for (const char* const processor : {"processor0", "processor1", "processor2", "processor3"}) {
        cells += cellsIn(std::string("d/") + processor + "/constant");
        EXPECT_TRUE(fs::exists(folder / "d/0.5" / processor / "U"));
    }
    EXPECT_EQ(cells, whole.cells);
    EXPECT_FALSE(fs::exists(folder / "d/constant"));
}

TEST(SampleCase, LeavesAFolderInUseAlone)
{
    const TempFolder folder;
    writeCase(folder / "case", SampleKind::Hex);
    EXPECT_THROW(writeCase(folder / "case", SampleKind::Hex), HostError);
    // A compressed file left over from before would hide the new plain one.
    SampleOptions options;
    options.overwrite = true;
    options.format.gzip = true;
    writeSampleCase(folder / "case", options);
    EXPECT_FALSE(fs::exists(folder / "case/0/T"));
    options.format.gzip = false;
    writeSampleCase(folder / "case", options);
    EXPECT_FALSE(fs::exists(folder / "case/0/T.gz"));
    EXPECT_TRUE(fs::exists(folder / "case/0/T"));
}
