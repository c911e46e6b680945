// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

/// A file of the host's output that is written from start to end.
///
/// Creating it fails if the file exists and `overwrite` is false; so nothing of the user's is lost even if another
/// program made the file a moment ago. All members throw `HostError` of `CannotWrite`.
class OutputFile
{
public:
    OutputFile(const std::filesystem::path& path, bool overwrite);

    /// Closes the file silently; a writer that has done its work calls `close`.
    ~OutputFile();

    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Appends bytes.
    void write(const void* bytes, std::size_t count);
    void write(std::string_view text) { write(text.data(), text.size()); }

    /// Closes the file and tells whether all of it arrived on the disk's side.
    void close();

private:
    [[noreturn]] void fail() const;

    std::filesystem::path m_path;
    std::FILE* m_file;
};

/// Makes a folder and those above it.
/// @throws HostError of `CannotWrite`
void makeFolder(const std::filesystem::path& folder);
