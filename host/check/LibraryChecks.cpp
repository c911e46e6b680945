// SPDX-License-Identifier: MIT
//
// Checks of the library without a case. Hosts identify the library by the names and texts here.
#include "check/Check.h"
#include "check/CheckRun.h"
#include "check/ExportedSymbols.h"

#include <fmt/format.h>

#include <array>

namespace {

/// What a loaded library reports about itself, as one text to compare.
std::string descriptionOf(const PluginLibrary& library)
{
    std::string text = fmt::format("{}, version {}", library.providerName(), library.apiVersion());
    for (const auto& [key, value] : library.pluginInfo()) {
        text += fmt::format("; {} {}", key, value);
    }
    const HostProviderInfo& provider = library.providerInfo();
    text += fmt::format("; {}, {}", provider.name, provider.fileMask);
    for (const HostSetting& setting : provider.settings) {
        text += fmt::format("; {}", setting.key);
    }
    return text;
}

} // namespace

void checkLoadTwice(CheckRun& run)
{
    std::string first;
    for (int round = 0; round < 3; ++round) {
        const std::string description = descriptionOf(*run.load());
        if (round == 0) {
            first = description;
        }
        run.expect(description == first, fmt::format("it reported '{}' at first and now '{}'", first, description));
    }
}

void checkRefusedRegistration(CheckRun& run)
{
    {
        const std::unique_ptr<PluginLibrary> library = run.load(PluginLibrary::Registration::Refuse);
        run.expect(!library->hasExitFunction(), "the entry returns an exit function to a host that refused");
        run.expect(library->pluginInfo().size() == 3, "the library does not identify itself to a host that refuses");
        // The library leaves a refused factory alive, since the host has a pointer to it; this host destroys it.
        const std::unique_ptr<DDPDataProviderFactory> refused(&library->factory());
        run.expect(!refused->isSupportedByProvider(DDPString("")), "the factory accepts an empty path");
    }
    run.expect(run.load()->hasExitFunction(), "the library does not load again after a refusal");
}

void checkExportedSymbol(CheckRun& run)
{
    const std::vector<std::string> names = exportedSymbols(run.task().library);
    const std::string entry = "initializeDataProviderPlugin";
    run.expect(names.size() == 1 && names.front() == entry,
               fmt::format("{} symbols are exported: {}", names.size(), fmt::join(names, " ")));
}

void checkDescriptor(CheckRun& run)
{
    const std::unique_ptr<PluginLibrary> library = run.load();
    const HostProviderInfo& provider = library->providerInfo();
    const auto expect = [&](const char* what, const std::string& found, const std::string& wanted) {
        run.expect(found == wanted, fmt::format("the {} is '{}', not '{}'", what, found, wanted));
    };
    expect("registered name", library->providerName(), "OpenFoamProvider");
    expect("provider's name", provider.name, "OpenFoam DataProvider Reader");
    expect("file mask", provider.fileMask, "case.foam");
    const auto& infos = library->pluginInfo();
    static constexpr std::array<const char*, 3> KEYS = {"name", "version", "compiler"};
    for (std::size_t i = 0; i < KEYS.size(); ++i) {
        expect("key of a plug-in info", i < infos.size() ? infos[i].first : "", KEYS[i]);
    }
    run.expect(infos.size() == KEYS.size(), fmt::format("{} plug-in infos", infos.size()));
    if (infos.size() == KEYS.size()) {
        expect("plug-in's name", infos[0].second, "OpenFoamPlugin");
        expect("plug-in's version", infos[1].second, "1.9.99");
        run.expect(!infos[2].second.empty(), "the plug-in does not name its compiler");
    }
}

void checkSettings(CheckRun& run)
{
    static const std::vector<HostSetting> WANTED = {
        {"LOAD_BC_PARTS", "Load Boundary Parts", true, true, {}},
        {"LOAD_CELL_ZONES", "Load Cell Zones", true, true, {}},
        {"LOAD_FACE_ZONES", "Load Face Zones", true, false, {}},
        {"LOAD_GLOBAL_MESH", "Load Global Mesh i.e from constant/polyMesh", true, true, {}},
        {"LOAD_LOCAL_MESHES", "Load Local Meshes i.e from constant/region*/polyMesh", true, true, {}},
        {"NODE_AVG_RES", "Provide node average results", true, true, {}},
        {"HIDE_PARALLEL_INTERFACES", "Hide Parallel Interfaces Between Processors", true, false, {}},
        {"RESULTS_NAMES_MAPPING", "Result names mapping", false, false,
         "U=Velocity;p=Pressure;rho=Density;T=Temperature;g=Gravity"}};
    const auto textOf = [](const HostSetting& setting) {
        const std::string value = setting.isBool ? (setting.boolDefault ? "on" : "off") : setting.stringDefault;
        return fmt::format("{} '{}' {} {}", setting.key, setting.label, setting.isBool ? "switch" : "text", value);
    };
    const std::unique_ptr<PluginLibrary> library = run.load();
    const std::vector<HostSetting>& settings = library->providerInfo().settings;
    run.expect(settings.size() == WANTED.size(), fmt::format("{} settings, not {}", settings.size(), WANTED.size()));
    for (std::size_t i = 0; i < settings.size() && i < WANTED.size(); ++i) {
        const std::string found = textOf(settings[i]);
        run.expect(found == textOf(WANTED[i]), fmt::format("setting {} is {}, not {}", i, found, textOf(WANTED[i])));
    }
}

void checkSupportedPaths(CheckRun& run)
{
    struct Row
    {
        const char* path;
        bool supported;
    };
    // Only the file name counts, in any case and after either kind of slash; the files need not exist.
    static constexpr std::array<Row, 14> TABLE = {{{"/no/such/case.foam", true},
                                                   {"case.foam", true},
                                                   {"CASE.FOAM", true},
                                                   {"C:\\cases\\run1\\Case.Foam", true},
                                                   {"mixed/slashes\\case.foam", true},
                                                   {"/cases/run1/case.foam/", true},
                                                   {"/cases/two words/case.foam", true},
                                                   {"", false},
                                                   {"/", false},
                                                   {"\\\\//", false},
                                                   {"/cases/case.foam.bak", false},
                                                   {"/cases/mycase.foam", false},
                                                   {"/cases/case.foam/system", false},
                                                   {"/cases/case", false}}};
    const std::unique_ptr<PluginLibrary> library = run.load();
    for (const Row& row : TABLE) {
        const DDPString path(row.path);
        const bool supported =
            callLibrary("isSupportedByProvider", [&] { return library->factory().isSupportedByProvider(path); });
        run.expect(supported == row.supported, fmt::format("'{}' is {}", row.path, supported ? "accepted" : "refused"));
    }
}
