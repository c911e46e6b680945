// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/OFLogger.h"
#include "provider/PluginIdentity.h"

/// Logs a line under the name of the provider.
inline void logInfo(const dvn::Str& message)
{
    OFLogger::get().logInfo(PROVIDER_NAME, message);
}
