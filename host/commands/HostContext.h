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
}

/// Options that stand for every command.
struct GlobalOptions
{
    std::string plugin;                ///< path of the library; empty looks for it
    std::vector<std::string> settings; ///< as KEY=VALUE, not checked before the library is known
    bool json = false;                 ///< one document on stdout instead of text
    bool quiet = false;                ///< wins over -v
    int verbosity = 0;                 ///< how many times -v was given
    int threads = 0;                   ///< 0 leaves the number to the machine
    ColorMode color = ColorMode::Auto;
    bool noProgress = false;
};

/// What the commands share: the options, the library and the way to open a case.
class HostContext
{
public:
    HostContext() = default;

    HostContext(const HostContext&) = delete;
    HostContext& operator=(const HostContext&) = delete;

    /// What the command line said; complete before the command runs.
    GlobalOptions options;

    /// The work of the command that the command line names; set while that is parsed, run behind it.
    std::function<ExitCode()> command;

    /// Takes the options into use: what of the log shows, and the number of threads.
    void applyOptions();

    /// The library, loaded at the first call.
    PluginLibrary& library();

    /// Opens the case with the user's settings; the context must outlive it.
    std::unique_ptr<OpenedCase> open(const std::string& casePath);

    /// How text on stdout is to look.
    TextStyle style() const { return TextStyle(options.color); }

    /// True if a progress bar is wanted and stderr can show it.
    bool showsProgress() const;

private:
    std::shared_ptr<void> m_threadLimit; ///< holds the limit for as long as it lives
    std::unique_ptr<PluginLibrary> m_library;
    std::unique_ptr<HostOptions> m_settings;
};

/// A document of the host's JSON output, with its schema and the command's name set.
nlohmann::ordered_json newDocument(const std::string& command);

/// Writes a document to stdout. Bytes of names that are not UTF-8 are replaced, as JSON can hold no others.
void writeDocument(const nlohmann::ordered_json& document);
