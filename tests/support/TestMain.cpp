// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <stdexcept>

namespace {

/// The exit code that ctest counts as "skipped".
constexpr int SKIPPED = 77;

/// Sets a locale as hosts do, for the C library and for new streams; false if the machine lacks it.
bool useLocale(const char* name)
{
    if (std::setlocale(LC_ALL, name) == nullptr) {
        return false;
    }
    try {
        std::locale::global(std::locale(name));
    } catch (const std::runtime_error&) {
        return false;
    }
    return true;
}

} // namespace

/// Runs the tests, in the locale and with the number of threads that the environment names.
int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const char* const name = std::getenv("OFP_TEST_LOCALE");
    if (name != nullptr && !useLocale(name)) {
        static_cast<void>(std::printf("skipped: this machine has no locale %s\n", name));
        return SKIPPED;
    }
    const char* const threads = std::getenv("OFP_TEST_THREADS");
    if (threads == nullptr) {
        return RUN_ALL_TESTS();
    }
    // More workers than cores, so that they run in every order.
    const int count = std::atoi(threads);
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, static_cast<std::size_t>(count));
    return tbb::task_arena(count).execute([] { return RUN_ALL_TESTS(); });
}
