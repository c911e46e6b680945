// SPDX-License-Identifier: MIT
#include "border/HostError.h"
#include "commands/Commands.h"
#include "help/HelpFormatter.h"
#include "help/ManualPage.h"
#include "output/OutputFile.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace {

ExitCode writePages(const std::string& folder, const std::map<std::string, std::string>& pages)
{
    for (const auto& [name, text] : pages) {
        OutputFile file(std::filesystem::path(folder) / (name + ".1"), true);
        file.write(text);
        file.close();
    }
    return ExitCode::Good;
}

} // namespace

void addManualCommand(CLI::App* app, HostContext* context)
{
    struct Arguments
    {
        std::string folder;
        std::string date;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = app->add_subcommand("manual", "Write the manual pages to a folder")->group("");
    command->add_option("DIR", arguments->folder)->required()->check(notEmpty());
    command->add_option("DATE", arguments->date);
    command->callback([=] {
        // The tree of commands does not outlive the parsing, so the pages are made now.
        std::map<std::string, std::string> pages = {{manualName(*app), manualPage(*app, arguments->date)}};
        for (const CLI::App* const shown : shownCommands(*app)) {
            pages[manualName(*shown)] = manualPage(*shown, arguments->date);
        }
        context->command = [=] { return writePages(arguments->folder, pages); };
    });
}
