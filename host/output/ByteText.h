// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A number of bytes for people, such as "1.9 GB"; a kB is 1000 bytes.
std::string byteText(double bytes);
