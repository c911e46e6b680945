// SPDX-License-Identifier: MIT
#include "provider/OpenFoamProvider.h"

#include "DvnCore/CoreComponent.h"
#include "provider/PluginIdentity.h"
#include "provider/ProviderLog.h"

#include <tbb/version.h>

#include <cstdlib>

namespace {

void logVersions(const DDPString& key)
{
    logInfo(dvn::Str("init(key = '%1')").arg(key.c_str()));
    logInfo(dvn::Str("Dalvorn Data Providers version: ") + PLUGIN_VERSION);
    logInfo(dvn::Str("Dalvorn Core Modules version: ") + dvn::CoreComponent::versionString());
    logInfo(dvn::Str("DDP API version: %1.%2").arg(DDP_API_VERSION_MAJOR).arg(DDP_API_VERSION_MINOR));
    logInfo(dvn::Str("Using Intel TBB version: %1.%2 (Interface version: %3) - Runtime interface: %4")
                .arg(TBB_VERSION_MAJOR)
                .arg(TBB_VERSION_MINOR)
                .arg(TBB_INTERFACE_VERSION)
                .arg(TBB_runtime_interface_version()));
}

/// The folder part of a path; empty if there is none.
dvn::Str folderOf(const DDPString& key)
{
    dvn::Str path(key.c_str());
    path.replace("\\", "/");
    const std::vector<dvn::Str> components = path.split("/");
    dvn::Str folder = path.startsWith("/") ? "/" : "";
    for (std::size_t i = 0; i + 1 < components.size(); ++i) {
        folder += i == 0 ? components[i] : "/" + components[i];
    }
    return components.empty() ? dvn::Str() : folder;
}

/// The value of a setting that the host passes, which goes into the log.
bool givenFlag(const DDPInitOptions& options, const DDPString& key)
{
    const bool value = options.boolOption(key);
    logInfo(dvn::Str(" - %1: %2").arg(key.c_str()).arg(value ? "ON" : "OFF"));
    return value;
}

} // namespace

std::int32_t OpenFoamProvider::init(const DDPString& key, const DDPInitOptions& options, DDPError* /*error*/)
{
    logVersions(key);
    applyUserReaderSettings(options);
    const dvn::Str folder = folderOf(key);
    // A bare file name has no folder: hosts pass full paths, and their working folder is not a case.
    if (folder.isEmpty()) {
        return 0;
    }
    return m_reader.init(folder) ? 1 : 0;
}

void OpenFoamProvider::close()
{
    m_reader.close();
}

void OpenFoamProvider::applyUserReaderSettings(const DDPInitOptions& options)
{
    logInfo("** User settings **");
    m_reader.setLoadGlobalMesh(getBoolUserSetting(options, OF_LOAD_GLOBAL_MESH));
    m_reader.setLoadLocalMeshes(getBoolUserSetting(options, OF_LOAD_LOCAL_MESHES));
    m_loadBoundaries = getBoolUserSetting(options, OF_LOAD_BOUNDARY_PARTS);
    m_reader.setLoadBoundariesFlag(m_loadBoundaries);
    m_reader.setLoadCellZonesFlag(getBoolUserSetting(options, OF_LOAD_CELL_ZONES));
    m_reader.setLoadFaceZonesFlag(getBoolUserSetting(options, OF_LOAD_FACE_ZONES));
    m_makeNodeAverageResults = getBoolUserSetting(options, OF_NODE_AVG_RESULTS);
    m_reader.setMakeNodeAverageResultFlag(m_makeNodeAverageResults);
    m_reader.setHideProcessorInterfacesAsBoundariesFlag(getBoolUserSetting(options, OF_HIDE_PARALLEL_INTERFACES));
    m_reader.setCustomResultNames(getStringUserSetting(options, OF_RESULTS_NAMES_MAPPING));
    m_reader.setReading(getReadingUserSetting(options));
    // A blank line separates the settings from what follows.
    logInfo(" ");
}

bool OpenFoamProvider::getBoolUserSetting(const DDPInitOptions& options, const OFInitOption& option) const
{
    return options.hasOption(option.key) ? givenFlag(options, option.key) : option.defaultValue;
}

DDPString OpenFoamProvider::getStringUserSetting(const DDPInitOptions& options, const OFInitOptionString& option) const
{
    if (!options.hasOption(option.key)) {
        return option.defaultValue;
    }
    DDPString value = *options.stringOption(option.key);
    logInfo(dvn::Str(" - %1: %2").arg(option.key.c_str()).arg("ENABLED"));
    return value;
}

Reading OpenFoamProvider::getReadingUserSetting(const DDPInitOptions& options) const
{
    if (options.hasOption(OF_EXTENDED_READING.key)) {
        return givenFlag(options, OF_EXTENDED_READING.key) ? Reading::Extended : Reading::Plain;
    }
    // Hosts call from one thread and do not change their environment while a case is opened.
    const char* const variable = std::getenv(EXTENDED_READING_VARIABLE); // NOLINT(concurrency-mt-unsafe)
    const dvn::Str text = variable == nullptr ? dvn::Str() : dvn::Str(variable).toLower();
    const bool isOn = text == dvn::Str("1") || text == dvn::Str("true");
    if (isOn) {
        logInfo(dvn::Str(" - %1: ON").arg(EXTENDED_READING_VARIABLE));
    } else if (!text.isEmpty() && text != dvn::Str("0") && text != dvn::Str("false")) {
        logInfo(dvn::Str(" - %1: '%2' is not one of 1, 0, true, false; it counts as 0")
                    .arg(EXTENDED_READING_VARIABLE)
                    .arg(excerpt(text.toUtf8())));
    }
    return isOn ? Reading::Extended : Reading::Plain;
}
