// SPDX-License-Identifier: MIT
#pragma once

#include "interface/DataProviderInterface.h"

/// Does all the work of the library's entry: installs the host's log callback, describes the plug-in to the host and
/// registers the one factory. The host calls it once, on one thread.
///
/// @return `pluginExitFunc`, or null if the host refused the registration
DDPPluginExitFunction registerPlugin(const DDPPluginInitRecord& record);

/// Destroys a factory that was registered; null is ignored.
void destroyProviderFactory(DDPDataProviderFactory* factory);

/// Does nothing: the library has no threads, its code stays mapped for the threads of TBB, and the log callback stays
/// for lines logged during shutdown.
void pluginExitFunc();
