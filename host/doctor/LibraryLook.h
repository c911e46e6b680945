// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// A library that another one is linked with.
struct LinkedLibrary
{
    std::string name; ///< as the library asks for it, such as "libz.so.1"
    std::string file; ///< where it was found; empty if it is not loaded
};

/// The libraries that a loaded library file asks for, in its order.
///
/// @param file of a library that this process has loaded; none are known of any other
std::vector<LinkedLibrary> linkedLibraries(const std::filesystem::path& file);

/// What helps if the library cannot be loaded, by the reason that the host gives; a clause.
std::string helpForRefusal(const std::string& reason);

/// Where the host looked for the library and what is there, as lines of "PLACE" and what it is.
///
/// @param given the file that the user named; empty if none
std::vector<std::pair<std::string, std::string>> searchedPlaces(const std::string& given);
