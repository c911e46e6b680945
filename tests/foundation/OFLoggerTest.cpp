// SPDX-License-Identifier: MIT
#include "foamfile/OFLogger.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

TEST(OFLogger, EachOperationHasItsLevelAndJoinsGroupAndMessage)
{
    OFLogger& logger = OFLogger::get();
    logger.init(nullptr);
    EXPECT_FALSE(logger.logError("Nobody", "hears this"));
    const LogCapture log;
    EXPECT_FALSE(logger.logError("OFFile", "a"));
    logger.logInfo("OFFile", "b");
    logger.logDebug("", "w\xc3\xa4nde");
    logger.logDeveloper("Group", "");
    EXPECT_EQ(log.lines(),
              (std::vector<LogLine>{{1, "OFFile : a"}, {3, "OFFile : b"}, {4, " : w??nde"}, {4, "Group : "}}));
}

TEST(OFLogger, TrackingIsSilent)
{
    const LogCapture log;
    OFLogger::get().track("label", 1.0);
    OFLogger::get().printTrackedData();
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
}

TEST(OFLogger, ALaterCallbackTakesOver)
{
    const LogCapture outer;
    {
        const LogCapture inner;
        OFLogger::get().logInfo("a", "1");
        EXPECT_EQ(inner.lines().size(), 1U);
    }
    OFLogger::get().logInfo("a", "2");
    EXPECT_EQ(outer.lines(), (std::vector<LogLine>{{3, "a : 2"}}));
}

TEST(OFLogger, ManyThreadsMayLogAtOnce)
{
    const LogCapture log;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 100; ++i) {
                OFLogger::get().logInfo("thread", dvn::Str("%1").arg(i));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::vector<std::string> texts = log.infos();
    std::sort(texts.begin(), texts.end());
    ASSERT_EQ(texts.size(), 400U);
    EXPECT_EQ(texts.front(), "thread : 0");
    EXPECT_EQ(texts[3], "thread : 0");
    EXPECT_EQ(texts[4], "thread : 1");
}
