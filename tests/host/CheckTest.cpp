// SPDX-License-Identifier: MIT
#include "check/Check.h"
#include "border/ShellWord.h"
#include "check/CheckReport.h"
#include "host/ProgramRun.h"
#include "sample/FoamMeshFiles.h"
#include "sample/SampleCase.h"
#include "support/FoamText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstring>
#include <numbers>
#include <set>
#include <string_view>

using namespace std::string_view_literals;

namespace {

struct SeededFault
{
    const char* fault;
    const char* check; ///< that must find it, and the sample
    int code = 1;      ///< 0 if it is a warning
};

// Every check is listed at least once.
const std::vector<SeededFault> SEEDS = {{"another version when loaded again", "load.twice"},
                                        {"no refusal", "load.refused"},
                                        {"another provider's name", "info.descriptor"},
                                        {"one setting more", "info.settings"},
                                        {"every path", "info.paths"},
                                        {"values of the load", "load.case@hex"},
                                        {"asks for another setting", "init.settings@hex"},
                                        {"state before the title", "metadata.order@hex"},
                                        {"descending group id", "metadata.groups@hex"},
                                        {"state without id", "metadata.states@hex"},
                                        {"result without kind", "metadata.results@hex"},
                                        {"nodes set twice", "geometry.order@hex"},
                                        {"group made on a worker", "geometry.threads@hex"},
                                        {"nodes set on two threads", "geometry.threads@hex"},
                                        {"node out of range", "geometry.arrays@hex"},
                                        {"wrong element id", "geometry.ids@hex"},
                                        {"part id of another group", "geometry.parts@hex"},
                                        {"lost polyhedron face", "geometry.polyhedra@poly"},
                                        {"lost node of a face", "geometry.arrays@poly"},
                                        {"foreign polyhedron node", "geometry.polyhedra@poly"},
                                        {"turned cell", "geometry.volumes@hex"},
                                        {"torn cell", "geometry.closed@hex"},
                                        {"lost patch face", "geometry.closed@hex"},
                                        {"no cells", "geometry.cells@hex", 0},
                                        {"flat triangle", "geometry.surfaces@surface", 0},
                                        {"foreign cell in a set", "geometry.sets@zones"},
                                        {"one value group more", "result.groups@zones"},
                                        {"no values", "result.values@hex", 0},
                                        {"lost value", "result.arrays@surface"},
                                        {"one component", "result.arrays@hex"},
                                        {"values in pieces", "result.replaced@hex"},
                                        {"values of the call", "result.replaced@hex"},
                                        {"values on two threads", "result.threads@hex"},
                                        {"values of the opening", "equal.openings@hex"},
                                        {"values of the threads", "equal.threads@hex"},
                                        {"crash without close", "calls.order@hex", 5},
                                        {"any result", "calls.garbage@hex"},
                                        {"needless notice", "poll.unchanged@hex"},
                                        {"lost additions", "poll.end@hex"},
                                        {"lost updates", "poll.middle@hex"},
                                        {"lost removals", "poll.remove@hex"},
                                        {"lost removals", "poll.both@hex"},
                                        {"lost updates", "poll.foreign@hex"},
                                        {"prints", "silence.output@hex"},
                                        {"writes into the case", "silence.files@hex"},
                                        {"writes into the working folder", "silence.files@hex"},
                                        {"sets the locale", "silence.process@hex"},
                                        {"changes the folder", "silence.process@hex"},
                                        {"crash", "geometry.ids@hex", 5},
                                        {"hang", "geometry.ids@hex"}};

/// A prism over a polygon, as a mesh of one cell; one side face spans some edges of the polygon.
SampleMesh prism(int corners, int edgesOfASide)
{
    SampleMesh mesh;
    mesh.cellCount = 1;
    for (int i = 0; i < 2 * corners; ++i) {
        const double angle = 2 * std::numbers::pi * i / corners;
        mesh.addPoint({std::cos(angle), std::sin(angle), i < corners ? 0.0 : 1.0});
    }
    std::vector<std::int32_t> bottom;
    std::vector<std::int32_t> top;
    for (int i = 0; i < corners; ++i) {
        bottom.insert(bottom.begin(), i);
        top.push_back(corners + i);
    }
    mesh.addFace(bottom, 0);
    mesh.addFace(top, 0);
    for (int first = 0; first < corners; first += edgesOfASide) {
        std::vector<std::int32_t> side;
        for (int i = first; i <= first + edgesOfASide; ++i) {
            side.push_back(i % corners);
        }
        for (int i = first + edgesOfASide; i >= first; --i) {
            side.push_back(corners + i % corners);
        }
        mesh.addFace(side, 0);
    }
    mesh.patches = {{.name = "outer", .type = "patch", .faceCount = mesh.faceCount()}};
    return mesh;
}

/// Writes a case of this mesh, without results, to the folder "case".
void writeCase(const TempFolder& folder, const SampleMesh& mesh)
{
    folder.write("case/case.foam", "");
    folder.write("case/system/controlDict",
                 foamtext::header("dictionary", "controlDict") + "deltaT 1;\nwriteInterval 1;\n");
    writeMeshFiles({folder / "case", "constant/polyMesh"}, mesh, {});
}

ProgramRun check(const TempFolder& folder, const std::string& fault, const std::string& arguments)
{
    return runProgram(folder, "check --plugin '" FAULTY_PLUGIN "' " + arguments, "FAULT=\"" + fault + "\"");
}

} // namespace

TEST(Check, FindsEverySeededFaultAndNothingElse)
{
    const TempFolder folder;
    std::set<std::string_view> unseeded = {"load.symbols"};
    for (const Check& known : allChecks()) {
        unseeded.insert(known.name);
    }
    for (const SeededFault& seed : SEEDS) {
        const std::string options = " --timeout 2 --include '^" + std::string(seed.check) + "$'";
        const ProgramRun result = check(folder, seed.fault, options);
        EXPECT_EQ(result.code, seed.code) << seed.fault << "\n" << result.out << result.err;
        EXPECT_EQ(result.out.ends_with("\npassed with 1 warning\n"), seed.code == 0) << result.out;
        unseeded.erase(std::string_view(seed.check).substr(0, std::string_view(seed.check).find('@')));
    }
    EXPECT_EQ(unseeded, (std::set<std::string_view>{"load.symbols"}));
    EXPECT_EQ(runProgram(folder, "check --include symbols --plugin '" LEAKY_PLUGIN "'").code, 1);
    const ProgramRun sound = check(folder, "", "--include '^[^@]*(@(hex|poly|zones|surface))?$'");
    EXPECT_EQ(sound.code, 0) << sound.out << sound.err;
}

TEST(Check, PassesTheRealLibraryOnAllSamples)
{
    const TempFolder folder;
    const ProgramRun result = runProgram(folder, "check --only-failed --plugin '" REAL_PLUGIN "'");
    EXPECT_EQ(result.code, 0) << result.out << result.err;
    EXPECT_NE(result.out.find(" 0 failed\npassed\n"), std::string::npos) << result.out;
}

// A time that comes back in the same poll is no change to the library, which the times 0 and 2 once led to.
TEST(Check, PollsWithTimesThatTheCaseDoesNotHave)
{
    const TempFolder folder;
    writeSampleCase(folder / "case", {.cells = 8, .states = 1, .format = {}});
    std::filesystem::copy(folder / "case/0", folder / "case/2", std::filesystem::copy_options::recursive);
    const std::string polls = " --include '^poll'" + inQuotes(folder / "case");
    EXPECT_NE(check(folder, "", polls).out.find("\n6 checks: 6 passed, 0 failed\npassed\n"), std::string::npos);
    EXPECT_EQ(check(folder, "lost additions", polls).code, 1);
}

// Solvers divide the area between the two faces of a cell; a host that shows both sees the cell closed.
TEST(Check, CountsAFaceInThePlaceOfACoupledPatchOnce)
{
    const TempFolder folder;
    for (const char* const type : {"cyclicACMI", "patch"}) {
        SampleMesh cube = prism(4, 1);
        const std::vector<std::int32_t> again(cube.faceNodes.end() - 4, cube.faceNodes.end());
        cube.addFace(again, 0);
        cube.patches.push_back({.name = "couple", .type = type, .faceCount = 1, .startFace = 6});
        writeCase(folder, cube);
        EXPECT_EQ(check(folder, "", "--include closed" + inQuotes(folder / "case")).code, type == "patch"sv ? 1 : 0);
    }
}

TEST(Check, TellsCountsBeyondAByteFromBrokenTables)
{
    struct Cell
    {
        int corners;
        int edgesOfASide;
    };
    const TempFolder folder;
    const std::string geometry = " --include ^geometry" + inQuotes(folder / "case");
    for (const Cell& cell : {Cell{70, 1}, Cell{255, 1}, Cell{300, 1}, Cell{300, 75}, Cell{300, 150}}) {
        SCOPED_TRACE(cell.corners / cell.edgesOfASide);
        writeCase(folder, prism(cell.corners, cell.edgesOfASide));
        const ProgramRun result = check(folder, "", geometry);
        EXPECT_EQ(result.code, 0) << result.out << result.err;
        EXPECT_NE(result.out.find(": known limit (decision 12): default_region: "), std::string::npos) << result.out;
        EXPECT_EQ(check(folder, "wrong element id", geometry).code, 1);
        EXPECT_EQ(check(folder, "lost polyhedron face", geometry).code, 1);
    }
    writeCase(folder, prism(70, 1));
    EXPECT_EQ(check(folder, "lost node of a face", geometry).code, 1);
}

TEST(Check, TakesOnlyPlainDisplacementsOfAnotherCountForALimit)
{
    const TempFolder folder;
    const std::string moving = "--include result.groups" + inQuotes(folder / "moving");
    writeSampleCase(folder / "moving", {.kind = SampleKind::Moving, .cells = 8, .format = {}});
    writePoints({folder / "moving", "0.5/polyMesh"}, {0, 0, 0, 1, 0, 0, 1, 1, 0}, {});
    const ProgramRun plain = check(folder, "", moving);
    EXPECT_NE(plain.out.find(": known limit (decision 11): "), std::string::npos) << plain.out << plain.err;
    EXPECT_EQ(plain.code, 0);
    EXPECT_EQ(check(folder, "one value group more", moving).code, 1);
    EXPECT_TRUE(check(folder, "", "--extended " + moving).out.ends_with("\npassed\n"));
    const ProgramRun lost = check(folder, "lost value", "--extended " + moving);
    EXPECT_EQ(lost.out.find("known limit"), std::string::npos) << lost.out;
    EXPECT_EQ(lost.code, 1);
}

TEST(Check, TellsWhatACaseLacks)
{
    struct Damage
    {
        const char* file;
        const char* text;
        const char* replacement;
        const char* told;
        int code;
        const char* toldExtended; ///< empty if that reads the file
    };
    const char* const triangles = "postProcessing/sampleSurface/0/middle/faces";
    const Damage damages[] = {
        {"constant/polyMesh/owner", "nCells:", "cells:", "known limit (decision 4): default_region", 0, ""},
        {"constant/polyMesh/owner", "nCells:", "cells:", "Pressure has no value at any state, but in extended", 0, ""},
        {"constant/polyMesh/owner", "nCells:8", "nCells:0", "default_region has no cells", 0, "has no cells"},
        {"constant/polyMesh/faces", "faceList", "faces", "the library logged 'OFFile : Unexp", 1, "the library logged"},
        {triangles, "3(0 1 4)", "3(0 0 4)", "middle[Surf]: triangles without area: 1 of 8, 1 with", 0,
         "1 of 8, 1 with"},
        {triangles, "3(0 1 4)", "4(0 1 4 3)", "known limit (compatibility, \"surface elements", 0, ""},
        {triangles, "3(0 1 4)", "2(0 1)", "known limit (decision 20): middle[Surf]", 0, ""},
        {"0/p", "internalField", "externalField", "Pressure has no value", 0, "Pressure has no value"},
    };
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.told);
        const TempFolder folder;
        writeSampleCase(folder / "case", {.kind = SampleKind::Surface, .cells = 8, .states = 1, .format = {}});
        std::string text = fileBytes(folder / "case" / damage.file);
        ASSERT_NE(text.find(damage.text), std::string::npos) << text;
        text.replace(text.find(damage.text), std::strlen(damage.text), damage.replacement);
        folder.write(std::string("case/") + damage.file, text);
        const std::string looks = "--include '^(geometry|result.(groups|values))'" + inQuotes(folder / "case");
        const ProgramRun plain = runProgram(folder, "check " + looks);
        EXPECT_NE(plain.out.find(damage.told), std::string::npos) << plain.out << plain.err;
        EXPECT_EQ(plain.code, damage.code);
        const ProgramRun extended = runProgram(folder, "check --extended " + looks);
        EXPECT_NE(extended.out.find(damage.toldExtended), std::string::npos) << extended.out;
        EXPECT_EQ(extended.out.ends_with("\npassed\n"), *damage.toldExtended == '\0') << extended.out;
    }
}

TEST(Check, QuotesWordsForAShellAndKeepsControlsFromTheTerminal)
{
    EXPECT_EQ(shellWord("cases/a-1"), "cases/a-1");
    EXPECT_EQ(shellWord("it's"), R"('it'\''s')");
    const std::string hostile = "\033[31m'\n\\";
    EXPECT_EQ(shellWord(hostile), R"($'\x1b[31m\'\n\\')");
    CheckJob job = {allChecks().data(), hostile, {}, false, {}, {}};
    job.outcome.verdict = CheckVerdict::Failed;
    job.outcome.notes[NoteKind::Finding] = {hostile};
    const std::string text = checkText({job}, "", false, TextStyle(ColorMode::Never));
    EXPECT_EQ(text.find('\033'), std::string::npos);
    EXPECT_EQ(std::ranges::count(text, '\n'), 4) << text;
}

TEST(Check, ListsChecksAndSaysWhyAPatternMatchesNone)
{
    const TempFolder folder;
    EXPECT_EQ(check(folder, "", "--list --include '^poll.(end|unch)'").out,
              "poll.unchanged  Without a change nothing is reported.\n"
              "poll.end        A folder at the end is added, and the next poll reports all states.\n");
    EXPECT_NE(check(folder, "", "--include nonsense").err.find("'nonsense'; 'ddphost check --list'"),
              std::string::npos);
    EXPECT_NE(check(folder, "", "--include @hex x").err.find("no samples"), std::string::npos);
    EXPECT_NE(check(folder, "", "--exclude .").err.find("--exclude '.' leaves no check"), std::string::npos);
}

TEST(Check, SurvivesCrashesAndHangsAndTellsHowToReproduceThem)
{
    const TempFolder folder;
    const std::string sample = " --include '^(load.twice|metadata.order@hex|geometry.volumes@hex)$'";
    const nlohmann::json crashed = nlohmann::json::parse(check(folder, "crash", "--json" + sample).out);
    EXPECT_EQ(crashed["verdict"], "crashed");
    EXPECT_EQ(crashed["tally"], (nlohmann::json{{"passed", 2}, {"crashed", 1}}));
    const ProgramRun hung = check(folder, "hang", "--timeout 0.5 --only-failed" + sample);
    EXPECT_EQ(hung.out, "timed out geometry.volumes (hex): still running after 0.5 seconds; repeat: ddphost check "
                        "--include '^geometry\\.volumes@hex$' --plugin " +
                            shellWord(FAULTY_PLUGIN) +
                            " --timeout 0.5\n"
                            "3 checks: 2 passed, 0 failed, 1 timed out\nfailed\n");
}

TEST(Check, RefusesToCheckWhatIsMissing)
{
    const TempFolder folder;
    EXPECT_EQ(check(folder, "", "--include nonsense").code, 2);
    EXPECT_EQ(check(folder, "", "--include '('").code, 2);
    EXPECT_EQ(check(folder, "", "--set NONE=1 --include metadata").code, 2);
    EXPECT_EQ(check(folder, "", "--include 'sets@hex'").code, 2) << "all skipped";
    EXPECT_EQ(check(folder, "", inQuotes(folder / "no/such")).code, 3);
    EXPECT_EQ(runProgram(folder, "check --plugin '" DDPHOST_PROGRAM "'").code, 4);
}
