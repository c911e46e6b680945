// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

/// Draws a page in an installed Chromium, without a window, and saves the picture of its view as PNG.
/// @throws HostError of `CannotWrite` if there is no Chromium, with what to install, or if it does not draw the page
void savePicture(const std::filesystem::path& page, const std::filesystem::path& picture);

/// Opens a page in the user's browser and does not wait for it.
/// @return false if the desktop has nothing that opens files
bool openPage(const std::filesystem::path& page);
