// SPDX-License-Identifier: MIT
#pragma once

namespace dvn {

/// The largest finite double. It marks a missing value in every array that reaches the host, and an unset reference
/// value of a state.
inline constexpr double UNDEFINED_DOUBLE = 1.7976931348623157e308;

} // namespace dvn
