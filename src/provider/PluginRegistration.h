// SPDX-License-Identifier: MIT
#pragma once

#include "interface/DataProviderInterface.h"

/// The whole work of the library's entry: installs the host's log callback, tells the host what the plug-in is and
/// registers the one factory. The host calls it once, on one thread.
///
/// @return `pluginExitFunc`, or null if the host refused the registration
DDPPluginExitFunction registerPlugin(const DDPPluginInitRecord& record);

/// Destroys a factory that was registered; null is ignored.
void destroyProviderFactory(DDPDataProviderFactory* factory);

/// Does nothing: no thread is the library's own, its code stays mapped for those of TBB, and the log callback stays for
/// lines on the way out.
void pluginExitFunc();
