// SPDX-License-Identifier: MIT
#include "border/CrashHandler.h"
#include "commands/Commands.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <string>

namespace {

constexpr const char* DESCRIPTION =
    "Loads a data-provider plug-in and shows, checks, converts and measures what it delivers of a case.\n"
    "Data go to stdout, all else to stderr.";

constexpr const char* FOOTER =
    "Exit codes: 0 good, 1 findings, 2 usage, 3 case refused, 4 library not loadable,\n"
    "5 library misbehaved, 6 cannot write output.\n"
    "The library is that of --plugin, else of the environment's DDP_PLUGIN, else the one beside the program\n"
    "or in the library folder it was installed with.";

/// These may stand before or behind the command, because few users remember which side is which.
void addGlobalOptions(CLI::App* app, GlobalOptions* options)
{
    static const std::map<std::string, ColorMode> colorModes = {
        {"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}};
    app->add_option("--plugin", options->plugin, "The library to load")->type_name("PATH");
    app->add_option("--set", options->settings,
                    "A user setting for the case, as in LOAD_FACE_ZONES=on; an unknown key lists them all")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    app->add_flag("--json", options->json, "Write one JSON document instead of text");
    app->add_flag("-q,--quiet", options->quiet, "Show nothing but errors and data");
    app->add_flag("-v,--verbose", options->verbosity, "Show the library's info lines; twice: its debug lines too");
    app->add_option("--threads", options->threads, "Run the library on this many threads at most")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    app->add_option("--color", options->color, "Colour the text: auto, always or never")
        ->type_name("WHEN")
        ->transform(CLI::CheckedTransformer(colorModes).description(""));
    app->add_flag("--no-progress", options->noProgress, "Draw no progress bar");
}

/// Parses the command line into the context.
/// @return false with `code` set if the run ends here, be it with help or with a usage error
bool parse(int argc, char** argv, HostContext* context, ExitCode* code)
{
    CLI::App app(DESCRIPTION, "ddphost");
    app.footer(FOOTER);
    app.set_version_flag("--version", "ddphost " DDPHOST_VERSION);
    app.require_subcommand(1);
    app.fallthrough();
    addGlobalOptions(&app, &context->options);
    addInfoCommand(&app, context);
    addExportCommand(&app, context);
    addStatsCommand(&app, context);
    addWatchCommand(&app, context);
    addBenchCommand(&app, context);
    addSampleCommand(&app, context);
    addCheckCommand(&app, context);
    try {
        app.parse(argc, argv);
        return true;
    } catch (const CLI::ParseError& error) {
        // The parser has codes of its own for each kind of mistake; for ours they are all one.
        *code = app.exit(error) == 0 ? ExitCode::Good : ExitCode::Usage;
        return false;
    }
}

/// The context goes before `main` returns, and with it the library, while the crash handler still stands.
ExitCode run(int argc, char** argv)
{
    HostContext context;
    ExitCode code = ExitCode::Good;
    if (!parse(argc, argv, &context, &code)) {
        return code;
    }
    context.applyOptions();
    return context.command();
}

/// Tells the user why the run ended, in one line.
int fail(ExitCode code, const char* message) noexcept
{
    // Not through the formatting library, which throws itself if stderr is gone.
    static_cast<void>(std::fprintf(stderr, "ddphost: %s\n", message));
    return static_cast<int>(code);
}

} // namespace

int main(int argc, char** argv)
{
    installCrashHandler();
    try {
        return static_cast<int>(run(argc, argv));
    } catch (const HostError& error) {
        return fail(error.code(), error.what());
    } catch (const std::filesystem::filesystem_error& error) {
        return fail(ExitCode::CannotWrite, error.what());
    } catch (const std::exception& error) {
        // Arrays too large for the memory end here, which is how a broken count shows.
        return fail(ExitCode::Misbehaved, error.what());
    }
}
