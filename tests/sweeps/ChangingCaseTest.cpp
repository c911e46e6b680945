// SPDX-License-Identifier: MIT
#include "border/DeliveryCheck.h"
#include "support/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <memory>
#include <random>
#include <stdexcept>

#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// Writes the case as it is without tampering.
void writeWholeCase(const TempFolder& folder)
{
    writeControlDict(folder);
    writeTwoCubes(folder);
    for (const char* const time : {"0", "1", "2", "3"}) {
        writePressure(folder, time);
    }
}

/// Truncates, rewrites, renames and removes files and time folders, forever.
///
/// The times sort alike as text and as numbers. Otherwise the wrong folder would be forgotten along with a state.
[[noreturn]] void tamper(const TempFolder& folder)
{
    std::mt19937 random(5);
    const Texts times = {"0", "0.5", "1", "2", "3", "4"};
    const Texts files = {"constant/polyMesh/points",   "constant/polyMesh/faces",     "constant/polyMesh/owner",
                         "constant/polyMesh/boundary", "constant/polyMesh/cellZones", "constant/polyMesh/faceZones"};
    for (;;) {
        std::error_code ignored;
        const fs::path time = folder / times[random() % times.size()];
        const fs::path file = random() % 2 == 0 ? folder / files[random() % files.size()] : time / "p";
        switch (random() % 6) {
        case 0:
            fs::resize_file(file, random() % 900, ignored);
            break;
        case 1:
            fs::rename(file, file.string() + ".old", ignored);
            break;
        case 2:
            fs::remove_all(time, ignored);
            break;
        case 3:
            fs::rename(time, folder / times[random() % times.size()], ignored);
            break;
        case 4:
            fs::create_directories(time, ignored);
            break;
        default:
            // Written in place, as solvers do, so a reader may see part of a file.
            try {
                writeWholeCase(folder);
            } catch (const std::exception&) {
                // A folder disappeared meanwhile.
            }
        }
    }
}

/// Whatever the files hold, a delivery must be consistent.
void readAll(OpenFoamProvider& provider, const HostMetaData& metaData, int stateId)
{
    HostGeometry geometry;
    if (provider.getGeometry(HostGeometrySpec(), &geometry)) {
        checkGeometry(metaData, geometry);
    }
    for (const HostResultInfo& info : metaData.results) {
        HostResult result;
        if (provider.getResult(HostResultSpec(info.id, stateId), &result)) {
            checkResult(metaData, geometry, info, result);
        }
    }
}

/// The names of all states for a host that trusts only the last full list of updates.
Texts statesAfterTheNextChange(OpenFoamProvider& provider, const TempFolder& folder)
{
    HostNotifications settling;
    provider.pollForChanges(&settling);
    provider.pollForChanges(&settling);
    writePressure(folder, "999");
    Texts names;
    for (int poll = 0; poll < 4 && std::ranges::find(names, "Time 999.00000 #4") == names.end(); ++poll) {
        HostNotifications notifications;
        provider.pollForChanges(&notifications);
        const bool isFullList = std::ranges::all_of(
            notifications.notices, [](const HostNotice& notice) { return notice.kind == HostNotice::Kind::Update; });
        if (isFullList) {
            names.clear();
            std::ranges::transform(notifications.notices, std::back_inserter(names), &HostNotice::name);
        }
    }
    return names;
}

} // namespace

TEST(ChangingCase, CanBeReadAndPolledWhileFilesComeAndGo)
{
    const TempFolder folder;
    writeWholeCase(folder);
    // Fork before TBB starts threads, which the child would lack.
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        tamper(folder);
    }
    OpenFoamProvider watching;
    auto metaData = std::make_unique<HostMetaData>();
    int rounds = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (std::chrono::steady_clock::now() < end) {
        try {
            if (metaData->states.empty() || rounds % 50 == 0) {
                watching.close();
                metaData = std::make_unique<HostMetaData>();
                if (watching.init(DDPString((folder / "case.foam").c_str()), HostOptions(), nullptr) == 0 ||
                    !watching.getMetaData(metaData.get())) {
                    continue;
                }
            }
            readAll(watching, *metaData, 1 + rounds % 4);
            HostNotifications notifications;
            watching.pollForChanges(&notifications);
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "map::at:  key not found");
        } catch (const std::invalid_argument&) {
            // The missing count of a list on one line.
        }
        ++rounds;
    }
    kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_GT(rounds, 50);
    for (const char* const time : {"0", "0.5", "1", "2", "3", "4"}) {
        fs::remove_all(folder / time);
    }
    writeWholeCase(folder);
    const Texts announced = statesAfterTheNextChange(watching, folder);
    OpenCase fresh(folder.path());
    Texts names;
    std::ranges::transform(fresh.metaData().states, std::back_inserter(names), &HostState::name);
    EXPECT_EQ(joined(announced), joined(names));
}
