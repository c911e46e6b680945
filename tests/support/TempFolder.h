// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"

#include <filesystem>
#include <string>
#include <string_view>

/// A new folder for the files of one test, removed with its content on destruction.
class TempFolder
{
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path operator/(const std::string& relative) const { return m_path / relative; }
    /// A path in the folder as the readers take it; the folder itself for an empty argument.
    dvn::Str str(const std::string& relative = {}) const;

    /// Writes or replaces a file and makes missing folders.
    void write(const std::string& relative, std::string_view bytes) const;
    /// The same, compressed. The name is used unchanged, so the caller appends ".gz".
    void writeGz(const std::string& relative, std::string_view bytes) const;

private:
    std::filesystem::path m_path;
};

/// The whole content of a file; throws if it cannot be read.
std::string fileBytes(const std::filesystem::path& path);

/// `bytes` as a gzip stream.
std::string gzipped(std::string_view bytes);
