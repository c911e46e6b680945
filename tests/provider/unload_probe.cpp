// SPDX-License-Identifier: MIT
// A host that does not link TBB itself: once it closes the plug-in, nothing keeps TBB loaded, but its threads go on.
// It opens a case, reads the geometry, closes the library and stays alive for a moment, several times. It fails by
// crashing. The arguments are the plug-in and the case.
#include "border/HostOptions.h"
#include "border/OpenedCase.h"
#include "border/PluginLibrary.h"

#include <chrono>
#include <thread>

int main(int /*argc*/, char** argv)
{
    for (int round = 0; round < 5; ++round) {
        {
            PluginLibrary library(argv[1]);
            const HostOptions options;
            OpenedCase opened(library, argv[2], options);
            if (opened.geometry().elementGroups.empty()) {
                return 1;
            }
        }
        // Long enough for idle threads to look for work; in unmapped code they would crash then.
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
    }
    return 0;
}
