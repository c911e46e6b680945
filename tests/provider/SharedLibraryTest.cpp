// SPDX-License-Identifier: MIT
#include "border/OpenedCase.h"
#include "border/PluginLibrary.h"
#include "support/OpenCase.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <regex>

#include <dlfcn.h>

namespace {

std::string outputOf(const std::string& command)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) {
        text.push_back(static_cast<char>(c));
    }
    return text;
}

// Twice, because leftovers of the first load show in the second.
TEST(SharedLibrary, CanBeLoadedUsedUnloadedAndLoadedAgain)
{
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        {
            PluginLibrary library(PLUGIN_FILE);
            EXPECT_EQ(library.providerName(), "OpenFoamProvider");
            const HostOptions options;
            OpenedCase opened(library, dataCase("zones"), options);
            EXPECT_EQ(opened.geometry().elementGroups.size(), 4U);
            const HostMetaData& description = opened.metaData();
            EXPECT_EQ(description.results.size(), 6U);
            for (const HostResultInfo& info : description.results) {
                EXPECT_NE(opened.result(info, description.states.back().id), nullptr) << info.name;
            }
        }
        void* const kept = dlopen(PLUGIN_FILE, RTLD_NOLOAD | RTLD_NOW);
        ASSERT_NE(kept, nullptr) << "the code was unmapped while threads of TBB may still run in it";
        dlclose(kept);
    }
    EXPECT_EQ(joined(BorderFaults::get().take()), "");
}

TEST(SharedLibrary, ExportsOnlyItsEntryAndNeedsOnlyKnownLibraries)
{
    const std::string symbols = outputOf(std::string(NM_TOOL) + " -D --defined-only '" PLUGIN_FILE "'");
    EXPECT_EQ(symbols.substr(symbols.find(' ')), " T initializeDataProviderPlugin\n");
    const std::regex needed("NEEDED.*\\[(.*)\\.so");
    const std::regex allowed("lib(tbb|tbb_debug|z|stdc\\+\\+|m|gcc_s|c)|ld-linux.*|lib(asan|ubsan|tsan|clang_rt.*)");
    const std::string sections = outputOf(std::string(READELF_TOOL) + " -d '" PLUGIN_FILE "'");
    int count = 0;
    for (std::sregex_iterator match(sections.begin(), sections.end(), needed); match != std::sregex_iterator();
         ++match) {
        EXPECT_TRUE(std::regex_match((*match)[1].str(), allowed)) << (*match)[1];
        ++count;
    }
    EXPECT_GE(count, 4);
}

TEST(SharedLibrary, IsLinkedWithHardening)
{
    const std::string parts = outputOf(std::string(READELF_TOOL) + " -lW '" PLUGIN_FILE "'");
    EXPECT_TRUE(std::regex_search(parts, std::regex("GNU_STACK[^\n]* RW  ?0x"))) << parts;
    EXPECT_NE(parts.find("GNU_RELRO"), std::string::npos);
    EXPECT_NE(outputOf(std::string(READELF_TOOL) + " -d '" PLUGIN_FILE "'").find("BIND_NOW"), std::string::npos);
#ifndef OFP_SANITIZED
    EXPECT_NE(outputOf(std::string(NM_TOOL) + " -D '" PLUGIN_FILE "'").find("__stack_chk_fail"), std::string::npos);
#endif
}

} // namespace
