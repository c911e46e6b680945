// SPDX-License-Identifier: MIT
#include "TempFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/wait.h>

namespace {

struct ProgramRun
{
    int code;
    std::string out;
    std::string err;
};

/// Runs the program with the fake plug-in, or the one that the arguments name. Redirections behind ours win.
ProgramRun run(const TempFolder& folder, const std::string& arguments, const std::string& environment = "",
               const std::string& redirection = "")
{
    const std::string command = environment + " DDP_PLUGIN='" FAKE_PLUGIN "' '" DDPHOST_PROGRAM "' " + arguments +
                                " >'" + (folder / "out").string() + "' 2>'" + (folder / "err").string() + "' " +
                                redirection;
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(folder / "out"), contentOf(folder / "err")};
}

std::string quoted(const std::filesystem::path& path)
{
    return " '" + path.string() + "'";
}

} // namespace

TEST(Program, TellsWhatWentWrongByItsExitCode)
{
    const TempFolder folder;
    const auto info = [&](const std::string& name) {
        return run(folder, "info --counts" + quoted(folder / name / "case.foam")).code;
    };
    EXPECT_EQ(info("sound"), 0);
    EXPECT_EQ(info("refused"), 3);
    EXPECT_EQ(run(folder, "info" + quoted(folder / "sound/other.file")).code, 3);
    for (const char* const fault :
         {"throws", "unasked-option", "reserved-row", "crashes", "missing-group", "bad-connectivity"}) {
        EXPECT_EQ(info(fault), 5) << fault;
    }
    for (const char* const mistake : {"", "nonsense", "info", "info x --set FLAG=maybe", "info x --set NONE=1",
                                      "info x --set FLAG", "info x --color pink", "sample x --kind round"}) {
        EXPECT_EQ(run(folder, mistake).code, 2) << mistake;
    }
    EXPECT_EQ(run(folder, "info x --plugin no/such/library.so").code, 4);
    EXPECT_EQ(run(folder, "info x --plugin '" DDPHOST_PROGRAM "'").code, 4);
    EXPECT_EQ(run(folder, "info x", "FAKE_PLUGIN_VERSION=8").code, 4);
    EXPECT_EQ(run(folder, "--version").code, 0);
    EXPECT_EQ(run(folder, "info --help").code, 0);
    EXPECT_EQ(run(folder, "info" + quoted(folder / "sound/case.foam"), "", ">/dev/full").code, 6);
}

TEST(Program, KeepsDataAndLogApart)
{
    const TempFolder folder;
    const std::string info = "info" + quoted(folder / "sound/case.foam");
    EXPECT_EQ(run(folder, info + " -q").err, "error: an error line\n");
    EXPECT_EQ(run(folder, info).err, "error: an error line\n");
    EXPECT_EQ(run(folder, info + " -v").err, "error: an error line\ninfo: an info line\n");
    EXPECT_EQ(run(folder, info + " -vv").err, "error: an error line\ninfo: an info line\ndebug: a debug line\n");
    EXPECT_EQ(run(folder, info + " -vv").out, run(folder, info).out);
    EXPECT_EQ(run(folder, info).out.find('\033'), std::string::npos);
    EXPECT_NE(run(folder, info + " --color always").out.find('\033'), std::string::npos);
}

TEST(Program, InfoGivesTheTreeAsOneDocument)
{
    const TempFolder folder;
    const ProgramRun result = run(folder, "info --counts --json" + quoted(folder / "sound/case.foam"));
    ASSERT_EQ(result.code, 0) << result.err;
    const nlohmann::json document = nlohmann::json::parse(result.out);
    EXPECT_EQ(document["schema"], "ddphost/1");
    EXPECT_EQ(document["plugin"]["name"], "FakePlugin");
    ASSERT_EQ(document["parts"].size(), 1U);
    const nlohmann::json& part = document["parts"][0];
    EXPECT_EQ(part["elementTypes"],
              (nlohmann::json{{"hexahedra", 1}, {"polyhedra", 1}, {"prisms", 1}, {"pyramids", 1}, {"tetrahedra", 1}}));
    EXPECT_EQ(part["boundingBox"], (nlohmann::json{{0, 0, 0}, {9, 1, 1}}));
    EXPECT_EQ(part["cellZones"][0]["name"], "left half");
    EXPECT_EQ(part["patches"][0]["elementTypes"], (nlohmann::json{{"polygons", 1}, {"triangles", 1}}));
    EXPECT_EQ(part["faceZones"][0]["id"], 4);
    EXPECT_EQ(document["states"][1], (nlohmann::json{{"id", 3}, {"value", 0.5}, {"name", "Time 0.50000 #10"}}));
    EXPECT_EQ(document["results"][1]["averageOf"], 1);
    EXPECT_TRUE(document["results"][2]["averageOf"].is_null()) << "a field on points is no average";
}

TEST(Program, ExportNeverReplacesAFileUnasked)
{
    const TempFolder folder;
    const std::string command =
        "export" + quoted(folder / "sound/case.foam") + " -o" + quoted(folder / "vtk") + " --part 'body|skin'";
    ASSERT_EQ(run(folder, command).code, 0);
    const std::string index = contentOf(folder / "vtk/case.vtm");
    EXPECT_NE(index.find("<DataSet index=\"1\" name=\"../skin\" file=\"case/body..._skin.vtp\"/>"), std::string::npos)
        << index;
    EXPECT_EQ(index.find("cut"), std::string::npos) << "not selected";

    std::ofstream(folder / "vtk/case/body.vtu") << "precious";
    std::filesystem::remove(folder / "vtk/case.vtm");
    EXPECT_EQ(run(folder, command).code, 6);
    EXPECT_EQ(contentOf(folder / "vtk/case/body.vtu"), "precious");
    EXPECT_FALSE(std::filesystem::exists(folder / "vtk/case.vtm")) << "nothing is written after a refusal";
    EXPECT_EQ(run(folder, command + " --overwrite").code, 0);
    EXPECT_NE(contentOf(folder / "vtk/case/body.vtu"), "precious");
}

TEST(Program, ExportWritesTheValuesOfEachStateAndTheirIndex)
{
    const TempFolder folder;
    const std::string target = " -o" + quoted(folder / "vtk");
    const std::string command = "export" + quoted(folder / "sound/case.foam") + target;
    ASSERT_EQ(run(folder, command + " --state all --result 'T_E|U'").code, 0);
    const nlohmann::json series = nlohmann::json::parse(contentOf(folder / "vtk/case.vtm.series"));
    EXPECT_EQ(series["files"][1], (nlohmann::json{{"name", "case_0001.vtm"}, {"time", 0.5}}));
    const std::string body = contentOf(folder / "vtk/case_0001/body.vtu");
    EXPECT_NE(body.find("Name=\"T\" NumberOfComponents=\"1\""), std::string::npos);
    EXPECT_NE(body.find("Name=\"U\" NumberOfComponents=\"3\""), std::string::npos);
    EXPECT_EQ(body.find("T [node]"), std::string::npos) << "not selected";
    EXPECT_EQ(run(folder, command + " --state 0.3").code, 2) << "there is no such time";
    EXPECT_EQ(run(folder, command + " --part '('").code, 2) << "no regular expression";
}

TEST(Program, StatsCountsEveryValueOnceAndReportsWhatIsNoNumber)
{
    const TempFolder folder;
    const std::string options = " --result T_E --part body --state '#3' --csv";
    EXPECT_EQ(run(folder, "stats" + quoted(folder / "sound/case.foam") + options).out,
              "result,time,group,component,items,least,mean,greatest,undefined,nan,infinite\n"
              "T,0.5,body,0,5,1,2.75,5,1,0,0\n");
    const ProgramRun broken = run(folder, "stats --json" + quoted(folder / "not-finite/case.foam") + options);
    EXPECT_EQ(broken.code, 1);
    const nlohmann::json row = nlohmann::json::parse(broken.out)["rows"][0];
    EXPECT_EQ(row["nan"], 1);
    EXPECT_EQ(row["mean"], 2.0);
    EXPECT_EQ(run(folder, "stats" + quoted(folder / "short-values/case.foam")).code, 5);
}

TEST(Program, WatchPrintsOneLineANoticeAndEndsWithTheInterrupt)
{
    const TempFolder folder;
    const std::string watch = "watch" + quoted(folder / "sound/case.foam");
    EXPECT_EQ(run(folder, watch + " --interval 0 --count 1").out, "update state 7 time 0 \"Time 0.00000 #0\"\n"
                                                                  "add state 9 time 1 \"Time 1.00000 #20\"\n"
                                                                  "remove position 2\n");
    EXPECT_EQ(run(folder, watch + " --interval 60", "timeout --preserve-status -s INT 0.2 env").code, 0);
}

TEST(Program, BenchMeasuresEachKindOfWork)
{
    const TempFolder folder;
    const ProgramRun result = run(folder, "bench --json --repeat 2" + quoted(folder / "sound/case.foam"));
    ASSERT_EQ(result.code, 0) << result.err;
    const nlohmann::json phases = nlohmann::json::parse(result.out)["cases"][0]["phases"];
    std::vector<std::string> names;
    for (const nlohmann::json& phase : phases) {
        names.push_back(phase["name"]);
        EXPECT_GT(phase["peakMegabytes"], 0.0);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"init", "metadata", "geometry", "T", "T [node]", "U"}));
    // 31 + 5 nodes with three components each, in doubles.
    EXPECT_DOUBLE_EQ(phases[5]["hostMegabytes"], 36 * 3 * 8 / 1e6);
}
