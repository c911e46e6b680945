// SPDX-License-Identifier: MIT
#include "border/CaseSession.h"
#include "border/HostLog.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

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
    for (const std::string text : {"on", "ON", "True", "yes", "1", "off", "Off", "false", "NO", "0"}) {
        const bool isOn = std::string("on ON True yes 1").find(text) != std::string::npos;
        EXPECT_EQ(HostOptions::parse({"FLAG=" + text}, provider).boolOption(DDPString("FLAG")), isOn) << text;
    }
    const HostOptions options = HostOptions::parse({"TEXT=a", "TEXT=U=V;p=q"}, provider);
    EXPECT_STREQ(options.stringOption(DDPString("TEXT"))->c_str(), "U=V;p=q");
    EXPECT_FALSE(options.hasOption(DDPString("FLAG"))) << "not given, so the provider's default has to stand";
    const std::pair<const char*, const char*> mistakes[] = {{"FLAG", "--set: 'FLAG' is not of the form KEY=VALUE"},
                                                            {"FLAG=2", "--set: FLAG is on or off, not '2'"},
                                                            {"flag=on",
                                                             "--set: unknown key 'flag'; the provider knows:\n"
                                                             "  FLAG                      A flag [on]\n"
                                                             "  TEXT                      A text [default]"}};
    for (const auto& [text, message] : mistakes) {
        EXPECT_EQ(outcomeOf([&provider, text = text] { HostOptions::parse({text}, provider); }),
                  std::pair(ExitCode::Usage, std::string(message)));
    }
}

TEST(PluginLibrary, RunsTheWholeStartOfTheInterface)
{
    HostLog::get().clear();
    const PluginLibrary library(FAKE_PLUGIN);
    EXPECT_EQ(library.providerName(), "Fake");
    EXPECT_EQ(library.pluginInfo(), (std::vector<std::pair<std::string, std::string>>{{"name", "FakePlugin"}}));
    EXPECT_EQ(library.providerInfo().fileMask, "case.foam");
    EXPECT_EQ(library.providerInfo().settings.size(), 2U);
    EXPECT_EQ(HostLog::get().lines().size(), 3U);

    const PluginLibrary refused(FAKE_PLUGIN, PluginLibrary::Registration::Refuse);
    EXPECT_FALSE(refused.hasExitFunction());
    setenv("FAKE_PLUGIN_VERSION", "6", 1);
    const auto outcome = outcomeOf([] { const PluginLibrary other(FAKE_PLUGIN); });
    unsetenv("FAKE_PLUGIN_VERSION");
    EXPECT_EQ(outcome, std::pair(ExitCode::LibraryRefused,
                                 std::string("the library speaks version 6 of the interface, this host version 7")));
}

TEST(CaseSession, NamesTheFaultOfABadLibrary)
{
    const std::string broken = "the library delivered broken arrays: ";
    const std::pair<const char*, std::string> faults[] = {
        {"throws", "init let an exception out: thrown on purpose"},
        {"unasked-option", "init: the boolean setting FLAG was read but not given"},
        {"reserved-row", "getMetaData: a reserved row of DDPMetaData was called"},
        {"missing-group", broken + "geometry: 0 element groups for 1 declared groups"},
        {"bad-connectivity", broken + "body: connectivity out of range"},
        {"group-on-worker", "getGeometry: addNodeGroup was called on a worker thread"},
        {"short-values", broken + "body: 4 values of result T for 5 items"}};
    for (const auto& [behaviour, fault] : faults) {
        const auto outcome = outcomeOf([behaviour = behaviour] {
            FakeCase fake(behaviour);
            fake.session.geometry();
            (void)fake.session.result(fake.session.metaData().results[0], 7);
        });
        EXPECT_EQ(outcome.second, fault);
    }
}
