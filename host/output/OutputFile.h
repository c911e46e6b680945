// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

/// An output file of the host that is written from start to end.
///
/// Creating it fails if the file exists and `overwrite` is false, even if another program created the file a moment
/// ago, so no user data is lost. All members throw `HostError` of `CannotWrite`.
class OutputFile
{
public:
    OutputFile(const std::filesystem::path& path, bool overwrite);

    /// Closes the file and ignores errors; call `close` after writing.
    ~OutputFile();

    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Appends bytes.
    void write(const void* bytes, std::size_t count);
    void write(std::string_view text) { write(text.data(), text.size()); }

    /// Closes the file and throws unless all of it was written.
    void close();

    /// Bytes appended so far.
    std::uint64_t byteCount() const { return m_byteCount; }

private:
    [[noreturn]] void fail() const;

    std::filesystem::path m_path;
    std::FILE* m_file;
    std::uint64_t m_byteCount = 0;
};

/// Creates a folder and its parents.
/// @throws HostError of `CannotWrite`
void makeFolder(const std::filesystem::path& folder);

/// Removes a file, or a folder with all that is in it; what cannot be removed stays.
void removeQuietly(const std::filesystem::path& path);
