// SPDX-License-Identifier: MIT
#include "check/Check.h"
#include "check/CheckReport.h"
#include "host/ProgramRun.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>

namespace {

struct Seed
{
    const char* fault;
    const char* check; ///< that must find it, and the sample
    int code = 1;
};

// Every check is listed at least once.
const std::vector<Seed> SEEDS = {{"another version when loaded again", "load.twice"},
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
                                 {"foreign polyhedron node", "geometry.polyhedra@poly"},
                                 {"turned cell", "geometry.volumes@hex"},
                                 {"torn cell", "geometry.closed@hex"},
                                 {"lost patch face", "geometry.closed@hex"},
                                 {"foreign cell in a set", "geometry.sets@zones"},
                                 {"one value group more", "result.groups@zones"},
                                 {"lost value", "result.arrays@surface"},
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
    for (const Seed& seed : SEEDS) {
        const std::string options = " --timeout 2 --include '^" + std::string(seed.check) + "$'";
        const ProgramRun result = check(folder, seed.fault, options);
        EXPECT_EQ(result.code, seed.code) << seed.fault << "\n" << result.out << result.err;
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
