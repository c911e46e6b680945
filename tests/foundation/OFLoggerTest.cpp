// SPDX-License-Identifier: MIT
#include "foamfile/OFLogger.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

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
    OFLogger::get().track("silent", 1.0);
    OFLogger::get().printTrackedData();
    EXPECT_EQ(log.lines(),
              (std::vector<LogLine>{{1, "OFFile : a"}, {3, "OFFile : b"}, {4, " : w??nde"}, {4, "Group : "}}));
}

TEST(OFLogger, ExcerptsKeepLinesShort)
{
    const std::string texts[] = {std::string(200, 'a') + "%2 100% %1", "%2%2%2%2%2%2%2", std::string(500, 'b')};
    EXPECT_EQ(excerpt(texts[0]), texts[0]);
    EXPECT_EQ(dvn::Str("%1").arg(excerpt(texts[1])).arg(excerpt(texts[2])).size(), 4U * 256U);
}
