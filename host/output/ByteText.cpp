// SPDX-License-Identifier: MIT
#include "output/ByteText.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>

std::string byteText(double bytes)
{
    constexpr std::array<const char*, 4> UNITS = {"kB", "MB", "GB", "TB"};
    if (bytes < 1000) {
        return fmt::format("{:.0f} bytes", bytes);
    }
    bytes /= 1000;
    std::size_t unit = 0;
    // 999950 and more would round to 1000.0.
    while (bytes >= 999.95 && unit + 1 < UNITS.size()) {
        bytes /= 1000;
        ++unit;
    }
    return fmt::format("{:.1f} {}", bytes, UNITS[unit]);
}
