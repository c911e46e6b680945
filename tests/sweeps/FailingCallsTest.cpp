// SPDX-License-Identifier: MIT
#include "sweeps/FailingCalls.h"
#include "support/LogCapture.h"
#include "support/OpenCase.h"
#include "sweeps/UseCase.h"

#include <gtest/gtest.h>
#include <tbb/global_control.h>

#include <optional>
#include <stdexcept>
#include <utility>

namespace {

/// A case of two cubes, some of its files compressed, with fields on cells and points.
class FailingCalls : public testing::TestWithParam<int>
{
protected:
    FailingCalls()
    {
        writeControlDict(folder);
        writeTwoCubes(folder);
        folder.writeGz("constant/polyMesh/points.gz", fileBytes(folder / "constant/polyMesh/points"));
        std::filesystem::remove(folder / "constant/polyMesh/points");
        writePressure(folder, "0", "uniform 4");
        writePressure(folder, "1");
        folder.write("1/pointU", fieldFile("pointVectorField", "pointU", "uniform (1 2 3)"));
        usual = useCase(folder.path());
    }

    /// Uses the case while call number `which` fails; false if there was no such call. Only known exceptions may come.
    bool useWithFailure(std::size_t which)
    {
        const FailingCallScope scope(static_cast<FailingCall>(GetParam()), which);
        try {
            // Deliveries are checked inside; they may also be missing.
            static_cast<void>(useCase(folder.path()));
        } catch (const std::bad_alloc&) {
        } catch (const std::length_error&) {
        } catch (const std::invalid_argument&) {
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "map::at:  key not found");
        }
        return scope.hasFailed();
    }

    TempFolder folder;
    std::optional<std::string> usual;
};

TEST_P(FailingCalls, NeitherCrashNorSpoilTheNextOpening)
{
    ASSERT_TRUE(usual.has_value());
    const tbb::global_control oneThread(tbb::global_control::max_allowed_parallelism, 1);
    std::size_t which = 0;
    while (useWithFailure(which)) {
        ++which;
        // Not every time: it takes as long as the failing run.
        if (which % 32 == 1) {
            ASSERT_EQ(useCase(folder.path()), usual) << "after call " << which;
        }
    }
    // An empty sweep would prove nothing: every run looks up names and opens files several times.
    EXPECT_GT(which, 4U);
    RecordProperty("calls", static_cast<int>(which));
    EXPECT_EQ(useCase(folder.path()), usual);
}

TEST_P(FailingCalls, MayFailOnAnyThread)
{
    ASSERT_TRUE(usual.has_value());
    const tbb::global_control threads(tbb::global_control::max_allowed_parallelism, 8);
    std::size_t which = 0;
    while (useWithFailure(which)) {
        which += 13;
    }
    EXPECT_EQ(useCase(folder.path()), usual);
}

#ifdef HAS_FAILING_ALLOCATIONS
constexpr int FIRST_KIND = 0;
#else
constexpr int FIRST_KIND = static_cast<int>(FailingCall::Allocation) + 1;
#endif

INSTANTIATE_TEST_SUITE_P(Calls, FailingCalls, testing::Range(FIRST_KIND, FAILING_CALL_KINDS));

// With too many open files or an unresponsive disk, a folder only looks empty.
TEST(UnlistedFolder, IsReportedAndChangesNothing)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    writePressure(folder, "0");
    OpenCase openCase(folder.path());
    openCase.metaData();
    writePressure(folder, "1");
    const std::string line = "OFUtilities : Cannot list folder " + folder.path().string();
    LogCapture log;
    for (const auto& [call, which] :
         {std::pair(FailingCall::OpenFolder, 0U), {FailingCall::ReadFolder, 0U}, {FailingCall::ReadFolder, 3U}}) {
        log.clear();
        const FailingCallScope scope(call, which);
        EXPECT_EQ(openCase.poll(), "");
        EXPECT_TRUE(scope.hasFailed());
        EXPECT_EQ(joined(log.errors()), line);
    }
    log.clear();
    {
        OpenFoamProvider provider;
        const FailingCallScope scope(FailingCall::OpenFolder, 0);
        EXPECT_EQ(provider.init(DDPString((folder / "case.foam").c_str()), HostOptions(), nullptr), 0);
        EXPECT_EQ(joined(log.errors()), line);
    }
    EXPECT_EQ(openCase.poll(), "add 1002 Time 1.00000 #1");
}

/// Folders listed while a case of this many processor folders, each with one time, is opened.
std::size_t listingsOfOpening(int processorCount)
{
    const TempFolder folder;
    writeControlDict(folder);
    for (int i = 0; i < processorCount; ++i) {
        const std::string processor = "processor" + std::to_string(i);
        std::filesystem::create_directories(folder / (processor + "/constant/polyMesh"));
        std::filesystem::create_directories(folder / (processor + "/0"));
    }
    const FailingCallScope count(FailingCall::OpenFolder, 1000000);
    const OpenCase openCase(folder.path());
    return count.callCount();
}

// Each processor folder might also be a time folder, in which every part could have files.
TEST(FolderListings, GrowLinearlyWithTheNumberOfProcessors)
{
    const std::size_t few = listingsOfOpening(10);
    EXPECT_GE(few, 10U);
    EXPECT_LE(listingsOfOpening(40), 4 * few);
}

// A case may have thousands of fields; listing all of them to find one would be slow.
TEST(FolderListings, AreNotNeededToFindAField)
{
    const TempFolder folder;
    writeControlDict(folder);
    writeTwoCubes(folder);
    writePressure(folder, "0");
    folder.writeGz("1/p.gz", fieldFile("volScalarField", "p", "uniform 5"));
    OpenCase openCase(folder.path());
    openCase.geometry();
    const FailingCallScope count(FailingCall::OpenFolder, 1000000);
    EXPECT_EQ(openCase.values("PRESSURE_E", 1).at(0), (std::vector<double>{1, 3}));
    EXPECT_EQ(openCase.values("PRESSURE_E", 2).at(0), (std::vector<double>{5, 5}));
    EXPECT_EQ(count.callCount(), 0U);
}

} // namespace
