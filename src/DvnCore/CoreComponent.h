// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"

namespace dvn {

/// Identity of the foundation layer.
class CoreComponent
{
public:
    /// The version of the foundation layer, as the log shows it.
    static Str versionString() { return Str("3.10.0"); }
};

} // namespace dvn
