// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// One case that this program writes for the checks.
struct WrittenSample
{
    std::string name; ///< kind and form, such as "poly-binary"
    std::filesystem::path folder;
    std::vector<std::string> settings; ///< as KEY=VALUE; without them the library would deliver less of the case
};

/// The names of the built-in samples: every kind of case, and the simple one in every file format.
std::vector<std::string> sampleNames();

/// Writes the built-in sample of this name into a folder of the same name.
/// @throws HostError of `CannotWrite`, as `writeSampleCase` does
WrittenSample writeSample(const std::string& name, const std::filesystem::path& folder);
