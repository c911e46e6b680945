// SPDX-License-Identifier: MIT
#include "support/LogCapture.h"
#include "support/OpenCase.h"

#include <gtest/gtest.h>

namespace {

/// Changes of the case, each a "+" or "-" and a time folder, and the notices of the next poll.
struct Step
{
    Texts changes;
    std::string notices;
};

const std::string ALL = "update 1001 Time 0.00000 #0, update 1002 Time 1.00000 #1, update 1003 Time 2.00000 #2";
const std::string TEN_LAST = "update 1001 Time 0.00000 #0, update 1002 Time 1.00000 #1, update 1003 Time 10.00000 #2";

/// Each begins with the times 0, 1 and 2, and without a mesh, so there are no groups.
const std::vector<std::vector<Step>> SEQUENCES = {
    // A state at the end is added. Compatibility (docs/compatibility.md, "announce all on the next poll").
    {{{}, ""},
     {{"+3"}, "add 1004 Time 3.00000 #3"},
     {{"+4"}, ALL + ", update 1004 Time 3.00000 #3"},
     {{}, "add 1005 Time 4.00000 #4"}},
    // A state in the middle shifts those after it.
    {{{"+0.5"}, "update 1002 Time 0.50000 #1, add 1004 Time 2.00000 #3"}},
    // Compatibility (docs/compatibility.md, "remove one more position").
    {{{"-1"}, "update 1001 Time 0.00000 #0, update 1002 Time 2.00000 #1, remove 2, remove 3"}},
    // Removal comes before addition.
    {{{"-0", "+5"},
      "update 1001 Time 1.00000 #0, update 1002 Time 2.00000 #1, remove 2, remove 3, add 1003 Time 5.00000 #2"}},
    // Compatibility (docs/compatibility.md, "the folder that is forgotten"): with state 2
    // the folder 10 is forgotten, so 2 is found missing and 10 is found new once more.
    {{{"+10"}, "add 1004 Time 10.00000 #3"},
     {{}, ALL + ", update 1004 Time 10.00000 #3"},
     {{"-2"}, TEN_LAST + ", remove 3, remove 4"},
     {{}, TEN_LAST},
     {{}, TEN_LAST + ", remove 3, update 1003 Time 10.00000 #2, add 1004 Time 10.00000 #3"}},
    // A folder that is not a time is remembered; once removed, every poll that looks finds it missing.
    {{{"+other"}, ""}, {{}, ALL}, {{}, ""}, {{"-other"}, ALL + ", remove 3"}, {{}, ALL}, {{}, ALL + ", remove 3"}},
};

TEST(Polling, ReportsChangesOfTheTimeFolders)
{
    for (const std::vector<Step>& sequence : SEQUENCES) {
        const TempFolder folder;
        writeControlDict(folder);
        for (const char* const time : {"0", "1", "2"}) {
            writePressure(folder, time);
        }
        OpenCase openCase(folder.path());
        openCase.metaData();
        for (const Step& step : sequence) {
            SCOPED_TRACE(joined(step.changes));
            for (const std::string& change : step.changes) {
                if (change[0] == '+') {
                    writePressure(folder, change.substr(1));
                } else {
                    std::filesystem::remove_all(folder / change.substr(1));
                }
            }
            EXPECT_EQ(openCase.poll(), step.notices);
        }
        // Results of new states have ids and links, too.
        EXPECT_EQ(openCase.result("PRESSURE_N", 1005) != nullptr, sequence.size() == 4);
    }
}

// A network disk may be gone for a moment, which does not mean that the states are gone.
TEST(Polling, KeepsTheStatesIfTheCaseFolderVanishes)
{
    const TempFolder folder;
    writeControlDict(folder);
    writePressure(folder, "0");
    OpenCase openCase(folder.path());
    openCase.metaData();
    const std::filesystem::path away = folder.path().string() + ".away";
    std::filesystem::rename(folder.path(), away);
    const LogCapture log;
    EXPECT_EQ(openCase.poll(), "");
    EXPECT_EQ(joined(log.errors()), "OFReader : Case folder " + folder.path().string() + " does not exist.");
    std::filesystem::rename(away, folder.path());
    writePressure(folder, "1");
    EXPECT_EQ(openCase.poll(), "add 1002 Time 1.00000 #1");
}

} // namespace
