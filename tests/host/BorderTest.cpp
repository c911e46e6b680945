// SPDX-License-Identifier: MIT
#include "border/EscapedText.h"
#include "border/HostLog.h"
#include "border/OpenedCase.h"
#include "commands/KnownTimes.h"
#include "support/CaseFiles.h"

#include <gtest/gtest.h>

namespace {

/// A provider with two settings.
HostProviderInfo describedProvider()
{
    HostProviderInfo provider;
    provider.addBoolOption(DDPString("FLAG"), DDPString("A flag"), true);
    provider.addStringOption(DDPString("TEXT"), DDPString("A text"), DDPString("default"));
    return provider;
}

/// The exit code and message of the error that ends a piece of work; good if there is none.
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

/// Gives the faulty library a fault during its own lifetime.
struct ScopedFault
{
    explicit ScopedFault(const char* name) { setenv("FAULT", name, 1); }
    ~ScopedFault() { unsetenv("FAULT"); }
};

} // namespace

TEST(HostOptions, AcceptBooleanFormsAndTheLastOfSeveralValues)
{
    const HostProviderInfo provider = describedProvider();
    for (const std::string text : {"on", "ON", "True", "yes", "1", "off", "Off", "false", "NO", "0"}) {
        const bool isOn = std::string("on ON True yes 1").find(text) != std::string::npos;
        EXPECT_EQ(HostOptions::parse({"FLAG=" + text}, provider).boolOption(DDPString("FLAG")), isOn) << text;
    }
    const HostOptions options = HostOptions::parse({"TEXT=a", "TEXT=U=V;p=q"}, provider);
    EXPECT_STREQ(options.stringOption(DDPString("TEXT"))->c_str(), "U=V;p=q");
    EXPECT_FALSE(options.hasOption(DDPString("FLAG"))) << "not given, so the provider's default applies";
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

TEST(OpenedCase, ReportsTheFaultOfABadLibrary)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    writePressure(folder, "1");
    const std::string broken = "the library delivered broken arrays: ";
    const std::pair<const char*, std::string> faults[] = {
        {"throws", "init threw: thrown on purpose"},
        {"reads a missing setting", "init: the boolean setting FLAG was read but not given"},
        {"reserved row", "getMetaData: a reserved row of DDPMetaData was called"},
        {"lost group", broken + "geometry: 2 element groups for 3 declared groups"},
        {"node out of range", broken + "default_region: connectivity out of range"},
        {"group made on a worker", "getGeometry: addNodeGroup was called on a worker thread"},
        {"lost value", broken + "default_region: 1 values of result Pressure for 2 items"}};
    PluginLibrary library(FAULTY_PLUGIN);
    for (const auto& [name, message] : faults) {
        const ScopedFault fault(name);
        const auto outcome = outcomeOf([&] {
            const HostOptions options;
            OpenedCase opened(library, folder.path(), options);
            opened.geometry();
            (void)opened.result(opened.metaData().results[0], 1);
        });
        EXPECT_EQ(outcome.second, message);
    }
}

// A patch may be named so that it clears the screen or hides the lines before it.
TEST(EscapedText, LeavesNoCommandToTheTerminal)
{
    EXPECT_EQ(escapedControls("\033[2Jwall\r\n\t\x7f"), "\\x1b[2Jwall\\r\\n\\t\\x7f");
    EXPECT_EQ(escapedControls("\xC2\x9B"
                              "2J \x9B"
                              "2J"),
              "\\xc2\\x9b2J \\x9b2J")
        << "the forms of 8 bits";
    EXPECT_EQ(escapedControls("d\xC3\xA9"
                              "bit \xE2\x82\xAC \xC3"),
              "d\xC3\xA9"
              "bit \xE2\x82\xAC \\xc3");
    EXPECT_EQ(escapedLines("a\n\033b"), "a\n\\x1bb");
}

// The library tells a cause at each use of a file.
TEST(HostLog, TellsEachErrorOnceWithItsCount)
{
    HostLog::get().setShownLevel(LOG_ERROR);
    for (const char* const text : {"first", "second", "first"}) {
        HostLog::receive(LOG_ERROR, text);
    }
    EXPECT_EQ(HostLog::pendingText(), "error: first\nerror: second\n");
    testing::internal::CaptureStderr();
    HostLog::get().showErrors();
    HostLog::get().showErrors();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: first (2 times)\nerror: second\n");
    EXPECT_EQ(HostLog::pendingText(), "");
}

// Notices name the states that moved in the list, not the change: these are those of a real run.
TEST(KnownTimes, TellsEachChangeOnce)
{
    using Kind = HostNotice::Kind;
    KnownTimes times({{1, "", 0}, {2, "", 0.5}, {3, "", 1}});
    EXPECT_EQ(times.apply({{Kind::Add, 1004, "", 1.5}}), "+ 1.5\n");
    const std::vector<HostNotice> all = {{Kind::Update, 1001, "", 0},
                                         {Kind::Update, 1002, "", 0.5},
                                         {Kind::Update, 1003, "", 1},
                                         {Kind::Update, 1004, "", 1.5}};
    EXPECT_EQ(times.apply(all), "") << "the poll after a change announces every state";
    EXPECT_EQ(times.apply({{Kind::Update, 1002, "", 0.25}, {Kind::Add, 1005, "", 1.5}}), "+ 0.25\n") << "in the middle";
    EXPECT_EQ(times.apply({{Kind::Update, 1001, "", 0},
                           {Kind::Update, 1002, "", 0.25},
                           {Kind::Update, 1003, "", 1},
                           {Kind::Update, 1004, "", 1.5},
                           {Kind::Remove, 4, "", 0},
                           {Kind::Remove, 5, "", 0},
                           {Kind::Add, 1005, "", 2}}),
              "+ 2\n- 0.5\n");
}
