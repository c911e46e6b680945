// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

/// What to tell a user who wants a picture on a machine without Chromium.
inline constexpr const char* NO_CHROMIUM =
    "a picture needs Chromium, which is not in PATH; as root, run: apt-get install --no-install-recommends chromium";

/// True if a Chromium, or a browser made of it, is in PATH.
bool hasChromium();

/// Draws a page in Chromium, without a window, and saves the picture of its view as PNG, over a file of that name.
/// @throws HostError of `CannotWrite` if there is no Chromium, or if it does not draw the page; then with the reason
void savePicture(const std::filesystem::path& page, const std::filesystem::path& picture);

/// Opens a page in the browser of the desktop.
/// @return false if the desktop has none
bool openPage(const std::filesystem::path& page);
