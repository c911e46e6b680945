// SPDX-License-Identifier: MIT
#include "sweeps/FailingCalls.h"
#include "support/OpenCase.h"
#include "sweeps/UseCase.h"

#include <gtest/gtest.h>
#include <tbb/global_control.h>

#include <optional>
#include <stdexcept>

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

} // namespace
