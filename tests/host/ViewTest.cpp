// SPDX-License-Identifier: MIT
// What goes into a page, and what its file is like whichever way the command ends. tests/view looks at pages in a
// browser.
#include "border/CellFaces.h"
#include "border/HostResult.h"
#include "border/OpenedCase.h"
#include "host/ProgramRun.h"
#include "view/OuterFaces.h"
#include "view/PackedArray.h"
#include "view/PageFile.h"
#include "view/PageGroups.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <bit>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <set>

#include <sys/stat.h>
#include <zlib.h>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/// Unit cubes side by side along x; the nodes of each end stand in the order of a hexahedron's base and top.
struct CubeRow
{
    HostNodeGroup nodes{100};
    HostElementGroup elements{100};

    explicit CubeRow(std::int32_t count)
    {
        std::vector<double> coordinates;
        for (std::int32_t x = 0; x <= count; ++x) {
            for (const auto& [y, z] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}}) {
                coordinates.insert(coordinates.end(), {double(x), double(y), double(z)});
            }
        }
        nodes.setNodes(coordinates.data(), coordinates.size() / 3);
        std::vector<std::int32_t> connectivity(8 * static_cast<std::size_t>(count));
        for (std::size_t k = 0; k < connectivity.size(); ++k) {
            connectivity[k] = static_cast<std::int32_t>(4 * (k / 8) + k % 8);
        }
        std::vector<std::int32_t> ids(static_cast<std::size_t>(count));
        std::iota(ids.begin(), ids.end(), 0);
        elements.setUniformElements(DDP_HEXAHEDRON, ids.size(), connectivity.data(), connectivity.size(), ids.data());
    }
};

/// The volume that the triangles of all fans enclose; only closed surfaces that look outward give the right one.
double volumeInside(const HostNodeGroup& nodes, const DrawnFaces& faces)
{
    double volume = 0;
    std::size_t first = 0;
    for (const std::uint8_t size : faces.sizes) {
        const auto node = [&](std::size_t k) {
            return faces.nodes[static_cast<std::size_t>(faces.corners[first + k])];
        };
        for (std::size_t k = 1; k + 1 < size; ++k) {
            const std::array<std::int32_t, 3> triangle = {node(0), node(k), node(k + 1)};
            volume += volumeUnder(nodes.coordinates, triangle, {});
        }
        first += size;
    }
    return volume;
}

TEST(OuterFaces, LeavesOutWhatTwoCellsShare)
{
    const CubeRow row(3);
    const DrawnFaces faces = outerFaces(row.nodes, row.elements);
    EXPECT_EQ(faces.sizes, std::vector<std::uint8_t>(14, 4));
    EXPECT_EQ(std::set<std::int32_t>(faces.corners.begin(), faces.corners.end()).size(), faces.nodes.size());
    EXPECT_EQ(std::ranges::count(faces.elements, 0), 5);
    EXPECT_EQ(std::ranges::count(faces.elements, 1), 4);
    EXPECT_NEAR(volumeInside(row.nodes, faces), 3, 1e-12);
}

TEST(OuterFaces, OfAZoneIncludeThoseToOtherCells)
{
    const CubeRow row(6);
    // Two zones that touch, and cells in none.
    const std::array<std::int32_t, 6> zoneOfCell = {-1, 1, 1, 0, 0, -1};
    const std::vector<DrawnFaces> zones = outerFacesOfZones(row.nodes, row.elements, zoneOfCell, 3);
    ASSERT_EQ(zones.size(), 3U);
    for (const std::size_t zone : {0U, 1U}) {
        SCOPED_TRACE(zone);
        const DrawnFaces& faces = zones[zone];
        EXPECT_EQ(faces.sizes.size(), 10U);
        EXPECT_EQ(faces.nodes.size(), 12U);
        EXPECT_EQ(std::set<std::int32_t>(faces.elements.begin(), faces.elements.end()),
                  zone == 0 ? (std::set<std::int32_t>{3, 4}) : (std::set<std::int32_t>{1, 2}));
        EXPECT_NEAR(volumeInside(row.nodes, faces), 2, 1e-12);
    }
    EXPECT_TRUE(zones[2].sizes.empty());
}

TEST(FlatFaces, KeepBothOfTwoOnTopOfEachOther)
{
    CubeRow row(1);
    const std::array<std::int32_t, 8> connectivity = {0, 1, 2, 3, 3, 2, 1, 0};
    const std::array<std::int32_t, 2> ids = {0, 1};
    row.elements.setUniformElements(DDP_QUADRILATERAL, 2, connectivity.data(), connectivity.size(), ids.data());
    EXPECT_EQ(flatFaces(row.nodes, row.elements).elements, (std::vector<std::int32_t>{0, 1}));
}

// A fan from the wrong corner of an arrowhead covers what is outside of it.
TEST(FlatFaces, StartWhereAFanDoesNotFold)
{
    for (std::size_t turn = 0; turn < 4; ++turn) {
        SCOPED_TRACE(turn);
        HostNodeGroup nodes(100);
        const std::array<double, 12> arrow = {0, 0, 0, 2, 2, 0, 0, 1, 0, -2, 2, 0}; // dented at (0 1)
        nodes.setNodes(arrow.data(), 4);
        HostElementGroup elements(100);
        std::array<std::int32_t, 4> corners = {0, 1, 2, 3};
        std::rotate(corners.begin(), corners.begin() + static_cast<std::ptrdiff_t>(turn), corners.end());
        const std::int32_t id = 0;
        elements.setUniformElements(DDP_QUADRILATERAL, 1, corners.data(), 4, &id);
        const DrawnFaces faces = flatFaces(nodes, elements);
        const std::int32_t start = faces.nodes[static_cast<std::size_t>(faces.corners[0])];
        EXPECT_TRUE(start == 0 || start == 2) << start;
    }
}

TEST(PageGroups, GiveZonesTheValuesOfTheirCellsAndNodes)
{
    const TempFolder folder;
    ASSERT_EQ(runProgram(folder, "sample --kind zones --cells 60" + inQuotes(folder / "case")).code, 0);
    PluginLibrary library(REAL_PLUGIN);
    const HostOptions options;
    OpenedCase opened(library, folder / "case", options);
    const std::vector<PageGroup> groups = pageGroups(opened, {0});
    ASSERT_EQ(groups.size(), 3U);
    const HostElementGroup& elements = opened.geometry().elementGroups[0];
    const auto cellCount = static_cast<std::int32_t>(elements.elementCount());
    // The sample puts the first third of the cells and the last one into zones.
    std::vector<std::int32_t> third(elements.elementCount() / 3);
    std::iota(third.begin(), third.end(), 0);
    EXPECT_EQ(groups[1].cells, third);
    EXPECT_EQ(groups[2].cells, std::vector<std::int32_t>{cellCount - 1});
    for (const std::size_t zone : {1U, 2U}) {
        SCOPED_TRACE(zone);
        std::set<std::int32_t> nodes;
        for (const std::int32_t cell : groups[zone].cells) {
            const auto first = elements.connectivity.begin() + std::ptrdiff_t{8} * cell;
            nodes.insert(first, first + 8);
        }
        EXPECT_EQ(groups[zone].nodes, std::vector<std::int32_t>(nodes.begin(), nodes.end()));
        for (const HostResultInfo& info : opened.metaData().results) {
            SCOPED_TRACE(info.name);
            const std::unique_ptr<HostResult> result = opened.result(info, opened.metaData().states.back().id);
            const HostValueGroup whole = allValues(opened, groups[0], info, *result);
            const auto dimension = static_cast<std::size_t>(whole.dimension);
            std::vector<double> expected;
            for (const std::int32_t item : info.mapping == MAPPING_NODE ? groups[zone].nodes : groups[zone].cells) {
                for (std::size_t k = 0; k < dimension; ++k) {
                    expected.push_back(whole.values[static_cast<std::size_t>(item) * dimension + k]);
                }
            }
            EXPECT_FALSE(expected.empty());
            EXPECT_EQ(allValues(opened, groups[zone], info, *result).values, expected);
        }
    }
}

/// Undoes what is done to an array for a page: base64, deflate, planes of bytes, differences.
template <typename Number>
std::vector<Number> unpacked(const PackedArray& array)
{
    std::string packed;
    std::uint32_t bits = 0;
    int held = 0;
    for (const char c : array.text.substr(0, array.text.find('='))) {
        const std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        bits = bits << 6U | static_cast<std::uint32_t>(digits.find(c));
        held += 6;
        if (held >= 8) {
            held -= 8;
            packed += static_cast<char>(bits >> static_cast<unsigned>(held) & 255U);
        }
    }
    const auto count = array.form["count"].get<std::size_t>();
    uLongf size = count * sizeof(Number);
    std::vector<std::uint8_t> bytes(size);
    EXPECT_EQ(uncompress(bytes.data(), &size, reinterpret_cast<const Bytef*>(packed.data()), packed.size()), Z_OK);
    EXPECT_EQ(size, bytes.size());
    std::vector<Number> numbers(count);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t plane = 0; plane < sizeof(Number); ++plane) {
            numbers[i] = static_cast<Number>(numbers[i] | Number{bytes[plane * count + i]} << (8 * plane));
        }
        numbers[i] = static_cast<Number>(numbers[i] + (i == 0 || sizeof(Number) == 8 ? 0 : numbers[i - 1]));
    }
    return numbers;
}

TEST(PackedArray, ReturnsNumbersThatWrap)
{
    const std::vector<std::int32_t> integers = {5, -7, 2147483647, -2147483647 - 1, 0};
    EXPECT_EQ(unpacked<std::uint32_t>(packIntegers(integers)),
              std::vector<std::uint32_t>(integers.begin(), integers.end()));
    EXPECT_EQ(unpacked<std::uint8_t>(packBytes({3, 255, 0, 4})), (std::vector<std::uint8_t>{3, 255, 0, 4}));
    EXPECT_EQ(unpacked<std::uint64_t>(packDoubles({0.1, -INF})),
              (std::vector<std::uint64_t>{std::bit_cast<std::uint64_t>(0.1), std::bit_cast<std::uint64_t>(-INF)}));
    EXPECT_TRUE(unpacked<std::uint32_t>(packIntegers({})).empty());
}

// Pressures differ in their last digits; a float of the whole value would keep two of these.
TEST(PackedArray, KeepsDigitsOfValuesThatAreLargeAndAlike)
{
    const std::vector<double> values = {101325.001, 101325.002, 101325.0035, 101324.9};
    const PackedArray packed = packValues(values, 1, PagePrecision::Floats32);
    const std::vector<std::uint32_t> bits = unpacked<std::uint32_t>(packed);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double value = packed.form["base"][0].get<double>() + std::bit_cast<float>(bits[i]);
        EXPECT_NEAR(value, values[i], 1e-8);
    }
}

// Small values next to large ones would lose their digits to a base.
TEST(PackedArray, KeepsSmallValuesAmongLargeOnes)
{
    const PackedArray packed = packValues(std::vector<double>{-1e6, 1e-9, 1e6}, 1, PagePrecision::Floats32);
    EXPECT_EQ(packed.form["base"][0], 0);
    EXPECT_EQ(std::bit_cast<float>(unpacked<std::uint32_t>(packed)[1]), 1e-9F);
}

TEST(PackedArray, TellsMissingValuesFromOthers)
{
    // Two components; the second one has a single ordinary value.
    const std::vector<double> values = {1, UNDEFINED_VALUE, NOT_A_NUMBER, 5, 3, INF, UNDEFINED_VALUE, -INF};
    const std::vector<std::uint16_t> codes = unpacked<std::uint16_t>(packValues(values, 2, PagePrecision::Steps16));
    EXPECT_EQ(codes, (std::vector<std::uint16_t>{0, 65534, 65531, 65535, 65535, 0, 65533, 65532}));
    const std::vector<std::uint32_t> bits = unpacked<std::uint32_t>(packValues(values, 2, PagePrecision::Floats32));
    const auto value = [&](std::size_t i) { return std::bit_cast<float>(bits[i]); };
    EXPECT_EQ(value(3), std::numeric_limits<float>::max());
    EXPECT_TRUE(std::isnan(value(1)));
    EXPECT_EQ(value(6), INF);
    EXPECT_EQ(value(7), -INF);
    // Beyond the floats, but neither missing nor infinite.
    const PackedArray large = packValues(std::vector<double>{1e300, 0}, 1, PagePrecision::Floats32);
    EXPECT_LT(std::bit_cast<float>(unpacked<std::uint32_t>(large)[0]), std::numeric_limits<float>::max());
}

TEST(PageFile, HasNoMarkupFromNames)
{
    const std::string name = "</script><script>alert(1)</script><!--";
    const std::string text = embeddedJson({{"name", name}, {"bytes", "\xff"}});
    EXPECT_EQ(text.find('<'), std::string::npos);
    EXPECT_EQ(json::parse(text)["name"], name);
}

/// A folder with a sample case in `case`.
struct ViewCommand : testing::Test
{
    TempFolder folder;

    void SetUp() override { ASSERT_EQ(runProgram(folder, "sample" + inQuotes(folder / "case")).code, 0); }

    ProgramRun view(const std::string& arguments, const std::string& environment = "")
    {
        return runProgram(folder,
                          "view" + inQuotes(folder / "case") + " -o" + inQuotes(folder / "out.html") + arguments,
                          environment);
    }

    /// Writes a script under the name of a program, since the program itself may not be installed.
    /// @return the PATH with which the command finds the script and no other program
    std::string fakeProgram(const std::string& name, const std::string& script)
    {
        fs::create_directory(folder / "bin");
        std::ofstream(folder / "bin" / name) << "#!/bin/sh\n" << script << "\n";
        fs::permissions(folder / "bin" / name, fs::perms::owner_all);
        return "PATH=" + (folder / "bin").string();
    }

    /// All files next to the case, without those that hold the program's output.
    std::set<std::string> files() const
    {
        std::set<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder / "")) {
            names.insert(entry.path().filename());
        }
        for (const char* const own : {"bin", "case", "out", "err"}) {
            names.erase(own);
        }
        return names;
    }
};

TEST_F(ViewCommand, ReplacesPagesButNoOtherFiles)
{
    EXPECT_EQ(view(" --state first").code, 0);
    const std::string first = fileBytes(folder / "out.html");
    EXPECT_EQ(view("").code, 0);
    EXPECT_GT(fileBytes(folder / "out.html").size(), first.size());
    std::ofstream(folder / "out.html") << "mine";
    const ProgramRun refused = view("");
    EXPECT_EQ(refused.code, 2);
    EXPECT_NE(refused.err.find("--overwrite"), std::string::npos);
    EXPECT_EQ(fileBytes(folder / "out.html"), "mine");
    EXPECT_EQ(view(" --overwrite").code, 0);
    EXPECT_EQ(files(), std::set<std::string>{"out.html"});
}

// A file that is moved to the name of a device or a link takes its place.
TEST_F(ViewCommand, ReplacesNoDevicesAndNoLinks)
{
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    fs::create_symlink(folder / "pipe", folder / "out.html");
    const ProgramRun run = view(" --overwrite");
    EXPECT_EQ(run.code, 2);
    EXPECT_NE(run.err.find("is not a file"), std::string::npos) << run.err;
    EXPECT_TRUE(fs::is_fifo(folder / "pipe"));
    const std::string path = fakeProgram("chromium", "");
    const std::string command = "view" + inQuotes(folder / "case") + " --png";
    EXPECT_EQ(runProgram(folder, command + inQuotes(folder / "pipe") + " --overwrite", path).code, 2);
    std::ofstream(folder / "notes.txt") << "mine";
    EXPECT_EQ(runProgram(folder, command + inQuotes(folder / "notes.txt"), path).code, 2);
    std::ofstream(folder / "other.png") << "a file about \x89PNG";
    EXPECT_EQ(runProgram(folder, command + inQuotes(folder / "other.png"), path).code, 2);
    fs::remove(folder / "out.html");
    EXPECT_EQ(view("").code, 0);
    fs::rename(folder / "out.html", folder / "page.html");
    fs::create_symlink(folder / "page.html", folder / "out.html");
    const std::string before = fileBytes(folder / "page.html");
    EXPECT_EQ(view(" --state first").code, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "out.html"));
    EXPECT_NE(fileBytes(folder / "page.html"), before);
}

TEST_F(ViewCommand, LeavesTheOldPageAloneIfItFails)
{
    EXPECT_EQ(view(" --state first").code, 0);
    const std::string before = fileBytes(folder / "out.html");
    ASSERT_EQ(runProgram(folder, "sample" + inQuotes(folder / "large") + " --cells 60000 --states 4").code, 0);
    fs::remove_all(folder / "case");
    fs::rename(folder / "large", folder / "case");
    const ProgramRun tooLarge = view(" --limit 1");
    EXPECT_EQ(tooLarge.code, 6);
    EXPECT_NE(tooLarge.err.find("larger than 1.0 MB"), std::string::npos) << tooLarge.err;
    EXPECT_NE(tooLarge.err.find("--precision 16"), std::string::npos) << tooLarge.err;
    EXPECT_EQ(view("", "ulimit -f 100;").code, 6);
    EXPECT_EQ(fileBytes(folder / "out.html"), before);
    EXPECT_EQ(files(), std::set<std::string>{"out.html"});
}

// Most of such a page is what describes its arrays.
TEST_F(ViewCommand, CountsAllOfThePageForItsLimit)
{
    ASSERT_EQ(runProgram(folder, "sample --overwrite --cells 8 --states 120" + inQuotes(folder / "case")).code, 0);
    EXPECT_EQ(view(" --limit 2").code, 0);
    EXPECT_GT(fs::file_size(folder / "out.html"), 1000000U);
    fs::remove(folder / "out.html");
    const ProgramRun tooLarge = view(" --limit 1");
    EXPECT_EQ(tooLarge.code, 6);
    EXPECT_NE(tooLarge.err.find("reached after 120 states"), std::string::npos) << tooLarge.err;
    EXPECT_TRUE(files().empty());
}

TEST_F(ViewCommand, TellsWhatToInstallForAPicture)
{
    const ProgramRun run = view(" --png" + inQuotes(folder / "x.png"), "PATH=/nowhere");
    EXPECT_EQ(run.code, 6);
    EXPECT_NE(run.err.find("apt-get install --no-install-recommends chromium"), std::string::npos) << run.err;
    EXPECT_TRUE(files().empty());
}

// A browser shows other files as plain text.
TEST_F(ViewCommand, DrawsAPageOfAnyName)
{
    const std::string path = fakeProgram("chromium", R"(for word; do
    case $word in
        --screenshot=*) printf '\211PNG' >"${word#*=}" ;;
        file://*.html#picture) word=${word#file://} && read -r line <"${word%#*}" && echo '"picture: drawn"' ;;
    esac
done)");
    // As long as names can be.
    const fs::path page = folder / std::string(255, 'p');
    const std::string command = "view" + inQuotes(folder / "case") + " -o" + inQuotes(page) + " --png";
    const ProgramRun run = runProgram(folder, command + inQuotes(folder / "x.png"), path);
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(fileBytes(folder / "x.png"), "\x89PNG");
    EXPECT_EQ(files(), (std::set<std::string>{page.filename(), "x.png"}));
}

TEST_F(ViewCommand, RefusesOneFileForPageAndPicture)
{
    const std::string path = fakeProgram("chromium", "");
    fs::create_directory_symlink(".", folder / "here");
    const std::string command = "view" + inQuotes(folder / "case") + " --overwrite -o x --png";
    const std::string inFolder = "cd" + inQuotes(folder / "") + "; " + path;
    for (const std::string& picture : {std::string("x"), inQuotes(folder / "here/x")}) {
        const ProgramRun run = runProgram(folder, command + " " + picture, inFolder);
        EXPECT_EQ(run.code, 2);
        EXPECT_NE(run.err.find("both the page and its picture"), std::string::npos) << run.err;
    }
    EXPECT_EQ(files(), std::set<std::string>{"here"});
}

TEST_F(ViewCommand, KeepsThePageIfThePictureFails)
{
    // Whatever it says, without the mark of the page there is no picture.
    const std::string path = fakeProgram("chromium", "echo noise; printf 'no \\033 display\\n\\n'");
    const ProgramRun run = view(" --png" + inQuotes(folder / "x.png"), path);
    EXPECT_EQ(run.code, 6);
    const std::size_t told = run.err.find("wrote " + (folder / "out.html").string());
    const std::size_t failed = run.err.find("no picture of the page");
    EXPECT_TRUE(told < failed && failed != std::string::npos) << run.err;
    EXPECT_NE(run.err.find("it wrote last: no \\x1b display\n"), std::string::npos) << run.err;
    EXPECT_EQ(files(), std::set<std::string>{"out.html"});
}

TEST_F(ViewCommand, LeavesNothingBehindIfInterruptedInTheBrowser)
{
    const std::string path = fakeProgram("chromium", ": >\"$TMPDIR/own\"; kill -TERM $PPID; exec /bin/sleep 30");
    fs::create_directory(folder / "temporary");
    const ProgramRun run =
        view(" --png" + inQuotes(folder / "x.png"), path + " TMPDIR=" + inQuotes(folder / "temporary").substr(1));
    EXPECT_EQ(run.code, 143);
    EXPECT_TRUE(fs::is_empty(folder / "temporary"));
    EXPECT_EQ(files(), (std::set<std::string>{"out.html", "temporary"}));
}

TEST_F(ViewCommand, HandsThePageToTheDesktop)
{
    const ProgramRun without = view(" --open", "PATH=/nowhere");
    EXPECT_EQ(without.code, 6);
    EXPECT_NE(without.err.find("nothing opens pages here"), std::string::npos) << without.err;
    EXPECT_TRUE(fs::exists(folder / "out.html")); // to be opened by hand
    EXPECT_EQ(view(" --open", fakeProgram("xdg-open", "echo \"$1\" >" + inQuotes(folder / "opened"))).code, 0);
    EXPECT_EQ(fileBytes(folder / "opened"), (folder / "out.html").string() + "\n");
    EXPECT_EQ(view(" --open", fakeProgram("xdg-open", "exit 3")).code, 6);
}

// A page opened years later must not ask anyone for anything.
TEST_F(ViewCommand, WritesAPageWithoutForeignAddresses)
{
    EXPECT_EQ(view("").code, 0);
    const std::string page = fileBytes(folder / "out.html");
    EXPECT_NE(page.find("default-src 'none'"), std::string::npos);
    for (const char* const word : {"http:", "https:", "@import", "url(", "fetch(", "XMLHttpRequest", "innerHTML"}) {
        EXPECT_EQ(page.find(word), std::string::npos) << word;
    }
}

// Values read with the wrong number of components would show as meaningless colours.
TEST_F(ViewCommand, LeavesOutValuesOfTheWrongShape)
{
    const std::string library = "DDP_PLUGIN='" FAULTY_PLUGIN "'";
    const ProgramRun right = view(" --state first --result U --json", library);
    const ProgramRun wrong = view(" --state first --result U --json", library + " FAULT='one component'");
    EXPECT_EQ(right.code + wrong.code, 0) << right.err << wrong.err;
    const json lines = json::parse(wrong.out)["leftOut"];
    EXPECT_NE(std::ranges::find(lines, "Velocity of default_region: 1 component instead of 3"), lines.end()) << lines;
    EXPECT_LT(json::parse(wrong.out)["bytes"], json::parse(right.out)["bytes"]);
}

TEST_F(ViewCommand, TellsWhatIsInThePage)
{
    const ProgramRun run = view(" --state first --result T --json");
    EXPECT_EQ(run.code, 0);
    const json document = json::parse(run.out);
    EXPECT_EQ(document["bytes"], fs::file_size(folder / "out.html"));
    EXPECT_EQ(document["states"].size(), 1U);
    EXPECT_EQ(document["leftOut"][0], "1 of 2 states was not selected");
    EXPECT_EQ(document["leftOut"].size(), 2U) << document["leftOut"];
    for (const json& result : document["results"]) {
        EXPECT_NE(result["name"].get<std::string>().find("Temperature"), std::string::npos);
    }
}

} // namespace
