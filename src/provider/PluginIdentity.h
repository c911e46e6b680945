// SPDX-License-Identifier: MIT
#pragma once

// How the plug-in identifies itself, at registration and in the log.

inline constexpr const char* PLUGIN_NAME = "OpenFoamPlugin";
/// Not the version of the release, which CMakeLists.txt gives: hosts know the plug-in by this one, so it stays.
inline constexpr const char* PLUGIN_VERSION = "1.9.99";
/// The name under which the factory is registered.
inline constexpr const char* PROVIDER_NAME = "OpenFoamProvider";
/// The name that a host shows.
inline constexpr const char* PROVIDER_DISPLAY_NAME = "OpenFoam DataProvider Reader";
/// The one file name that the provider opens; a literal name, not a pattern.
inline constexpr const char* PROVIDER_FILE_MASK = "case.foam";
