// SPDX-License-Identifier: MIT
//
// The entry points of libFuzzer. OFP_FUZZ_TARGET in the environment names the target, so one program serves them all.
#include "DvnCore/Str.h"
#include "fuzz/FuzzHarness.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

const FuzzTarget* target = nullptr;

/// Moves the border of the first chunk to `place`, or shifts or removes the one that is there. More than one would only
/// cost time.
void moveBorder(std::size_t place, char shift, std::string* text)
{
    const std::size_t old = text->find(std::string{ESCAPE, 'P'});
    if (old != std::string::npos) {
        text->erase(old, 3);
    }
    if (old == std::string::npos || shift % 4 != 0) {
        const std::size_t spot = old != std::string::npos && shift % 2 != 0 ? old : place;
        text->insert(std::min(spot, text->size()), std::string{ESCAPE, 'P', shift});
    }
}

/// Replaces a number with a hostile one, moves line ends to the border of a chunk, or copies or drops a line.
void mutate(std::string* text, std::minstd_rand* random)
{
    // The last one is 4096 digits, which is longer than any number may be.
    static const std::vector<dvn::Str> HOSTILE =
        dvn::Str("0 -1 1 2147483646 2147483647 2147483648 4294967295 4294967296 255 256 1e400 nan -nan(1) 0x1p3 1e-400 "
                 "\x1b"
                 "D\x7f")
            .split(" ");
    const auto below = [random](std::size_t end) { return static_cast<std::size_t>((*random)()) % end; };
    const std::size_t place = below(text->size());
    const std::size_t lineStart = text->rfind('\n', place) + 1;
    const std::size_t lineEnd = std::min(text->find('\n', place), text->size() - 1) + 1;
    const std::string line = lineStart < lineEnd ? text->substr(lineStart, lineEnd - lineStart) : std::string();
    const std::size_t number = std::min(text->find_first_of("0123456789", place), text->size());
    const std::size_t digits = std::min(text->find_first_not_of("0123456789.+-e", number), text->size()) - number;
    const char any = static_cast<char>(below(256));
    const std::size_t choice = below(16);
    if (choice < 8) {
        text->replace(number, digits, choice < 6 ? HOSTILE[below(HOSTILE.size())].toUtf8() : std::to_string(below(12)));
    } else if (choice < 10) {
        moveBorder(below(3) == 0 ? place : lineStart, any, text);
    } else if (choice == 10) {
        text->insert(lineEnd, std::string{ESCAPE, 'R', static_cast<char>(below(90))});
    } else if (choice == 11) {
        text->insert(place, std::string{ESCAPE, 'O', any});
    } else if (choice < 14) {
        text->insert(lineStart, line);
    } else {
        text->erase(lineStart, line.size());
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    const char* const name = std::getenv("OFP_FUZZ_TARGET");
    target = findTarget(name == nullptr ? "" : name);
    for (const FuzzTarget& row : fuzzTargets()) {
        std::cout << (target == nullptr ? row.name + std::string("\n") : "");
    }
    if (target == nullptr) {
        std::exit(name == nullptr ? 0 : 2);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    target->run(FuzzInput({reinterpret_cast<const char*>(data), size}));
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned seed)
{
    std::minstd_rand random(seed);
    if (size == 0 || random() % 2 == 0) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    std::string text(reinterpret_cast<const char*>(data), size);
    mutate(&text, &random);
    return text.copy(reinterpret_cast<char*>(data), maxSize);
}
