// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// One case that this program writes for a check.
struct WrittenSample
{
    std::string name; ///< kind and form, as in "poly-binary"
    std::filesystem::path folder;
    std::vector<std::string> settings; ///< as KEY=VALUE, without which there would be less to see of it
};

/// The names of the built-in samples: every kind of case, and the plain one in every form of file.
std::vector<std::string> sampleNames();

/// Writes the built-in sample of this name into a folder of its name.
/// @throws HostError of `CannotWrite`, as the writing of cases does
WrittenSample writeSample(const std::string& name, const std::filesystem::path& folder);
