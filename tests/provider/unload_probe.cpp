// SPDX-License-Identifier: MIT
// A host that does not link TBB itself: when it closes the plug-in, nothing else would hold TBB, whose threads run on.
// It opens a case, draws it, closes the library and lives on for a moment, several times. A crash is the failure. The
// arguments are the plug-in and the case.
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
        // Long enough for idle threads to look for work, which is when they would run into unmapped code.
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
    }
    return 0;
}
