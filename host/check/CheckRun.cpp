// SPDX-License-Identifier: MIT
#include "check/CheckRun.h"

#include "border/DeliveryCheck.h"

#include <utility>

namespace {

// A broken array of a million entries gives a million findings, and nobody reads more than the first few.
constexpr std::size_t MOST_FINDINGS = 5;

constexpr std::size_t FEW_STATES = 3;

} // namespace

CheckedCase::CheckedCase(std::shared_ptr<PluginLibrary> library, const std::filesystem::path& casePath,
                         HostOptions options)
    : m_library(std::move(library)), m_options(std::move(options)), m_opened(*m_library, casePath, m_options)
{}

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

CheckRun::CheckRun(CheckTask task, std::function<void(const std::string&)> report)
    : m_task(std::move(task)), m_report(std::move(report))
{}

void CheckRun::fail(const std::string& finding)
{
    if (m_findings < MOST_FINDINGS) {
        m_report(finding);
    }
    ++m_findings;
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
    try {
        checkGeometry(*sound.metaData, *sound.geometry);
    } catch (const HostError& error) {
        throw CheckSkipped{error.what()};
    }
    return sound;
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
