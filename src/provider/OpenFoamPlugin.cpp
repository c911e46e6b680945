// SPDX-License-Identifier: MIT
#include "interface/DataProviderInterface.h"
#include "provider/PluginRegistration.h"

/// The one function that the library exports.
extern "C" __attribute__((visibility("default"))) DDPPluginExitFunction
initializeDataProviderPlugin(DDPPluginInitRecord* record);

DDPPluginExitFunction initializeDataProviderPlugin(DDPPluginInitRecord* record)
{
    return registerPlugin(*record);
}
