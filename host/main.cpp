// SPDX-License-Identifier: MIT
#include "border/CrashHandler.h"
#include "border/EscapedText.h"
#include "border/HostLog.h"
#include "commands/Commands.h"
#include "commands/UsageError.h"
#include "help/Completion.h"
#include "help/HelpFormatter.h"
#include "output/FailureReport.h"
#include "output/Interrupt.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* DESCRIPTION =
    "Loads a data-provider plug-in and shows, checks, exports and measures what it delivers for a case.\n"
    "Data goes to stdout, everything else to stderr.";

/// The release, and the version that the library tells its hosts.
std::string versionText(HostContext* context)
{
    std::string text = "ddphost " DDPHOST_VERSION;
    try {
        for (const auto& [key, value] : context->library().pluginInfo()) {
            if (key == "version") {
                text += "\nlibrary " + escapedControls(value);
            }
        }
    } catch (const HostError&) {
        // The program has a version without a library too.
    }
    return text;
}

/// Accepted before and after the command, because few users remember which side is which.
void addGlobalOptions(CLI::App* app, GlobalOptions* options)
{
    const std::map<std::string, int> colorModes = {{"auto", static_cast<int>(ColorMode::Auto)},
                                                   {"always", static_cast<int>(ColorMode::Always)},
                                                   {"never", static_cast<int>(ColorMode::Never)}};
    app->option_defaults()->group(GLOBAL_GROUP);
    app->add_option("--plugin", options->plugin, "The library to load")->type_name("PATH");
    app->add_option("--set", options->settings,
                    "A setting for the case, such as LOAD_FACE_ZONES=on; an unknown key lists them all")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    app->add_flag("--json", options->json, "Write one JSON document instead of text");
    app->add_flag("-q,--quiet", options->quiet, "Show only errors and data");
    app->add_flag("-v,--verbose", options->verbosity,
                  "Show the library's info messages; given twice, debug messages too");
    limitCount(
        app->add_option("--threads", options->threads, "Run the library on at most this many threads")->type_name("N"),
        1, 1024);
    limitWords(app->add_option("--color", options->color, "When to colour the text"), colorModes);
    app->add_flag("--no-progress", options->noProgress, "Do not show a progress bar");
    // Commands that are added from now on inherit the defaults.
    app->option_defaults()->group("Options");
}

/// Parses the command line into the context.
/// @return false if the run ends here, after help or completion
/// @throws HostError of `Usage` for a mistake
bool parse(int argc, char** argv, HostContext* context)
{
    CLI::App app(DESCRIPTION, "ddphost");
    app.formatter(std::make_shared<HelpFormatter>());
    app.require_subcommand(1);
    app.fallthrough();
    addGlobalOptions(&app, &context->options);
    // After the global options, since it loads the library that --plugin names.
    app.set_version_flag("--version", [context] { return versionText(context); });
    addInfoCommand(&app, context);
    addExportCommand(&app, context);
    addStatsCommand(&app, context);
    addViewCommand(&app, context);
    addWatchCommand(&app, context);
    addBenchCommand(&app, context);
    addSampleCommand(&app, context);
    addCheckCommand(&app, context);
    addDoctorCommand(&app, context);
    addManualCommand(&app, context);
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    if (!words.empty() && words.front() == "complete") {
        // Not a command of the tree, which would take the words of the unfinished line for its own.
        complete(app, {words.begin() + 1, words.end()}, context);
        return false;
    }
    try {
        app.parse(argc, argv);
        context->commandName = app.get_subcommands().front()->get_name();
        return true;
    } catch (const CLI::Success& success) {
        app.exit(success);
    } catch (const CLI::ParseError& error) {
        // The flag itself may not have been read before the mistake.
        if (std::ranges::find(words, "--json") != words.end()) {
            const std::vector<CLI::App*> commands = app.get_subcommands();
            FailureReport::get().owesDocument(commands.empty() ? "" : commands.front()->get_name());
        }
        throw HostError(ExitCode::Usage, usageMessage(app, error));
    }
    return false;
}

/// The context, and the library with it, is destroyed before `main` returns, so that the crash handler covers that too.
ExitCode run(int argc, char** argv)
{
    HostContext context;
    if (!parse(argc, argv, &context)) {
        return ExitCode::Good;
    }
    if (context.options.json) {
        FailureReport::get().owesDocument(context.commandName);
    }
    if (context.endsOnInterrupts) {
        endOnInterrupts([](int signal) { FailureReport::get().tell(128 + signal, "interrupted"); });
    }
    context.applyOptions();
    const ExitCode code = context.command();
    interruptsEndWith(static_cast<int>(code));
    return code;
}

/// Tells in one line why the run ended.
int fail(ExitCode code, const char* message)
{
    FailureReport::get().tell(static_cast<int>(code), message);
    return static_cast<int>(code);
}

} // namespace

int main(int argc, char** argv)
{
    installCrashHandler();
    try {
        const ExitCode code = run(argc, argv);
        HostLog::get().showErrors();
        return static_cast<int>(code);
    } catch (const HostError& error) {
        return fail(error.code(), error.what());
    } catch (const std::filesystem::filesystem_error& error) {
        return fail(ExitCode::CannotWrite, error.what());
    } catch (const std::exception& error) {
        // Running out of memory ends here; a wrong count usually shows that way.
        return fail(ExitCode::Misbehaved, error.what());
    }
}
