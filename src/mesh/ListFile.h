// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "DvnCore/Timer.h"
#include "foamfile/OFLogger.h"

#include <cstddef>

/// Logs that a list file was read: `message` takes the number of items and the time since `timer` was started.
/// @return true, so that a reader can end with it
inline bool logListRead(const char* group, const char* message, std::size_t items, const dvn::Timer& timer)
{
    const double seconds = timer.time();
    OFLogger::get().logDebug(group, dvn::Str(message).arg(static_cast<int>(items)).arg(seconds));
    return true;
}
