// SPDX-License-Identifier: MIT
// Each fault is seeded into a case in which everything shows, and must give its one finding and no other.
#include "host/DoctorCase.h"

namespace {

using namespace doctor;

constexpr const char* CELLS = "nonuniform List<scalar> \n2\n(\n1\n3\n)\n";
constexpr const char* LONG_LIST_WITH_WORD = "nonuniform List<scalar> \n11\n(\n1\n2\n3\n4\n5\nsix\n7\n8\n9\n10\n11\n)";
const FieldPatch LEFT = {"left side", "type fixedValue;\n        value uniform 7;"};
const FieldPatch REST = {"rest", "type zeroGradient;"};

class Doctor : public testing::Test
{
protected:
    void SetUp() override { writeSound(m_folder); }

    TempFolder m_folder;
    TempFolder m_output;
};

Seed field(const std::string& className, const std::string& interior,
           const std::vector<FieldPatch>& patches = {LEFT, REST})
{
    return [=](const TempFolder& folder) { folder.write("1/T", fieldFile(className, "T", interior, patches)); };
}

const std::vector<Fault> FAULTS = {
    {"list of another length", field("volScalarField", "nonuniform List<scalar> \n3\n(\n1\n3\n5\n)\n"),
     "hidden list-length 1/T", "internalField"},
    {"no interior", replaced("1/p", "internalField", "other"), "hidden no-interior 1/p"},
    {"macro of nothing", field("volScalarField", "uniform $nothing"), "hidden macro-names-nothing 1/T",
     "internalField"},
    {"code", field("volScalarField", "#calc \"1 + 1\""), "hidden runs-code 1/T", "internalField"},
    {"text that ends early",
     [](const TempFolder& folder) {
         const std::string text = fileBytes(folder / "1/p");
         folder.write("1/p", text.substr(0, text.find("3\n)") + 1));
     },
     "hidden unreadable-text 1/p", "3"},
    {"type without a value", field("volScalarField", CELLS, {{"left side", "type flowRateInletVelocity;"}, REST}),
     "hidden patch-without-value 1/T", "left side"},
    {"patch of no entry", field("volScalarField", CELLS, {LEFT}), "hidden patch-not-named 1/T", "boundaryField"},
    {"values of faces", field("surfaceScalarField", "uniform 1"), "hidden no-place 1/T"},
    {"nonuniform without a list", field("volScalarField", "nonuniform none"), "hidden bad-value 1/T", "internalField"},
    {"vector for a scalar", field("volScalarField", "uniform (1 2 3)"), "hidden bad-value 1/T", "internalField"},
    {"list of vectors for scalars", field("volScalarField", "nonuniform List<vector> 2((1 2 3) (4 5 6))"),
     "hidden list-type 1/T", "internalField"},
    {"word in a long list", replaced("1/p", "nonuniform List<scalar> \n2\n(\n1\n3\n)", LONG_LIST_WITH_WORD),
     "hidden list-length 1/p", "internalField"},
    {"patch without a type", field("volScalarField", CELLS, {{"left side", "other 7;"}, REST}),
     "hidden patch-without-type 1/T", "left side"},
    {"compressed file cut off",
     [](const TempFolder& folder) {
         const std::string bytes = gzipped(fileBytes(folder / "1/p"));
         std::filesystem::remove(folder / "1/p");
         folder.write("1/p.gz", bytes.substr(0, bytes.size() - 60));
     },
     "hidden damaged-gzip 1/p"},
    {"class of tensors", field("volSymmTensorField", "uniform (1 0 0 1 0 1)", {{"\".*\"", "type zeroGradient;"}}),
     "extended class 1/T"},
    {"interior by a macro", replaced("1/p", "internalField", "level 3;\ninternalField uniform $level;\nold"),
     "extended composed-interior 1/p", "internalField"},
    {"value by a macro",
     field("volScalarField", "uniform 3", {{"left side", "type fixedValue;\n        value $internalField;"}, REST}),
     "extended composed-patch 1/T", "value"},
    {"group of patches", field("volScalarField", CELLS, {LEFT, {"\"r.*\"", "type zeroGradient;"}}),
     "extended patch-by-pattern 1/T", "\"r.*\""},
    {"order of patches", field("volScalarField", CELLS, {REST, LEFT}), "extended patch-order 1/T", "rest"},
    {"patch type", field("volScalarField", CELLS, {{"left side", "type fixedFluxPressure;"}, REST}),
     "extended patch-without-value 1/T", "left side"},
    {"object of another name", replaced("1/p", "object      p", "object      q"), "extended object-name 1/p", "object"},
    {"unit", replaced("0.5/p", "[0 1 -1 0 0 0 0]", "[ 0 1 -1 0 0 0 0 ]"), "extended unit 0.5/p", "dimensions"},
    {"averages beside an empty patch",
     all({replaced("constant/polyMesh/boundary", "type wall;\n        nFaces 9", "type empty;\n        nFaces 9"),
          replaced("0.5/p", "type zeroGradient", "type empty"), replaced("1/p", "type zeroGradient", "type empty")}),
     "extended averages constant/polyMesh/boundary", "rest"},
    {"field on points", field("pointScalarField", "uniform 2", {LEFT, {"rest", LEFT.second}}), ""},
    {"raw values of another width",
     written("1/T",
             foamtext::header("volScalarField", "T", "binary", "    arch        \"LSB;label=32;scalar=32\";\n") +
                 "dimensions [0 0 0 0 0 0 0];\n\ninternalField   nonuniform List<scalar> \n" +
                 foamtext::rawList<float>({1, 3}) +
                 ";\n\nboundaryField\n{\n    left side\n    {\n        type zeroGradient;\n    }\n    rest\n    {\n "
                 "       type zeroGradient;\n    }\n}\n"),
     "extended raw-form 1/T", "arch"},
    {"both compressed",
     [](const TempFolder& folder) {
         folder.writeGz("1/p.gz", fieldFile("volScalarField", "p", "uniform 5", {LEFT, REST}));
     },
     "extended both-compressed 1/p"},
};

} // namespace

TEST_F(Doctor, HasNothingToSayOfASoundCase)
{
    const json found = examine(m_folder, 0);
    EXPECT_EQ(findingsIn(found), "");
    // Two times of a field on the cells and two patches.
    EXPECT_EQ(found["arrays"]["all"], 6);
    EXPECT_EQ(found["arrays"]["plain"], 6);
    EXPECT_EQ(found["forms"]["cells"], 2);
}

TEST_F(Doctor, FindsEachFaultOfAFieldOnce)
{
    expectFindings(FAULTS);
}

TEST_F(Doctor, SaysWhereExtendedReadingHelps)
{
    writePressure(m_folder, "2", "uniform $none");
    m_folder.write("2/T", fieldFile("volScalarField", "T", CELLS, {{"left side", "type fixedFluxPressure;"}, REST}));
    const ProgramRun run = runProgram(m_output, "doctor" + inQuotes(m_folder.path()));
    EXPECT_EQ(run.code, 1);
    const std::size_t hidden = run.out.find("does not show at all\n  2/p:16: the macro $none");
    const std::size_t extended = run.out.find("only with extended reading");
    EXPECT_NE(hidden, std::string::npos) << run.out;
    EXPECT_LT(hidden, extended);
    EXPECT_LT(extended, run.out.find("  2/T:26: patches of type fixedFluxPressure have no value in the file"))
        << run.out;
    // The two cells and patches of p, and one patch of T.
    EXPECT_NE(run.out.find("8 of 12 arrays of values show, 9 with extended reading"), std::string::npos) << run.out;
}

TEST_F(Doctor, LooksAtTheTimesAskedFor)
{
    for (const char* const time : {"2", "3", "4"}) {
        writePressure(m_folder, time);
    }
    struct Form
    {
        const char* state;
        Texts times;
    };
    const std::vector<Form> forms = {{"some", {"0.5", "2", "4"}},
                                     {"all", {"0.5", "1", "2", "3", "4"}},
                                     {"first", {"0.5"}},
                                     {"latest", {"4"}},
                                     {"last", {"4"}},
                                     {"3", {"3"}},
                                     {"3.0000001", {"3"}}};
    for (const Form& form : forms) {
        EXPECT_EQ(examine(m_folder, 0, std::string("--state ") + form.state)["timesLookedAt"], json(form.times))
            << form.state;
    }
    EXPECT_EQ(examine(m_folder, 0)["timesLookedAt"], json(forms.front().times));
    EXPECT_EQ(runProgram(m_output, "doctor --state 7" + inQuotes(m_folder.path())).code, 2);
    EXPECT_EQ(runProgram(m_output, "doctor --state 4end" + inQuotes(m_folder.path())).code, 2);
    EXPECT_EQ(runProgram(m_output, "doctor" + inQuotes(m_folder / "nothing")).code, 3);
}

TEST_F(Doctor, AsksForPatchesOnlyIfTheyAreShown)
{
    writePressure(m_folder, "1", "uniform $none");
    const json all = examine(m_folder, 1);
    EXPECT_EQ(findingsIn(all), "hidden macro-names-nothing 1/p:16");
    EXPECT_EQ(all["findings"][0]["arrays"].size(), 3U);
    const json cells = examine(m_folder, 1, "--set LOAD_BC_PARTS=off ");
    EXPECT_EQ(findingsIn(cells), "setting patches constant/polyMesh/boundary, hidden macro-names-nothing 1/p:16");
    EXPECT_EQ(cells["findings"][1]["arrays"].size(), 1U);
    EXPECT_EQ(cells["arrays"]["all"], 2);
    EXPECT_EQ(runProgram(m_output, "doctor --set NO_SUCH=on" + inQuotes(m_folder.path())).code, 2);
}

TEST_F(Doctor, TellsWhatASettingHides)
{
    EXPECT_EQ(findingsIn(examine(m_folder, 1, "--set LOAD_GLOBAL_MESH=off ")), "setting meshes constant/polyMesh");
    EXPECT_EQ(findingsIn(examine(m_folder, 1, "--set LOAD_CELL_ZONES=off ")),
              "setting cell-zones constant/polyMesh/cellZones");
    m_folder.write("constant/polyMesh/faceZones", zonesFile(true, {{"inner", {0}}}));
    EXPECT_EQ(findingsIn(examine(m_folder, 0, "--set LOAD_FACE_ZONES=on ")), "");
}

TEST_F(Doctor, SaysThatThereAreNoFields)
{
    std::filesystem::remove(m_folder / "0.5/p");
    std::filesystem::remove(m_folder / "1/p");
    const ProgramRun run = runProgram(m_output, "doctor" + inQuotes(m_folder.path()));
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.out.find("everything shows, but there are no fields\n"), std::string::npos) << run.out;
}

// 20 us for each of 60,000 files.
TEST_F(Doctor, WarnsOfManyFiles)
{
    for (int i = 1; i < 600; ++i) {
        std::filesystem::create_directory(m_folder / std::to_string(i));
    }
    EXPECT_EQ(examine(m_folder, 0, "--state 1")["slow"], json::array());
    for (int i = 0; i < 100; ++i) {
        m_folder.write("599/note" + std::to_string(i), "");
    }
    EXPECT_EQ(examine(m_folder, 0, "--state 1")["slow"],
              json({"600 times of 100 files: about 1 s to open, 20 us for each file"}));
}

TEST_F(Doctor, EscapesWhatCouldSteerATerminal)
{
    m_folder.write("1/\x1b[31m", fieldFile("surfaceScalarField", "x", "uniform 1"));
    const ProgramRun run = runProgram(m_output, "doctor" + inQuotes(m_folder.path()));
    EXPECT_EQ(run.out.find('\x1b'), std::string::npos);
    EXPECT_NE(run.out.find("1/\\x1b[31m"), std::string::npos) << run.out;
}

TEST_F(Doctor, ShowsTheLibraryWithoutACase)
{
    const ProgramRun run = runProgram(m_output, "doctor --json", "OPENFOAM_PLUGIN_EXTENDED_READING=1");
    EXPECT_EQ(run.code, 0);
    const json library = json::parse(run.out)["library"];
    EXPECT_EQ(library["settings"].back()["key"], "EXTENDED_READING");
    EXPECT_EQ(library["variable"]["value"], "1");
    Texts linked;
    for (const json& one : library["linked"]) {
        linked.push_back(one["name"]);
        EXPECT_TRUE(std::filesystem::exists(one["file"].get<std::string>())) << one;
    }
    EXPECT_NE(joined(linked).find("libz.so"), std::string::npos) << joined(linked);
}

TEST_F(Doctor, SaysWhyTheLibraryCannotBeLoaded)
{
    struct Refusal
    {
        std::string file;
        const char* reason;
        const char* help;
    };
    m_folder.write("text.so", "no library");
    const std::vector<Refusal> refusals = {
        {(m_folder / "none.so").string(), "No such file or directory", "check that the file named is there"},
        {m_folder.path().string(), "not a file", "name the file of this plug-in"},
        {(m_folder / "text.so").string(), "too short", "name a shared library"},
        {DDPHOST_PROGRAM, "cannot dynamically load", "this file is a program"},
    };
    for (const Refusal& refusal : refusals) {
        const ProgramRun run = runProgram(m_output, "doctor --plugin" + inQuotes(refusal.file));
        EXPECT_EQ(run.code, 4);
        EXPECT_NE(run.out.find(refusal.reason), std::string::npos) << run.out;
        EXPECT_NE(run.out.find("--plugin  " + refusal.file), std::string::npos) << run.out;
        EXPECT_NE(run.out.find(refusal.help), std::string::npos) << run.out;
        EXPECT_NE(run.err.find(refusal.help), std::string::npos) << run.err;
    }
    const ProgramRun named = runProgram(m_output, "doctor --json", "DDP_PLUGIN=/none.so");
    EXPECT_EQ(named.code, 4);
    EXPECT_EQ(json::parse(named.out)["error"]["code"], 4);
    EXPECT_NE(named.out.find("/none.so"), std::string::npos) << named.out;
    // A copy of the program has no library beside it.
    std::filesystem::create_directory(m_folder / "bin");
    std::filesystem::copy(DDPHOST_PROGRAM, m_folder / "bin/ddphost");
    const std::string program = (m_folder / "bin/ddphost").string();
    const std::string out = (m_output / "out").string();
    EXPECT_NE(std::system(("env -u DDP_PLUGIN '" + program + "' doctor >'" + out + "' 2>&1").c_str()), 0);
    EXPECT_NE(fileBytes(out).find((m_folder / "bin/libOpenFoamPlugin.so").string() + " "), std::string::npos)
        << fileBytes(out);
}
