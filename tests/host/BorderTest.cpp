// SPDX-License-Identifier: MIT
#include "TempFolder.h"
#include "border/CaseSession.h"
#include "border/HostLog.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

/// The provider's description as the fake plug-in gives it, without loading that.
HostProviderInfo describedProvider()
{
    HostProviderInfo provider;
    provider.addBoolOption(DDPString("FLAG"), DDPString("A flag"), true);
    provider.addStringOption(DDPString("TEXT"), DDPString("A text"), DDPString("default"));
    return provider;
}

/// The code and message with which a piece of work ends; good if it ends without.
template <typename Work>
std::pair<ExitCode, std::string> outcomeOf(Work work)
{
    try {
        work();
        return {ExitCode::Good, ""};
    } catch (const HostError& error) {
        return {error.code(), error.what()};
    }
}

/// An open case of the fake plug-in. The name of the folder says how it behaves.
struct FakeCase
{
    explicit FakeCase(const std::string& behaviour)
        : library(FAKE_PLUGIN), session(library, "/nowhere/" + behaviour + "/case.foam", options)
    {}

    PluginLibrary library;
    HostOptions options;
    CaseSession session;
};

} // namespace

TEST(HostOptions, TakeTheFormsOfABooleanAndTheLastOfSeveralValues)
{
    const HostProviderInfo provider = describedProvider();
    const auto flag = [&](const std::string& text) {
        return HostOptions::parse({"FLAG=" + text}, provider).boolOption(DDPString("FLAG"));
    };
    for (const char* const text : {"on", "ON", "True", "yes", "1"}) {
        EXPECT_TRUE(flag(text)) << text;
    }
    for (const char* const text : {"off", "Off", "false", "NO", "0"}) {
        EXPECT_FALSE(flag(text)) << text;
    }
    const HostOptions options = HostOptions::parse({"TEXT=a", "TEXT=U=V;p=q"}, provider);
    EXPECT_STREQ(options.stringOption(DDPString("TEXT"))->c_str(), "U=V;p=q");
    EXPECT_TRUE(options.hasOption(DDPString("TEXT")));
    EXPECT_FALSE(options.hasOption(DDPString("FLAG"))) << "not given, so the provider's default has to stand";
}

TEST(HostOptions, NameWhatIsWrong)
{
    const HostProviderInfo provider = describedProvider();
    const auto outcome = [&](const std::string& text) {
        return outcomeOf([&] { HostOptions::parse({text}, provider); });
    };
    using Outcome = std::pair<ExitCode, std::string>;
    EXPECT_EQ(outcome("FLAG"), Outcome(ExitCode::Usage, "--set: 'FLAG' is not of the form KEY=VALUE"));
    EXPECT_EQ(outcome("FLAG=2"), Outcome(ExitCode::Usage, "--set: FLAG is on or off, not '2'"));
    EXPECT_EQ(outcome("flag=on"), Outcome(ExitCode::Usage, "--set: unknown key 'flag'; the provider knows:\n"
                                                           "  FLAG                      A flag [on]\n"
                                                           "  TEXT                      A text [default]"));
}

TEST(PluginLibrary, RunsTheWholeStartOfTheInterface)
{
    HostLog::get().clear();
    const PluginLibrary library(FAKE_PLUGIN);
    EXPECT_EQ(library.providerName(), "Fake");
    EXPECT_EQ(library.apiVersion(), DDP_API_VERSION_MAJOR);
    EXPECT_EQ(library.pluginInfo(), (std::vector<std::pair<std::string, std::string>>{{"name", "FakePlugin"}}));
    EXPECT_EQ(library.providerInfo().fileMask, "case.foam");
    EXPECT_EQ(library.providerInfo().settings.size(), 2U);
    std::vector<std::int32_t> levels;
    for (const HostLogLine& line : HostLog::get().lines()) {
        levels.push_back(line.level);
    }
    EXPECT_EQ(levels, (std::vector<std::int32_t>{LOG_ERROR, LOG_INFO, LOG_DEBUG}));
}

TEST(PluginLibrary, TellsARefusalFromAnotherVersion)
{
    const PluginLibrary refused(FAKE_PLUGIN, PluginLibrary::Registration::Refuse);
    EXPECT_FALSE(refused.hasExitFunction());

    setenv("FAKE_PLUGIN_VERSION", "6", 1);
    const auto outcome = outcomeOf([] { const PluginLibrary library(FAKE_PLUGIN); });
    unsetenv("FAKE_PLUGIN_VERSION");
    EXPECT_EQ(outcome.first, ExitCode::LibraryRefused);
    EXPECT_EQ(outcome.second, "the library speaks version 6 of the interface, this host version 7");
}

TEST(CaseSession, CompletesFoldersAndMakesPathsAbsolute)
{
    const TempFolder folder;
    EXPECT_EQ(CaseSession::tokenFile(folder / ""), folder / "case.foam");
    EXPECT_EQ(CaseSession::tokenFile(folder / "x/../case.foam"), folder / "case.foam");
    EXPECT_EQ(CaseSession::tokenFile(folder / "absent/case.foam"), folder / "absent/case.foam");
    EXPECT_TRUE(CaseSession::tokenFile("case.foam").is_absolute());
}

TEST(CaseSession, RecordsWhatTheLibraryDeliversAndOnWhichThread)
{
    FakeCase fake("sound");
    const HostGeometry& geometry = fake.session.geometry();
    ASSERT_EQ(geometry.elementGroups.size(), 3U);
    const HostElementGroup& body = geometry.elementGroups[0];
    EXPECT_EQ(body.calls.operations,
              (std::vector<std::string>{"setMixedElements", "setPolyhedra", "setElementPartIds"}));
    EXPECT_EQ(body.partIds, (std::vector<std::int32_t>{2, 2, 1, 1, 1}));
    EXPECT_NE(body.calls.threads.front(), std::this_thread::get_id()) << "the fake fills this group on a worker";
    EXPECT_EQ(geometry.elementGroups[1].calls.threads.front(), std::this_thread::get_id());
    EXPECT_EQ(geometry.nodesOf(body)->nodeCount(), 31U);
    EXPECT_EQ(&geometry, &fake.session.geometry()) << "asked for once";
}

TEST(CaseSession, SortsTheDeclaredGroupsByKind)
{
    FakeCase fake("sound");
    std::vector<HostGroupKind> kinds;
    for (const HostGroup& group : fake.session.metaData().groups) {
        kinds.push_back(group.kind());
    }
    using enum HostGroupKind;
    EXPECT_EQ(kinds, (std::vector<HostGroupKind>{Part, CellZone, Boundary, FaceZone}));
    EXPECT_EQ(fake.session.metaData().geometryGroups().size(), 3U) << "a cell zone has no elements of its own";
}

TEST(CaseSession, NamesTheFaultOfABadLibrary)
{
    const auto faultOf = [](const std::string& behaviour) {
        return outcomeOf([&] { FakeCase(behaviour).session.geometry(); }).second;
    };
    EXPECT_EQ(faultOf("throws"), "init let an exception out: thrown on purpose");
    EXPECT_EQ(faultOf("unasked-option"), "init: the boolean setting FLAG was read but not given");
    EXPECT_EQ(faultOf("reserved-row"), "getMetaData: a reserved row of DDPMetaData was called");
    EXPECT_EQ(faultOf("missing-group"),
              "the library delivered broken arrays: geometry: 2 element groups for 3 declared groups");
    EXPECT_EQ(faultOf("bad-connectivity"), "the library delivered broken arrays: body: connectivity out of range");
    EXPECT_EQ(faultOf("group-on-worker"), "getGeometry: addNodeGroup was called on a worker thread");
    FakeCase shortValues("short-values");
    const auto result =
        outcomeOf([&] { (void)shortValues.session.result(shortValues.session.metaData().results[0], 3); });
    EXPECT_EQ(result.second, "the library delivered broken arrays: body: 4 values of result T for 5 items");
}

// Log lines come from the library's worker threads, several at a time.
TEST(HostLog, LosesNoLineOfConcurrentThreads)
{
    HostLog::get().clear();
    HostLog::get().setShownLevel(0);
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([] {
            for (int i = 0; i < 1000; ++i) {
                HostLog::receive(LOG_ERROR, "a line");
            }
        });
    }
    std::ranges::for_each(threads, &std::thread::join);
    HostLog::get().setShownLevel(LOG_ERROR);
    EXPECT_EQ(HostLog::get().lines().size(), 4000U);
}
