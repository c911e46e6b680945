// SPDX-License-Identifier: MIT
//
// Runs one target on all inputs of a folder, also where libFuzzer is not available.
#include "fuzz/FuzzHarness.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <iostream>

int main(int argc, char** argv)
{
    const FuzzTarget* const target = argc == 3 ? findTarget(argv[1]) : nullptr;
    if (target == nullptr) {
        std::cerr << "usage: fuzz_replay TARGET FOLDER\n";
        return 2;
    }
    std::size_t inputs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[2])) {
        // Flushed, so that the last line names the input that ends the program.
        std::cout << entry.path().filename().string() << std::endl;
        const std::string bytes = fileBytes(entry.path());
        target->run(FuzzInput(bytes));
        ++inputs;
    }
    return inputs == 0 ? 1 : 0;
}
