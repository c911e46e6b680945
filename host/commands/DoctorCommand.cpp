// SPDX-License-Identifier: MIT
#include "border/EscapedText.h"
#include "border/HostLog.h"
#include "commands/Commands.h"
#include "doctor/Doctor.h"
#include "doctor/LibraryLook.h"
#include "doctor/Wording.h"
#include "output/TextTable.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* VARIABLE = "OPENFOAM_PLUGIN_EXTENDED_READING";

struct DoctorCommandOptions
{
    std::string casePath;
    std::string states = "some";
};

// The library

/// A setting as a user sees it.
struct ShownSetting
{
    std::string key;
    std::string value;
    std::string label;
};

std::vector<ShownSetting> settingsOf(const HostProviderInfo& provider)
{
    std::vector<ShownSetting> shown;
    for (const HostSetting& setting : provider.settings) {
        shown.push_back({setting.key, setting.isBool ? (setting.boolDefault ? "on" : "off") : setting.stringDefault,
                         setting.label});
    }
    shown.push_back(
        {HostOptions::EXTENDED_READING, "off",
         fmt::format("Show cases as OpenFOAM loads them (not declared; also by the variable {})", VARIABLE)});
    return shown;
}

/// The value of the environment variable; null if it is not set.
const char* variableValue()
{
    return std::getenv(VARIABLE);
}

std::string libraryText(const PluginLibrary& library, const TextStyle& style)
{
    std::string text = style.strong(library.file().string()) + "\n";
    text += fmt::format("  can be loaded: provider '{}', version {} of the interface, files {}\n",
                        library.providerInfo().name, library.apiVersion(), library.providerInfo().fileMask);
    text += style.faint("about") + "\n";
    TextTable about(std::vector(2, TextTable::Align::Left));
    for (const auto& [key, value] : library.pluginInfo()) {
        about.add({key, value});
    }
    text += about.text(2) + style.faint("linked with") + "\n";
    TextTable linked(std::vector(2, TextTable::Align::Left));
    for (const LinkedLibrary& one : linkedLibraries(library.file())) {
        linked.add({one.name, one.file.empty() ? "-" : one.file});
    }
    text += linked.text(2) + style.faint("settings, with what a host gets that sets nothing") + "\n";
    TextTable settings(std::vector(3, TextTable::Align::Left));
    for (const ShownSetting& setting : settingsOf(library.providerInfo())) {
        settings.add({setting.key, setting.value, setting.label});
    }
    text += settings.text(2);
    const char* const value = variableValue();
    return text +
           fmt::format("  {} is {}\n", VARIABLE, value == nullptr ? "not set" : "'" + escapedControls(value) + "'");
}

Json libraryDocument(const PluginLibrary& library)
{
    Json document;
    document["file"] = library.file().string();
    document["provider"] = library.providerInfo().name;
    document["interface"] = library.apiVersion();
    document["fileMask"] = library.providerInfo().fileMask;
    for (const auto& [key, value] : library.pluginInfo()) {
        document["about"][key] = value;
    }
    document["linked"] = Json::array();
    for (const LinkedLibrary& one : linkedLibraries(library.file())) {
        document["linked"].push_back({{"name", one.name}, {"file", one.file}});
    }
    document["settings"] = Json::array();
    for (const ShownSetting& setting : settingsOf(library.providerInfo())) {
        document["settings"].push_back({{"key", setting.key}, {"default", setting.value}, {"label", setting.label}});
    }
    const char* const value = variableValue();
    document["variable"] = {{"name", VARIABLE}, {"value", value == nullptr ? Json() : Json(value)}};
    return document;
}

/// What is known of a library that cannot be loaded.
std::string refusalText(const std::string& given, const std::string& reason, const TextStyle& style)
{
    std::string text = style.strong("the library cannot be loaded") + "\n  " + escapedControls(reason) + "\n";
    text += style.faint("looked for it in") + "\n";
    TextTable places(std::vector(2, TextTable::Align::Left));
    for (const auto& [place, state] : searchedPlaces(given)) {
        places.add({escapedControls(place), escapedControls(state)});
    }
    return text + places.text(2) + style.faint("what helps") + "\n  " + helpForRefusal(reason) + "\n";
}

/// The library; if it cannot be loaded, the failure says what helps.
PluginLibrary& libraryOf(HostContext& context)
{
    try {
        return context.library();
    } catch (const HostError& error) {
        if (error.code() != ExitCode::LibraryRefused) {
            throw;
        }
        if (!context.options.json) {
            writeToStdout(refusalText(context.options.plugin, error.what(), context.style()));
        }
        throw HostError(error.code(), fmt::format("{}; {}", error.what(), helpForRefusal(error.what())));
    }
}

// The case

std::string findingLine(const Finding& finding)
{
    std::string line =
        fmt::format("  {}: {}", escapedControls(textOf(finding.cause.place)), escapedControls(finding.cause.reason));
    if (!finding.cause.cure.empty()) {
        line += "; " + escapedControls(finding.cause.cure);
    }
    const std::string extent = extentOf(finding);
    return line + (extent.empty() ? "\n" : fmt::format(" ({})\n", extent));
}

std::string findingSection(const DoctorReport& report, FindingKind kind, const std::string& title,
                           const TextStyle& style)
{
    std::string text;
    for (const Finding& finding : report.findings.all()) {
        text += finding.kind == kind ? findingLine(finding) : "";
    }
    return text.empty() ? text : style.strong(title) + "\n" + text;
}

std::string formsText(const CaseForms& forms)
{
    std::string text;
    for (const auto& [form, count] : forms.files) {
        text += count == 0 ? "" : fmt::format("  {} files: {}\n", form, count);
    }
    for (const std::string& form : forms.rawForms) {
        text += fmt::format("  raw values: {}\n", escapedControls(form));
    }
    text += fmt::format("  {} cells, {} patches, {} times\n", forms.cells, forms.patches, forms.times);
    if (!forms.regions.empty()) {
        text += "  regions:";
        for (const std::string& region : forms.regions) {
            text += " " + escapedControls(region);
        }
        text += "\n";
    }
    text += forms.processors == 0 ? "" : fmt::format("  {} processors\n", forms.processors);
    text += forms.hasWholeMeshBesidePieces
                ? "  the whole mesh beside the processors has no results of its own, so only the pieces show\n"
                : "";
    text += forms.surfaces.empty() ? "" : fmt::format("  {} sampled surfaces\n", forms.surfaces.size());
    return text + (forms.movedPointTimes == 0 ? "" : "  moving points\n");
}

std::string caseText(const DoctorReport& report, const TextStyle& style)
{
    std::string text = style.strong(report.folder) + "\n";
    text += findingSection(report, FindingKind::Hidden, "does not show at all", style);
    text += findingSection(report, FindingKind::Extended,
                           fmt::format("shows, or shows right, only with extended reading (set {}=on or {}=1)",
                                       HostOptions::EXTENDED_READING, VARIABLE),
                           style);
    text += findingSection(report, FindingKind::Setting, "shows only with another setting", style);
    const ArrayCounts& arrays = report.arrays;
    text += !report.findings.empty() ? ""
            : arrays.all == 0        ? "everything shows, but there are no fields\n"
                                     : "everything shows\n";
    text += fmt::format("{} of {} arrays of values show, {} with extended reading; looked at {} of {} times{}\n",
                        arrays.plain, arrays.all, arrays.extended, report.timesLookedAt.size(), report.forms.times,
                        report.timesLookedAt.size() < report.forms.times ? " (--state all looks at all)" : "");
    text += style.strong("forms") + "\n" + formsText(report.forms);
    text += report.slow.empty() ? "" : style.strong("what will be slow") + "\n";
    for (const std::string& note : report.slow) {
        text += "  " + escapedControls(note) + "\n";
    }
    return text;
}

Json findingDocument(const Finding& finding)
{
    Json document = {{"kind", wordOf(finding.kind)},
                     {"cause", finding.cause.name},
                     {"file", finding.cause.place.file},
                     {"line", finding.cause.place.line == 0 ? Json() : Json(finding.cause.place.line)},
                     {"reason", finding.cause.reason},
                     {"cure", finding.cause.cure},
                     {"curedByExtendedReading", finding.kind == FindingKind::Extended},
                     {"files", finding.files},
                     {"fields", finding.fields},
                     {"times", finding.times}};
    document["arrays"] = Json::array();
    for (const FindingArray& array : finding.arrays) {
        document["arrays"].push_back({{"time", array.time},
                                      {"part", array.part},
                                      {"group", array.group},
                                      {"field", array.field},
                                      {"plain", array.plain},
                                      {"extended", array.extended}});
    }
    return document;
}

Json caseDocument(const DoctorReport& report)
{
    Json document;
    document["folder"] = report.folder;
    document["findings"] = Json::array();
    for (const Finding& finding : report.findings.all()) {
        document["findings"].push_back(findingDocument(finding));
    }
    document["arrays"] = {
        {"all", report.arrays.all}, {"plain", report.arrays.plain}, {"extended", report.arrays.extended}};
    const CaseForms& forms = report.forms;
    document["forms"] = {{"files", forms.files},
                         {"rawForms", forms.rawForms},
                         {"cells", forms.cells},
                         {"patches", forms.patches},
                         {"times", forms.times},
                         {"regions", forms.regions},
                         {"processors", forms.processors},
                         {"surfaces", forms.surfaces},
                         {"movingPoints", forms.movedPointTimes > 0},
                         {"wholeMeshBesidePieces", forms.hasWholeMeshBesidePieces}};
    document["timesLookedAt"] = report.timesLookedAt;
    document["slow"] = report.slow;
    return document;
}

ExitCode runDoctor(HostContext& context, const DoctorCommandOptions& options)
{
    PluginLibrary& library = libraryOf(context);
    Json document = newDocument("doctor");
    if (options.casePath.empty()) {
        document["library"] = libraryDocument(library);
        context.options.json ? writeDocument(document) : writeToStdout(libraryText(library, context.style()));
        return ExitCode::Good;
    }
    if (context.options.verbosity == 0) {
        // What the library complains about is in the findings, with its cause.
        HostLog::get().setShownLevel(0);
    }
    const DoctorReport report =
        examineCase(library, options.casePath, {context.options.settings, options.states, context.showsProgress()});
    if (context.options.json) {
        document["library"] = libraryDocument(library);
        document["case"] = caseDocument(report);
        writeDocument(document);
    } else {
        writeToStdout(caseText(report, context.style()));
    }
    return report.findings.empty() ? ExitCode::Good : ExitCode::Findings;
}

} // namespace

void addDoctorCommand(CLI::App* app, HostContext* context)
{
    const auto options = std::make_shared<DoctorCommandOptions>();
    CLI::App* const command = app->add_subcommand(
        "doctor", "Say what of a case a host will not show, why, and what helps; without a case, look at the library");
    command->add_option("CASE", options->casePath, "A case folder or a .foam file in it")->check(notEmpty());
    command
        ->add_option("--state", options->states,
                     "Which states; some are the first, one in the middle and the latest, and are the default")
        ->type_name("some|first|latest|all|TIME")
        ->check(notEmpty());
    command->callback([=] { context->command = [=] { return runDoctor(*context, *options); }; });
}
