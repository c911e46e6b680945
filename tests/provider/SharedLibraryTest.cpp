// SPDX-License-Identifier: MIT
#include "border/CaseSession.h"
#include "border/PluginLibrary.h"
#include "provider/OpenCase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>
#include <sstream>

#include <dlfcn.h>

namespace {

bool isLoaded()
{
    void* const handle = dlopen(PLUGIN_FILE, RTLD_NOLOAD | RTLD_NOW);
    if (handle != nullptr) {
        dlclose(handle);
    }
    return handle != nullptr;
}

std::string outputOf(const std::string& command)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    std::array<char, 256> piece;
    while (pipe != nullptr && std::fgets(piece.data(), static_cast<int>(piece.size()), pipe.get()) != nullptr) {
        text += piece.data();
    }
    return text;
}

// Twice, since what the first load leaves behind in the process shows at the second.
TEST(SharedLibrary, IsLoadedUsedUnloadedAndLoadedAgain)
{
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        {
            PluginLibrary library(PLUGIN_FILE);
            EXPECT_EQ(library.providerName(), "OpenFoamProvider");
            EXPECT_EQ(library.apiVersion(), 7);
            const HostOptions options;
            CaseSession session(library, dataCase("zones"), options);
            EXPECT_EQ(session.geometry().elementGroups.size(), 4U);
            const HostMetaData& description = session.metaData();
            ASSERT_EQ(description.results.size(), 6U);
            for (const HostResultInfo& info : description.results) {
                EXPECT_NE(session.result(info, description.states.back().id), nullptr) << info.name;
            }
        }
        EXPECT_FALSE(isLoaded());
    }
    EXPECT_EQ(BorderFaults::get().take(), std::vector<std::string>());
}

TEST(SharedLibrary, GivesNoExitFunctionToAHostThatRefuses)
{
    const PluginLibrary library(PLUGIN_FILE, PluginLibrary::Registration::Refuse);
    EXPECT_FALSE(library.hasExitFunction());
    EXPECT_EQ(library.pluginInfo().size(), 3U);
}

TEST(SharedLibrary, ExportsItsEntryAlone)
{
    std::istringstream lines(outputOf(std::string(NM_TOOL) + " -D --defined-only " + PLUGIN_FILE));
    std::vector<std::string> symbols;
    for (std::string address, type, name; lines >> address >> type >> name;) {
        symbols.push_back(name);
    }
    EXPECT_EQ(symbols, std::vector<std::string>{"initializeDataProviderPlugin"});
}

TEST(SharedLibrary, NeedsThreadingCompressionAndTheRunTimeAlone)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer adds a run-time of its own";
#endif
    const std::set<std::string> allowed = {"libtbb.so",   "libz.so", "libstdc++.so",      "libm.so",
                                           "libgcc_s.so", "libc.so", "ld-linux-x86-64.so"};
    std::istringstream lines(outputOf(std::string(READELF_TOOL) + " -d " + PLUGIN_FILE));
    std::set<std::string> needed;
    for (std::string line; std::getline(lines, line);) {
        if (line.find("(NEEDED)") != std::string::npos) {
            const std::size_t start = line.find('[') + 1;
            needed.insert(line.substr(start, line.find(".so", start) + 3 - start));
        }
    }
    EXPECT_TRUE(needed.contains("libz.so") && needed.size() > 1);
    EXPECT_TRUE(std::ranges::includes(allowed, needed));
}

} // namespace
