// SPDX-License-Identifier: MIT
#include "border/OpenedCase.h"

#include "border/DeliveryCheck.h"

#include <fmt/format.h>

#include <system_error>

std::filesystem::path OpenedCase::tokenFile(const std::filesystem::path& casePath)
{
    const std::filesystem::path absolute = std::filesystem::absolute(casePath).lexically_normal();
    std::error_code error;
    return std::filesystem::is_directory(absolute, error) ? absolute / "case.foam" : absolute;
}

OpenedCase::OpenedCase(PluginLibrary& library, const std::filesystem::path& casePath, const HostOptions& options)
    : m_library(library), m_token(tokenFile(casePath)), m_options(options)
{
    try {
        open();
    } catch (...) {
        release();
        throw;
    }
}

OpenedCase::~OpenedCase()
{
    release();
}

void OpenedCase::open()
{
    const DDPString path(m_token.c_str());
    DDPDataProviderFactory& factory = m_library.factory();
    if (!callLibrary("isSupportedByProvider", [&] { return factory.isSupportedByProvider(path); })) {
        throw HostError(ExitCode::CaseRefused, fmt::format("{} is neither a folder nor named {}", m_token.string(),
                                                           m_library.providerInfo().fileMask));
    }
    m_provider = callLibrary("createProviderInstance", [&] { return factory.createProviderInstance(); });
    if (m_provider == nullptr) {
        throw HostError(ExitCode::Misbehaved, "createProviderInstance returned no provider");
    }
    m_open = callLibrary("init", [&] { return m_provider->init(path, m_options, nullptr); }) != 0;
    if (!m_open) {
        throw HostError(ExitCode::CaseRefused, fmt::format("the provider does not open {}", m_token.string()));
    }
}

void OpenedCase::release()
{
    if (m_provider == nullptr) {
        return;
    }
    try {
        callLibrary("close", [this] {
            if (m_open) {
                m_provider->close();
            }
            m_library.factory().destroyProviderInstance(m_provider);
        });
    } catch (const HostError&) {
        // The object is on its way out, so a fault no longer matters.
    }
    m_provider = nullptr;
}

const HostMetaData& OpenedCase::metaData()
{
    if (!m_metaData) {
        auto fresh = std::make_unique<HostMetaData>();
        if (!callLibrary("getMetaData", [&] { return m_provider->getMetaData(fresh.get()); })) {
            throw HostError(ExitCode::CaseRefused, "the provider has no description of the case");
        }
        m_metaData = std::move(fresh);
    }
    return *m_metaData;
}

const HostGeometry& OpenedCase::geometry()
{
    if (!m_geometry) {
        const HostMetaData& declared = metaData();
        auto fresh = std::make_unique<HostGeometry>();
        const HostGeometrySpec spec;
        if (!callLibrary("getGeometry", [&] { return m_provider->getGeometry(spec, fresh.get()); })) {
            throw HostError(ExitCode::CaseRefused, "the provider has no geometry of the case");
        }
        checkGeometry(declared, *fresh);
        m_geometry = std::move(fresh);
    }
    return *m_geometry;
}

std::unique_ptr<HostResult> OpenedCase::result(const HostResultInfo& info, std::int32_t stateId)
{
    const HostGeometry& groups = geometry();
    auto fresh = std::make_unique<HostResult>();
    const HostResultSpec spec(info.id, stateId);
    const std::string operation = fmt::format("getResult of '{}'", info.name);
    if (!callLibrary(operation, [&] { return m_provider->getResult(spec, fresh.get()); })) {
        return nullptr;
    }
    checkResult(metaData(), groups, info, *fresh);
    return fresh;
}

void OpenedCase::poll(HostNotifications* notifications)
{
    callLibrary("pollForChanges", [&] { m_provider->pollForChanges(notifications); });
}
