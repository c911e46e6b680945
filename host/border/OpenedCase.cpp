// SPDX-License-Identifier: MIT
#include "border/OpenedCase.h"

#include "border/CutTables.h"
#include "border/DeliveryCheck.h"
#include "border/HostLog.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <system_error>

namespace {

namespace fs = std::filesystem;

// What the library expects; users may give the file another name to tell their cases apart.
constexpr const char* TOKEN_NAME = "case.foam";
constexpr const char* TOKEN_EXTENSION = ".foam";

/// Why a file cannot be read; empty if it can.
std::string readingFault(const fs::path& file)
{
    errno = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "r"), std::fclose);
    // A folder can be opened, but not read.
    const bool isReadable = stream != nullptr && (std::fgetc(stream.get()) != EOF || std::ferror(stream.get()) == 0);
    return isReadable ? std::string() : std::strerror(errno);
}

/// Says why the library did not open a case. The usual mistake, a folder that is not a case, has a line of its own, in
/// place of those of the library.
std::string refusalOf(const fs::path& folder)
{
    const fs::path description = folder / "system" / "controlDict";
    const std::string fault = readingFault(description);
    if (fault.empty() || readingFault(description.string() + ".gz").empty()) {
        return fmt::format("the library does not open {}", folder.string());
    }
    for (const HostLogLine& line : HostLog::get().lines()) {
        HostLog::get().markTold(line.text);
    }
    return fmt::format("not an OpenFOAM case: {} cannot be read ({})", description.string(), fault);
}

/// Takes out what the interface cannot hold, so that the rest can be walked.
/// @return a line for each group concerned
std::vector<std::string> emptyWhatIsCut(const HostMetaData& metaData, HostGeometry* geometry)
{
    std::vector<std::string> limits;
    const ElementsByGroup cut = emptyCutTables(metaData, geometry);
    const std::vector<const HostGroup*> declared = metaData.geometryGroups();
    for (std::size_t i = 0; i < cut.size() && i < declared.size(); ++i) {
        if (!cut[i].empty()) {
            limits.push_back(fmt::format("{}: {} cells have more faces or nodes than the interface counts and are left "
                                         "without faces (known limit, {})",
                                         declared[i]->name, cut[i].size(), CUT_TABLES));
        }
    }
    for (const std::string& name : padShortSurfaces(metaData, geometry)) {
        limits.push_back(
            fmt::format("{}: faces of fewer than three points show as points and lines (known limit)", name));
    }
    return limits;
}

} // namespace

fs::path OpenedCase::tokenFile(const fs::path& casePath)
{
    const fs::path absolute = fs::absolute(casePath).lexically_normal();
    std::error_code error;
    if (fs::is_directory(absolute, error)) {
        return absolute / TOKEN_NAME;
    }
    return absolute.extension() == TOKEN_EXTENSION ? absolute.parent_path() / TOKEN_NAME : absolute;
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
        std::error_code error;
        const char* const form =
            fs::exists(m_token, error) ? "{} is neither a folder nor a .foam file" : "{}: no such file or folder";
        throw HostError(ExitCode::CaseRefused, fmt::format(fmt::runtime(form), m_token.string()));
    }
    m_provider = callLibrary("createProviderInstance", [&] { return factory.createProviderInstance(); });
    if (m_provider == nullptr) {
        throw HostError(ExitCode::Misbehaved, "createProviderInstance returned no provider");
    }
    m_open = callLibrary("init", [&] { return m_provider->init(path, m_options, nullptr); }) != 0;
    if (!m_open) {
        throw HostError(ExitCode::CaseRefused, refusalOf(m_token.parent_path()));
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

const FoamNames& OpenedCase::names()
{
    if (!m_names) {
        m_names = std::make_unique<FoamNames>(m_token.parent_path(), metaData());
    }
    return *m_names;
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
        m_limits = emptyWhatIsCut(declared, fresh.get());
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
