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
    "Loads a data-provider plug-in and shows, checks, exports and measures what it delivers for a case.\n"
    "Data goes to stdout, everything else to stderr.";

constexpr const char* FOOTER =
    "Exit codes: 0 success, 1 findings, 2 usage, 3 case refused, 4 library not loadable,\n"
    "5 library misbehaved, 6 cannot write output.\n"
    "The library is the one named by --plugin, else by the variable DDP_PLUGIN, else the one next to the\n"
    "program or in the library folder of the same installation.";

/// Accepted before and after the command, because few users remember which side is which.
void addGlobalOptions(CLI::App* app, GlobalOptions* options)
{
    static const std::map<std::string, ColorMode> colorModes = {
        {"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}};
    app->add_option("--plugin", options->plugin, "The library to load")->type_name("PATH");
    app->add_option("--set", options->settings,
                    "A setting for the case, such as LOAD_FACE_ZONES=on; an unknown key lists them all")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    app->add_flag("--json", options->json, "Write one JSON document instead of text");
    app->add_flag("-q,--quiet", options->quiet, "Show only errors and data");
    app->add_flag("-v,--verbose", options->verbosity,
                  "Show the library's info messages; given twice, debug messages too");
    app->add_option("--threads", options->threads, "Run the library on at most this many threads")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    app->add_option("--color", options->color, "When to colour the text: auto, always or never")
        ->type_name("WHEN")
        ->transform(CLI::CheckedTransformer(colorModes).description(""));
    app->add_flag("--no-progress", options->noProgress, "Do not show a progress bar");
}

/// Parses the command line into the context.
/// @return false with `code` set if the run ends here, after help or a usage error
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
    addDoctorCommand(&app, context);
    try {
        app.parse(argc, argv);
        return true;
    } catch (const CLI::ParseError& error) {
        // The parser has a code for each kind of mistake; we use one for all.
        *code = app.exit(error) == 0 ? ExitCode::Good : ExitCode::Usage;
        return false;
    }
}

/// The context, and the library with it, is destroyed before `main` returns, so that the crash handler covers that too.
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

/// Reports in one line why the run ended.
int fail(ExitCode code, const char* message) noexcept
{
    // Not with the formatting library, which throws if stderr is closed.
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
        // Running out of memory ends here; a wrong count usually shows that way.
        return fail(ExitCode::Misbehaved, error.what());
    }
}
