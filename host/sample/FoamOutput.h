// SPDX-License-Identifier: MIT
#pragma once

#include "output/OutputFile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

/// How the lists of a case are stored.
struct FoamFormat
{
    bool binary = false; ///< 32-bit labels and 64-bit doubles in the order of this machine
    bool gzip = false;   ///< each file with the extension .gz, at OpenFOAM's level 6
};

/// The header of a file.
struct FoamHeader
{
    std::string_view className; ///< the type of the content, such as "vectorField"
    std::string_view location;  ///< folder below the case; left out if empty
    std::string_view object;    ///< name of the file without any extension
    std::string_view note;      ///< left out if empty
};

/// Writes one file in the OpenFOAM format, fast: with a large buffer and `std::to_chars`.
///
/// Numbers do not depend on the locale and look like OpenFOAM's general notation with six digits. If the same file
/// exists compressed and this one is plain, or the other way round, it is removed, since readers prefer a .gz to a
/// plain file. Throws as `OutputFile` does.
class FoamOutput
{
public:
    /// For dictionaries and the like: plain text, whatever the format of the lists.
    explicit FoamOutput(const std::filesystem::path& path) : FoamOutput(path, FoamFormat()) {}

    FoamOutput(const std::filesystem::path& path, const FoamFormat& format);
    ~FoamOutput();

    FoamOutput(const FoamOutput&) = delete;
    FoamOutput& operator=(const FoamOutput&) = delete;

    /// True if lists are written as raw bytes.
    bool binary() const { return m_format.binary; }

    /// Appends characters as they are.
    void text(std::string_view characters) { bytes(characters.data(), characters.size()); }
    /// Appends bytes as they are.
    void bytes(const void* data, std::size_t count);
    /// Appends an integer in decimal digits, whatever the format.
    void label(std::int64_t value);
    /// Appends a number in six digits, whatever the format.
    void scalar(double value);
    /// Appends three numbers in brackets.
    void vector(std::span<const double, 3> value);

    /// The banner, the `FoamFile` block and the line below it.
    void header(const FoamHeader& head);
    /// The line that ends a file; also flushes and closes it.
    void footer();
    /// Flushes and closes the file.
    void close();

    /// A list of labels as in `owner`: count, "(", labels, ")".
    void labelList(std::span<const std::int32_t> labels);
    /// A list of values of `dimension` components, 1 or 3, in the same form.
    void valueList(std::span<const double> values, std::size_t dimension);
    /// Faces: a `faceList`, or in binary the two lists of a `faceCompactList`.
    void faceList(std::span<const std::int32_t> offsets, std::span<const std::int32_t> nodes);

private:
    class Sink;

    /// Room for `count` bytes in the buffer, which is flushed first if they do not fit.
    char* room(std::size_t count);
    void flush();

    FoamFormat m_format;
    std::unique_ptr<Sink> m_sink;
    std::vector<char> m_buffer;
    std::size_t m_used = 0;
};
