// SPDX-License-Identifier: MIT
#include "host/ProgramRun.h"
#include "support/CaseFiles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

/// Runs the program on a case of two cubes with a pressure at the times 0.5 and 1.
class Program : public testing::Test
{
protected:
    Program()
    {
        writeControlDict(m_folder);
        writeTwoCubes(m_folder);
        writePressure(m_folder, "0.5");
        writePressure(m_folder, "1");
    }

    /// `redirection` overrides ours.
    ProgramRun run(const std::string& arguments, const std::string& environment = "",
                   const std::string& redirection = "")
    {
        return runProgram(m_folder, arguments, environment, redirection);
    }
    /// Runs it on the case with a faulty library.
    ProgramRun runFaulty(const std::string& arguments, const std::string& fault)
    {
        return run(arguments + m_case, "FAULT='" + fault + "' DDP_PLUGIN='" FAULTY_PLUGIN "'");
    }

    TempFolder m_folder;
    std::string m_case = inQuotes(m_folder.path());
};

} // namespace

// Hosts know the library by a version that no release changes.
TEST_F(Program, TellsTheVersionsOfReleaseAndLibrary)
{
    const ProgramRun alone = run("--version", "DDP_PLUGIN=/no/such/library.so");
    EXPECT_EQ(alone.code, 0) << alone.err;
    EXPECT_EQ(alone.out.rfind("ddphost ", 0), 0U) << alone.out;
    EXPECT_EQ(run("--version").out, alone.out + "library 1.9.99\n");
    EXPECT_EQ(run("--version", "DDP_PLUGIN=").out, alone.out + "library 1.9.99\n") << "not found beside the program";
    EXPECT_EQ(run("--version --plugin /no/such/library.so").out, alone.out);
}

TEST_F(Program, ReportsFailuresByExitCode)
{
    EXPECT_EQ(run("info --counts" + m_case).code, 0);
    EXPECT_EQ(run("info --help").code + run("--version").code, 0);
    EXPECT_EQ(run("info" + inQuotes(m_folder / "system")).code, 3);
    EXPECT_EQ(run("info" + inQuotes(m_folder / "other.file")).code, 3);
    for (const char* const fault :
         {"throws", "reads a missing setting", "reserved row", "crash", "lost group", "node out of range"}) {
        EXPECT_EQ(runFaulty("info --counts", fault).code, 5) << fault;
    }
    EXPECT_EQ(runFaulty("stats", "lost value").code, 5);
    EXPECT_EQ(runFaulty("info", "another version of the interface").code, 4);
    for (const char* const mistake : {"", "nonsense", "info", "info x --set NODE_AVG_RES=maybe", "info x --set NONE=1",
                                      "info x --set FLAG", "info x --color pink", "sample x --kind round",
                                      "sample x --kind 5", "sample x --cells 1.5", "sample ''", "info ''"}) {
        EXPECT_EQ(run(mistake).code, 2) << mistake;
    }
    EXPECT_EQ(run("info x --plugin no/such/library.so").code, 4);
    EXPECT_EQ(run("info x --plugin '" DDPHOST_PROGRAM "'").code, 4);
    EXPECT_EQ(run("info" + m_case, "", ">/dev/full").code, 6);
}

TEST_F(Program, KeepsDataAndLogApart)
{
    const std::string error = "error: a line\n";
    const std::string info = error + "info: a line\n";
    const ProgramRun plain = runFaulty("info", "log lines");
    EXPECT_EQ(plain.out.find('\033'), std::string::npos);
    EXPECT_NE(run("info --color always" + m_case).out.find('\033'), std::string::npos);
    const std::pair<const char*, std::string> levels[] = {
        {"info", error}, {"info -q", error}, {"info -v", info}, {"info -vv", info + "debug: a line\n"}};
    for (const auto& [command, lines] : levels) {
        const ProgramRun result = runFaulty(command, "log lines");
        EXPECT_EQ(result.err, lines);
        EXPECT_EQ(result.out, plain.out);
    }
}

TEST_F(Program, InfoPrintsTheTreeAsOneDocument)
{
    const ProgramRun result = run("info --counts --json --set LOAD_FACE_ZONES=on" + m_case);
    ASSERT_EQ(result.code, 0) << result.err;
    const json document = json::parse(result.out);
    EXPECT_EQ(document["schema"], "ddphost/1");
    EXPECT_EQ(document["plugin"]["name"], "OpenFoamPlugin");
    ASSERT_EQ(document["parts"].size(), 1U);
    const json& part = document["parts"][0];
    EXPECT_EQ(part["elementTypes"], (json{{"hexahedra", 2}}));
    EXPECT_EQ(part["boundingBox"], (json{{0, 0, 0}, {2, 1, 1}}));
    EXPECT_EQ(part["cellZones"][0]["name"], "z %1");
    EXPECT_EQ(part["patches"][1]["elementTypes"], (json{{"quadrilaterals", 9}}));
    EXPECT_EQ(part["faceZones"][0]["id"], 5);
    EXPECT_EQ(document["states"][1]["value"], 1.0);
    EXPECT_TRUE(document["results"][0]["averageOf"].is_null());
    EXPECT_EQ(document["results"][1]["averageOf"], 1);
    const std::string mixed = inQuotes(m_folder / "mixed");
    ASSERT_EQ(run("sample --kind mixed --cells 60" + mixed).code, 0);
    const json shapes = json::parse(run("info --counts --json" + mixed).out)["parts"][0]["elementTypes"];
    std::string names;
    for (const auto& [name, count] : shapes.items()) {
        names += name + (count > 0 ? " " : "? ");
    }
    EXPECT_EQ(names, "hexahedra polyhedra prisms pyramids tetrahedra ");
}

TEST_F(Program, ExportWritesTheSelectionAndOverwritesOnlyOnRequest)
{
    const std::string command = "export -o" + inQuotes(m_folder / "vtk") + m_case;
    const std::string selected = command + " --state all --result 'PRESSURE_E' --part 'default|left'";
    ASSERT_EQ(run(selected).code, 0);
    const json series = json::parse(fileBytes(m_folder / "vtk/case.vtm.series"));
    EXPECT_EQ(series["files"][1], (json{{"name", "case_0001.vtm"}, {"time", 1.0}}));
    const std::string index = fileBytes(m_folder / "vtk/case_0001.vtm");
    EXPECT_NE(index.find("name=\"left side\""), std::string::npos);
    EXPECT_EQ(index.find("rest"), std::string::npos) << "not selected";
    const std::filesystem::path bodyFile = m_folder / "vtk/case_0001/default_region.vtu";
    const std::string body = fileBytes(bodyFile);
    EXPECT_NE(body.find("Name=\"Pressure\" NumberOfComponents=\"1\""), std::string::npos);
    EXPECT_EQ(body.find("Pressure [node]"), std::string::npos) << "not selected";

    m_folder.write("vtk/case_0001/default_region.vtu", "precious");
    std::filesystem::remove(m_folder / "vtk/case_0001.vtm");
    EXPECT_EQ(run(selected).code, 6);
    EXPECT_EQ(fileBytes(bodyFile), "precious");
    EXPECT_FALSE(std::filesystem::exists(m_folder / "vtk/case_0001.vtm")) << "nothing is written after a refusal";
    EXPECT_EQ(run(selected + " --overwrite").code, 0);
    EXPECT_EQ(fileBytes(m_folder / "vtk/case_0001-2/default_region.vtu"), body);
    for (const char* const nothing :
         {"--state 0.3", "--state '#2x'", "--state nan", "--part '('", "--part outlet", "--result none"}) {
        EXPECT_EQ(run(command + " " + nothing).code, 2) << nothing;
    }
}

TEST_F(Program, StatsCountsEveryValueOnceAndReportsNonNumbers)
{
    const std::string options = " --result PRESSURE_E --part 'default|left'";
    EXPECT_EQ(run("stats --csv --state 1" + m_case + options).out,
              "result,field,unit,time,folder,group,part,component,items,least,mean,greatest,undefined,nan,infinite\n"
              "Pressure,p,m s-1,1,1,default_region,,,2,1,2,3,0,0,0\n"
              "Pressure,p,m s-1,1,1,left side,default_region,,1,7,7,7,0,0,0\n");
    const std::pair<const char*, const char*> values[] = {{"nan", "nan"}, {"-inf", "infinite"}};
    for (const auto& [value, column] : values) {
        writePressure(m_folder, "1", std::string("nonuniform List<scalar> \n2\n(\n5\n") + value + "\n)\n");
        const ProgramRun broken = run("stats --json --state '#2'" + m_case + options);
        EXPECT_EQ(broken.code, 1);
        const json row = json::parse(broken.out)["rows"][0];
        EXPECT_EQ(row[column], 1);
        EXPECT_EQ(row["mean"], 5.0);
    }
}

// Compatibility (docs/compatibility.md, "displacements of state 1"): the first state has the points of only one part.
TEST_F(Program, AcceptsMovedPointsOfSeveralParts)
{
    const std::string regions = inQuotes(m_folder / "regions");
    ASSERT_EQ(run("sample --kind regions --cells 60" + regions).code, 0);
    for (const char* const region : {"/", "/left/", "/right/"}) {
        for (const char* const time : {"0", "0.5"}) {
            const std::filesystem::path from =
                m_folder.path() / "regions/constant" / (std::string(".") + region) / "polyMesh";
            const std::filesystem::path to = m_folder.path() / "regions" / (time + std::string(region)) / "polyMesh";
            std::filesystem::create_directories(to);
            std::filesystem::copy_file(from / "points", to / "points");
        }
    }
    EXPECT_EQ(run("stats --state all" + regions).code, 0);
    EXPECT_EQ(run("export --state all -o" + inQuotes(m_folder / "moved") + regions).code, 0);
    EXPECT_EQ(run("check --include '^(result|equal|calls)'" + regions).code, 0);
}

TEST_F(Program, WatchShowsNoticesAndEndsOnInterrupt)
{
    EXPECT_EQ(runFaulty("watch --raw --interval 0 --count 1", "needless notice").out,
              "update state 7 time 0 \"Time 0.00000 #0\"\n"
              "add state 9 time 1 \"Time 1.00000 #20\"\n"
              "remove position 2\n");
    EXPECT_EQ(run("watch --interval 60" + m_case, "timeout --preserve-status -s INT 1 env").code, 130);
}

TEST_F(Program, SelectsStatesByFolderThenTime)
{
    for (const char* const time : {"1000", "1000.5", "0.orig"}) {
        writePressure(m_folder, time);
    }
    struct Selection
    {
        const char* text;
        std::vector<std::string> folders; ///< empty if the text is refused
    };
    const Selection selections[] = {
        {"latest", {"1000.5"}},
        {"last", {"1000.5"}},
        {"first", {"0.orig"}},
        {"0.orig", {"0.orig"}},
        {"noZero", {"0.5", "1", "1000", "1000.5"}},
        {"0.6:1000", {"1", "1000"}},
        {":0.5", {"0.orig", "0.5"}},
        {"1000.5,0.5", {"0.5", "1000.5"}},
        {"5e-1", {"0.5"}},
        {"0.50000001", {"0.5"}},
        {"1000.0001", {"1000"}},
        {"0.0001", {}},
        {"2:3", {}},
        {"1000.25", {}},
        {"''", {}},
    };
    for (const Selection& selection : selections) {
        SCOPED_TRACE(selection.text);
        const ProgramRun result =
            run(std::string("stats --plain --json --result p --part region --state ") + selection.text + m_case);
        EXPECT_EQ(result.code, selection.folders.empty() ? 2 : 0) << result.err;
        std::vector<std::string> folders;
        const json document = json::parse(result.out);
        for (const json& row : document.value("rows", json::array())) {
            if (row["result"] == "Pressure" && row["group"] == "default_region") {
                folders.push_back(row["folder"]);
            }
        }
        EXPECT_EQ(folders, selection.folders);
    }
    EXPECT_NE(run("stats --state 3" + m_case).err.find("the nearest are 0.5, 1, 1000"), std::string::npos);
}

TEST_F(Program, SelectsResultsByTheNamesThatUsersKnow)
{
    const std::pair<const char*, std::size_t> selections[] = {{"p", 2},        {"PRESSURE", 1}, {"pressure_n", 1},
                                                              {"'#1'", 1},     {"ressu", 2},    {"'p|T'", 2},
                                                              {"'^P.*e$'", 1}, {"'p('", 0}};
    for (const auto& [text, count] : selections) {
        const json document = json::parse(run(std::string("stats --json --part left --result ") + text + m_case).out);
        EXPECT_EQ(document.value("rows", json::array()).size(), count) << text;
    }
    EXPECT_NE(run("stats --result q" + m_case).err.find("the case has p (Pressure)"), std::string::npos);
}

TEST_F(Program, SaysWhichMeshIsNotReadAndWhy)
{
    m_folder.write("constant/polyMesh/points", "nothing");
    const ProgramRun info = run("info --counts --json" + m_case);
    EXPECT_EQ(info.code, 1);
    const json document = json::parse(info.out);
    EXPECT_EQ(document["meshesNotRead"][0]["file"], (m_folder / "constant/polyMesh/points").string());
    EXPECT_FALSE(document["parts"][0].contains("boundingBox"));
    const ProgramRun stats = run("stats --result p" + m_case);
    EXPECT_EQ(stats.code, 1);
    EXPECT_NE(stats.err.find("mesh not read: " + (m_folder / "constant/polyMesh/points").string() + ": "),
              std::string::npos);
    // A list that breaks off leaves a mesh that looks whole.
    m_folder.write("constant/polyMesh/points", foamtext::header("vectorField", "points") + "12\n(\n(0 0 0)\n(1 0 0)\n");
    const ProgramRun shortList = run("info --counts" + m_case);
    EXPECT_EQ(shortList.code, 1);
    EXPECT_NE(shortList.err.find("polyMesh/points: List is shorter than its count: 12 items promised, 2 found"),
              std::string::npos)
        << shortList.err;
    const ProgramRun noCase = run("info" + inQuotes(m_folder / "system"));
    EXPECT_EQ(noCase.err, "ddphost: not an OpenFOAM case: " + (m_folder / "system/system/controlDict").string() +
                              " cannot be read (No such file or directory)\n");
}

// Whoever reads the documents of a script's runs must find one in each, or it stops with an error of its own.
TEST_F(Program, WritesOneDocumentAlsoWhenItFails)
{
    struct Failure
    {
        ProgramRun result;
        int code;
        const char* command;
    };
    const Failure failures[] = {
        {run("stats --json --bad" + m_case), 2, "stats"},
        {run("info --json" + inQuotes(m_folder / "system")), 3, "info"},
        {runFaulty("info --json", "another version of the interface"), 4, "info"},
        {runFaulty("info --json --counts", "crash"), 5, "info"},
        {runFaulty("info --json --counts", "throws"), 5, "info"},
        {run("export --json -o /dev/null/x" + m_case), 6, "export"},
        {run("watch --json" + m_case, "timeout --preserve-status -s INT 1 env"), 130, "watch"},
        {run("watch --json" + m_case, "timeout --preserve-status -s TERM 1 env"), 143, "watch"},
    };
    for (const Failure& failure : failures) {
        SCOPED_TRACE(failure.result.err);
        EXPECT_EQ(failure.result.code, failure.code);
        const json document = json::parse(failure.result.out);
        EXPECT_EQ(document["command"], failure.command);
        EXPECT_EQ(document["error"]["code"], failure.code);
    }
    EXPECT_TRUE(json::parse(run("--json nonsense").out)["command"].is_null());
}

TEST_F(Program, SuggestsWhatAMistypedWordMeant)
{
    EXPECT_NE(run("sats x").err.find("'stats'"), std::string::npos);
    EXPECT_NE(run("info x --plian").err.find("'--plain'"), std::string::npos);
    EXPECT_NE(run("sample x --kind pol").err.find("'poly'"), std::string::npos);
    EXPECT_EQ(run("qqqqqqqq").err.find("did you mean"), std::string::npos);
    EXPECT_NE(run("stats --help").out.find("--threads"), std::string::npos) << "where users look for it";
}
