// SPDX-License-Identifier: MIT
#include "commands/HostContext.h"

#include "border/HostLog.h"
#include "output/FailureReport.h"

#include <CLI/CLI.hpp>
#include <tbb/global_control.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include <unistd.h>

namespace {

// Indexed by the number of -v on the command line.
constexpr std::array<std::int32_t, 3> SHOWN_LEVELS = {LOG_ERROR, LOG_INFO, LOG_DEBUG};

} // namespace

std::vector<std::string> GlobalOptions::allSettings() const
{
    std::vector<std::string> all;
    if (!extendedReading.empty()) {
        all.push_back(std::string(HostOptions::EXTENDED_READING) + "=" + extendedReading);
    }
    all.insert(all.end(), settings.begin(), settings.end());
    return all;
}

void addPlainFlag(CLI::App* command, GlobalOptions* options)
{
    const auto isPlain = std::make_shared<bool>(false);
    command->add_flag("--plain", *isPlain, "Show what a host gets that does not ask for extended reading");
    command->parse_complete_callback([=] { options->extendedReading = *isPlain ? "off" : "on"; });
}

void addExtendedFlag(CLI::App* command, GlobalOptions* options)
{
    const auto isExtended = std::make_shared<bool>(false);
    command->add_flag("--extended", *isExtended, "Ask the library for extended reading");
    command->parse_complete_callback([=] { options->extendedReading = *isExtended ? "on" : ""; });
}

void HostContext::applyOptions()
{
    const int verbosity = options.quiet ? 0 : std::min(options.verbosity, 2);
    HostLog::get().setShownLevel(SHOWN_LEVELS[static_cast<std::size_t>(verbosity)]);
    if (options.threads > 0) {
        // The library uses the same TBB as this process, so the limit applies to its loops too.
        m_threadLimit = std::make_shared<tbb::global_control>(tbb::global_control::max_allowed_parallelism,
                                                              static_cast<std::size_t>(options.threads));
    }
}

PluginLibrary& HostContext::library()
{
    if (!m_library) {
        m_library = std::make_unique<PluginLibrary>(PluginLibrary::locate(options.plugin));
    }
    return *m_library;
}

void HostContext::loadFaceZones()
{
    constexpr const char* SETTING = "LOAD_FACE_ZONES";
    if (options.extendedReading != "off" && library().providerInfo().find(SETTING) != nullptr) {
        options.settings.insert(options.settings.begin(), std::string(SETTING) + "=on");
    }
}

std::unique_ptr<OpenedCase> HostContext::open(const std::string& casePath)
{
    PluginLibrary& loaded = library();
    if (!m_settings) {
        m_settings = std::make_unique<HostOptions>(HostOptions::parse(options.allSettings(), loaded.providerInfo()));
    }
    return std::make_unique<OpenedCase>(loaded, casePath, *m_settings);
}

bool HostContext::showsProgress() const
{
    return !options.noProgress && !options.quiet && isatty(STDERR_FILENO) != 0 && !isDumbTerminal();
}

nlohmann::ordered_json newDocument(const std::string& command)
{
    nlohmann::ordered_json document;
    document["schema"] = "ddphost/1";
    document["command"] = command;
    return document;
}

void writeDocument(const nlohmann::ordered_json& document)
{
    const std::string text = document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    FailureReport::get().documentStarts();
    writeToStdout(text);
}
