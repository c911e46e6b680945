// SPDX-License-Identifier: MIT
#include "help/ManualPage.h"
#include "host/ProgramRun.h"

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

/// The words of a page as a terminal shows it, with one blank between them; what groff complains about goes to stderr.
std::string displayedWords(const std::string& page)
{
    const TempFolder folder;
    std::ofstream(folder / "page") << page;
    const std::string command =
        "groff -man -ww -Tascii -P-cbou -rHY=0" + inQuotes(folder / "page") + " >" + inQuotes(folder / "out") + " 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::istringstream text(fileBytes(folder / "out"));
    std::string words;
    for (std::string word; text >> word;) {
        words += word + " ";
    }
    return words;
}

} // namespace

// What looks like a request or an escape would vanish from the page, or run.
TEST(ManualPage, ShowsTextsAsTheyAreWritten)
{
    if (std::system("groff --version >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "there is no groff";
    }
    std::string dots;
    for (int i = 0; i < 60; ++i) {
        dots += ".so 'br ";
    }
    CLI::App program("Does \\fBsomething\\fR. More of it.", "ddphost");
    CLI::App* const command = program.add_subcommand("odd", ".TH begins here; 'br follows");
    int number = 7;
    command->add_option("-n,--num-ber", number, "\\(aq 'x' `y` ~z ^ \"quoted\" \\")
        ->type_name("N")
        ->capture_default_str();
    command->add_option("--other", number, "Other")->required()->type_name("a|b");
    command->footer(dots);
    const std::string shown = displayedWords(manualPage(*command, "2026-01-02"));
    for (const std::string& text :
         {std::string("NAME ddphost-odd - .TH begins here SYNOPSIS"), std::string("DESCRIPTION .TH begins here; 'br"),
          std::string("-n, --num-ber N \\(aq 'x' `y` ~z ^ \"quoted\" \\ (default: 7)"),
          std::string("--other a|b Other (required)"), dots, std::string("SEE ALSO ddphost(1) ")}) {
        EXPECT_NE(shown.find(text), std::string::npos) << text << "\nis not in\n" << shown;
    }
    EXPECT_EQ(shown.find("warning"), std::string::npos) << shown;
    EXPECT_NE(displayedWords(manualPage(program, "")).find("ddphost - does \\fBsomething\\fR SYNOPSIS"),
              std::string::npos);
}
