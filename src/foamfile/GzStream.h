// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

struct gzFile_s;

/// The bytes of one file, inflated where it is compressed and passed through where it is not.
///
/// Compressed data that is damaged or ends early reads as data that ends there, and one info line names the file. All
/// of zlib stands behind this class. One thread at a time.
class GzStream
{
public:
    /// What a byte reads as behind the last one.
    static constexpr int END_OF_DATA = -1;

    /// Opens a file, or gives null.
    ///
    /// Only a regular file is opened, through links: a pipe or a device in its place could block the host for good.
    static std::unique_ptr<GzStream> open(const dvn::Str& path);
    ~GzStream() = default;
    GzStream(const GzStream&) = delete;
    GzStream& operator=(const GzStream&) = delete;

    /// The next byte, or `END_OF_DATA`.
    int nextByte();
    /// Puts back the byte read last. A seek would inflate a compressed file again from its start.
    void unread(char byte);
    /// Moves behind the next `sought`; false if the data ends first.
    bool skipBehind(char sought);

    /// Takes up to `size` - 1 bytes up to and with a line feed and terminates them; false if the data has ended.
    bool readLine(char* buffer, std::size_t size);
    /// Takes up to `room` bytes up to and with a line feed, without terminating them, and tells how many came; fewer
    /// than `room` without a line feed are the last of the data.
    std::size_t readToLineEnd(char* target, std::size_t room);
    /// Takes bytes until `size` have come or the data ends, and tells how many came.
    std::size_t read(void* target, std::size_t size);

    /// Passes over `size` bytes, or all that are left.
    void skip(std::uint64_t size);

    /// Whether the file can hold so many bytes when inflated. A claim that few files live up to is not believed but
    /// held against all that there is, which takes as long as reading the file.
    bool canHold(std::uint64_t bytes);

private:
    struct Closer
    {
        void operator()(gzFile_s* handle) const;
    };

    using Handle = std::unique_ptr<gzFile_s, Closer>;

    GzStream(Handle handle, int descriptor, dvn::Str path, std::uint64_t sizeOnDisk);
    std::size_t readShared(char* target, std::size_t size);
    /// More bytes than the file can hold when inflated, from its size on disk.
    std::uint64_t contentLimit() const;
    std::uint64_t inflatedSize() const;
    void noteEnd();

    Handle m_handle;
    int m_descriptor; ///< that of the handle, which closes it
    dvn::Str m_path;
    std::uint64_t m_sizeOnDisk;
    bool m_damageTold = false;
    /// Found out when it is asked for.
    std::optional<std::uint64_t> m_inflatedSize;
};
