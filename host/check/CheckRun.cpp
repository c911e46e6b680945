// SPDX-License-Identifier: MIT
#include "check/CheckRun.h"

#include "border/DeliveryCheck.h"

#include <fmt/format.h>

#include <cstdlib>
#include <string_view>
#include <utility>

namespace {

// A broken array of a million entries gives a million findings, and nobody reads more than the first few.
constexpr std::size_t MOST_NOTES = 5;

constexpr std::size_t FEW_STATES = 3;

} // namespace

CheckedCase::CheckedCase(std::shared_ptr<PluginLibrary> library, const std::filesystem::path& casePath,
                         HostOptions options)
    : m_library(std::move(library)), m_options(std::move(options)), m_opened(*m_library, casePath, m_options)
{}

bool CheckedCase::readsExtended() const
{
    const DDPString key(HostOptions::EXTENDED_READING);
    if (m_options.hasOption(key)) {
        return m_options.boolOption(key);
    }
    const char* const variable = std::getenv("OPENFOAM_PLUGIN_EXTENDED_READING");
    return variable != nullptr && (std::string_view(variable) == "1" || std::string_view(variable) == "true");
}

std::unique_ptr<HostMetaData> CheckedCase::metaData()
{
    auto fresh = std::make_unique<HostMetaData>();
    if (!callLibrary("getMetaData", [&] { return provider().getMetaData(fresh.get()); })) {
        throw HostError(ExitCode::Misbehaved, "getMetaData returned false");
    }
    return fresh;
}

std::unique_ptr<HostGeometry> CheckedCase::geometry()
{
    auto fresh = std::make_unique<HostGeometry>();
    const HostGeometrySpec spec;
    if (!callLibrary("getGeometry", [&] { return provider().getGeometry(spec, fresh.get()); })) {
        throw HostError(ExitCode::Misbehaved, "getGeometry returned false");
    }
    return fresh;
}

std::unique_ptr<HostResult> CheckedCase::result(std::int32_t resultId, std::int32_t stateId)
{
    auto fresh = std::make_unique<HostResult>();
    const HostResultSpec spec(resultId, stateId);
    const bool delivered = callLibrary("getResult", [&] { return provider().getResult(spec, fresh.get()); });
    return delivered ? std::move(fresh) : nullptr;
}

std::vector<HostNotice> CheckedCase::poll()
{
    HostNotifications notifications;
    m_opened.poll(&notifications);
    return notifications.notices;
}

void SoundGeometry::needCells() const
{
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i]->kind() == HostGroupKind::Part && geometry->elementGroups[i].elementCount() != 0) {
            return;
        }
    }
    throw CheckSkipped{"the case has no cells"};
}

CheckRun::CheckRun(CheckTask task, std::function<void(NoteKind, const std::string&)> report)
    : m_task(std::move(task)), m_report(std::move(report))
{}

void CheckRun::note(NoteKind kind, const std::string& text)
{
    std::size_t& count = m_counts[static_cast<std::size_t>(kind)];
    if (count < MOST_NOTES) {
        m_report(kind, text);
    }
    ++count;
}

std::unique_ptr<PluginLibrary> CheckRun::load(PluginLibrary::Registration answer) const
{
    auto library = std::make_unique<PluginLibrary>(m_task.library, answer);
    m_loaded = true;
    return library;
}

HostOptions CheckRun::options(const PluginLibrary& library) const
{
    std::vector<std::string> texts;
    for (const std::string& text : m_task.preferred) {
        const std::string key = text.substr(0, text.find('='));
        if (key == HostOptions::EXTENDED_READING || library.providerInfo().find(key) != nullptr) {
            texts.push_back(text);
        }
    }
    texts.insert(texts.end(), m_task.settings.begin(), m_task.settings.end());
    return HostOptions::parse(texts, library.providerInfo());
}

std::unique_ptr<CheckedCase> CheckRun::open(std::shared_ptr<PluginLibrary> library,
                                            const std::filesystem::path& casePath) const
{
    HostOptions given = options(*library);
    return std::make_unique<CheckedCase>(std::move(library), casePath, std::move(given));
}

SoundGeometry CheckRun::openGeometry() const
{
    SoundGeometry sound;
    sound.open = open();
    sound.metaData = sound.open->metaData();
    sound.geometry = sound.open->geometry();
    sound.groups = sound.metaData->geometryGroups();
    if (sound.geometry->elementGroups.empty() && sound.groups.empty()) {
        throw CheckSkipped{"the case has no groups"};
    }
    (void)padShortSurfaces(*sound.metaData, sound.geometry.get());
    sound.cutCells = emptyCutTables(*sound.metaData, sound.geometry.get());
    try {
        checkGeometry(*sound.metaData, *sound.geometry);
    } catch (const HostError& error) {
        throw CheckSkipped{error.what()};
    }
    return sound;
}

void noteCutCells(CheckRun& run, const std::string& group, const std::vector<std::size_t>& cutCells)
{
    if (!cutCells.empty()) {
        run.limit(CUT_TABLES,
                  fmt::format("{}: {} cell{} more faces or nodes than a byte can count, the first is {}", group,
                              cutCells.size(), cutCells.size() == 1 ? " has" : "s have", cutCells.front()));
    }
}

std::vector<const HostState*> sampleOfStates(const HostMetaData& metaData)
{
    std::vector<const HostState*> states;
    const std::size_t count = metaData.states.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (count <= FEW_STATES || i == 0 || i == count / 2 || i + 1 == count) {
            states.push_back(&metaData.states[i]);
        }
    }
    return states;
}
