// SPDX-License-Identifier: MIT
#include "provider/OpenCase.h"

#include <gtest/gtest.h>

namespace {

class Polling : public testing::Test
{
protected:
    Polling()
    {
        writeControlDict(m_folder);
        for (const char* const time : {"0", "1", "2"}) {
            add(time);
        }
        m_case = std::make_unique<OpenCase>(m_folder.path());
        m_case->metaData();
    }

    void add(const std::string& time) { m_folder.write(time + "/p", fieldFile("volScalarField", "p", "uniform 0")); }

    void remove(const std::string& time) { std::filesystem::remove_all(m_folder.path() / time); }

    TempFolder m_folder;
    std::unique_ptr<OpenCase> m_case;
};

TEST_F(Polling, AddsAStateAtTheEndAndTellsAllAtTheNextPoll)
{
    EXPECT_EQ(m_case->poll(), "");
    add("3");
    EXPECT_EQ(m_case->poll(), "add 1004 Time 3.00000 #3");
    add("4");
    EXPECT_EQ(m_case->poll(), "update 1001 Time 0.00000 #0, update 1002 Time 1.00000 #1, update 1003 Time 2.00000 #2, "
                              "update 1004 Time 3.00000 #3");
    EXPECT_EQ(m_case->poll(), "add 1005 Time 4.00000 #4");
    // The results of new states have ids and links. Without a mesh there is no group.
    const std::unique_ptr<HostResult> result = m_case->result("PRESSURE_N", 1005);
    ASSERT_NE(result, nullptr);
    EXPECT_TRUE(result->groups.empty());
}

TEST_F(Polling, PushesTheTailBackWhenAStateComesInBetween)
{
    add("0.5");
    EXPECT_EQ(m_case->poll(), "update 1002 Time 0.50000 #1, add 1004 Time 2.00000 #3");
}

TEST_F(Polling, TellsThoseLeftAndThenPositionsWhenAStateGoes)
{
    remove("1");
    EXPECT_EQ(m_case->poll(), "update 1001 Time 0.00000 #0, update 1002 Time 2.00000 #1, remove 2, remove 3");
}

TEST_F(Polling, HandlesRemovalBeforeAdditionInOnePoll)
{
    remove("0");
    add("5");
    EXPECT_EQ(m_case->poll(), "update 1001 Time 1.00000 #0, update 1002 Time 2.00000 #1, remove 2, remove 3, "
                              "add 1003 Time 5.00000 #2");
}

// A folder that is no time folder is known from then on; when it goes it is found gone at each poll that looks.
TEST_F(Polling, SkipsFoldersThatAreNoTimes)
{
    const std::string all = "update 1001 Time 0.00000 #0, update 1002 Time 1.00000 #1, update 1003 Time 2.00000 #2";
    add("other");
    EXPECT_EQ(m_case->poll(), "");
    EXPECT_EQ(m_case->poll(), all);
    EXPECT_EQ(m_case->poll(), "");
    remove("other");
    EXPECT_EQ(m_case->poll(), all + ", remove 3");
    EXPECT_EQ(m_case->poll(), all);
    EXPECT_EQ(m_case->poll(), all + ", remove 3");
}

} // namespace
