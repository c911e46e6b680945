// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostError.h"
#include "border/OpenedCase.h"
#include "border/PluginLibrary.h"
#include "output/Terminal.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

/// Options common to all commands.
struct GlobalOptions
{
    std::string plugin;                ///< path of the library; if empty, it is searched for
    std::vector<std::string> settings; ///< as KEY=VALUE, not checked until the library is loaded
    bool json = false;                 ///< one document on stdout instead of text
    bool quiet = false;                ///< wins over -v
    int verbosity = 0;                 ///< how many times -v was given
    int threads = 0;                   ///< 0 uses the default of the machine
    ColorMode color = ColorMode::Auto;
    bool noProgress = false;
    /// "on" or "off" for the library's extended reading; empty passes no such setting.
    std::string extendedReading;

    /// The settings of all options; the user's own come last and win.
    std::vector<std::string> allSettings() const;
};

/// Lets a command read cases in full, as OpenFOAM would, unless the user gives --plain.
void addPlainFlag(CLI::App* command, GlobalOptions* options);

/// Lets a command open cases as a host does that sets nothing, unless the user gives --extended.
void addExtendedFlag(CLI::App* command, GlobalOptions* options);

/// What the commands share: the options, the library and a function to open a case.
class HostContext
{
public:
    HostContext() = default;

    HostContext(const HostContext&) = delete;
    HostContext& operator=(const HostContext&) = delete;

    /// The options of the command line; complete before the command runs.
    GlobalOptions options;

    /// The selected command; set while the command line is parsed, run afterwards.
    std::function<ExitCode()> command;

    /// The name of that command.
    std::string commandName;

    /// False for a process that another one ends.
    bool endsOnInterrupts = true;

    /// Applies the options for the log level and the number of threads.
    void applyOptions();

    /// The library, loaded on the first call.
    PluginLibrary& library();

    /// Switches face zones on, for commands that show all that the case has, unless the user says otherwise or wants to
    /// see what other hosts get. Only a setting that the library knows can be set.
    void loadFaceZones();

    /// Opens the case with the user's settings; the context must outlive it.
    std::unique_ptr<OpenedCase> open(const std::string& casePath);

    /// The style of text on stdout.
    TextStyle style() const { return TextStyle(options.color); }

    /// True if a progress bar is wanted and stderr can show it.
    bool showsProgress() const;

private:
    std::shared_ptr<void> m_threadLimit; ///< keeps the limit in force while it exists
    std::unique_ptr<PluginLibrary> m_library;
    std::unique_ptr<HostOptions> m_settings;
};

/// A document of the host's JSON output, with its schema and the command's name set.
nlohmann::ordered_json newDocument(const std::string& command);

/// Writes the one document of a run to stdout. Bytes that are not UTF-8 are replaced, since JSON cannot hold them.
void writeDocument(const nlohmann::ordered_json& document);
