// SPDX-License-Identifier: MIT
#include "provider/PluginRegistration.h"

#include "DvnCore/Str.h"
#include "foamfile/OFLogger.h"
#include "provider/OpenFoamProviderFactory.h"
#include "provider/PluginIdentity.h"

#include <string>

namespace {

void logStart()
{
    const OFLogger& logger = OFLogger::get();
    logger.logInfo(PLUGIN_NAME, "initializeDataProviderPlugin");
    logger.logInfo(PLUGIN_NAME, dvn::Str("  version: %1").arg(PLUGIN_VERSION));
    logger.logInfo(PLUGIN_NAME,
                   dvn::Str("  ddp api version: %1.%2").arg(DDP_API_VERSION_MAJOR).arg(DDP_API_VERSION_MINOR));
    logger.logInfo(PLUGIN_NAME, dvn::Str("  compiler info: %1").arg(DDPUtils::compilerInfoString()));
}

void tellPluginInfo(const DDPPluginInitRecord& record)
{
    record.setPluginInfo("name", PLUGIN_NAME);
    record.setPluginInfo("version", PLUGIN_VERSION);
    record.setPluginInfo("compiler", DDPUtils::compilerInfoString().c_str());
}

} // namespace

DDPPluginExitFunction registerPlugin(const DDPPluginInitRecord& record)
{
    OFLogger::get().init(record.pluginLogCallback);
    logStart();
    tellPluginInfo(record);

    // Only needed for the call; the host copies it. A factory that the host refused stays allocated: the host has seen
    // the pointer, and only the host knows whether it kept it.
    DDPFactoryRegistration registration = {DDP_API_VERSION_MAJOR, new OpenFoamProviderFactory, &destroyProviderFactory};
    if (record.registerProviderFactory(PROVIDER_NAME, &registration) == 0) {
        return nullptr;
    }
    return &pluginExitFunc;
}

void destroyProviderFactory(DDPDataProviderFactory* factory)
{
    delete factory;
}

void pluginExitFunc() {}
