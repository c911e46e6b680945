// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamfile/GrowingBuffer.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

struct gzFile_s;

/// The bytes of one file, inflated where it is compressed and passed through where it is not.
///
/// Compressed data that is damaged or ends early reads as data that ends there, and one info line names the file. This
/// class is the only user of zlib. One thread at a time, except for `stage`.
class GzStream
{
public:
    /// What `nextByte` returns after the last byte.
    static constexpr int END_OF_DATA = -1;

    /// Opens a file, or returns null.
    ///
    /// Only a regular file is opened, through links: a pipe or a device in its place could block the host forever.
    static std::unique_ptr<GzStream> open(const dvn::Str& path);
    ~GzStream() = default;
    GzStream(const GzStream&) = delete;
    GzStream& operator=(const GzStream&) = delete;

    /// The next byte, or `END_OF_DATA`.
    int nextByte();
    /// Puts the byte read last back. A seek would inflate a compressed file again from its start.
    void unread(char byte);
    /// Advances past the next `sought`; false if the data ends first.
    bool skipPast(char sought);

    /// Takes up to `size` - 1 bytes up to and with a line feed and terminates them; false if the data has ended.
    bool readLine(char* buffer, std::size_t size);
    /// Takes up to `room` bytes up to and with a line feed, without terminating them, and returns their number; fewer
    /// than `room` without a line feed are the last of the data.
    std::size_t readToLineEnd(char* target, std::size_t room);
    /// Takes bytes until there are `size` or the data ends, and returns their number.
    std::size_t read(void* target, std::size_t size);
    /// Skips `size` bytes, or all that are left.
    void skip(std::uint64_t size);

    // --- looking ahead, for readers that parse a large piece of text at once

    /// Up to `size` of the bytes that come next, in one piece, without taking them; fewer only at the end of the data.
    /// Valid until the next call of anything but `stage`. A NUL follows the last byte that is in memory.
    std::string_view peek(std::size_t size);
    /// Reads up to `size` bytes more into memory, after those of the last `peek`. A worker may do this while others
    /// parse the peeked text. Damage is not reported before the bytes are taken.
    void stage(std::size_t size);
    /// The byte that comes after the next `distance` bytes, without taking any, or `END_OF_DATA`. Of a compressed file
    /// all of these are read into memory.
    int byteAhead(std::uint64_t distance);
    /// Takes the first `size` of the peeked bytes.
    void take(std::size_t size) { m_next += size; }

    /// Whether the file can hold this many bytes when inflated. A claim that honest files seldom make is not believed
    /// but checked against everything the file inflates to, which takes as long as reading it.
    bool canHold(std::uint64_t bytes);

private:
    struct Closer
    {
        void operator()(gzFile_s* handle) const;
    };

    using Handle = std::unique_ptr<gzFile_s, Closer>;

    GzStream(Handle handle, int descriptor, dvn::Str path, std::uint64_t sizeOnDisk);
    std::size_t readStored(char* target, std::size_t size);
    std::size_t readShared(char* target, std::size_t size);
    /// The bytes in memory that nobody has taken; those that were staged once the others are gone.
    std::string_view stored();
    void appendStaged(std::size_t unread);
    /// More bytes than the file can hold when inflated, from its size on disk.
    std::uint64_t contentLimit() const;
    std::uint64_t inflatedSize() const;
    void noteEnd();

    Handle m_handle;
    int m_descriptor; ///< the handle's own, which closes it
    dvn::Str m_path;
    std::uint64_t m_sizeOnDisk;
    bool m_damageTold = false;
    /// Known after the first request for it.
    std::optional<std::uint64_t> m_inflatedSize;

    /// Bytes read ahead of the caller: `m_next` up to `m_end` of `m_ahead`, then those of `m_staged`.
    ChunkBuffer m_ahead;
    std::size_t m_next = 0;
    std::size_t m_end = 0;
    /// Starts with room for the line that the text before it was cut in.
    ChunkBuffer m_staged;
    std::size_t m_stagedCount = 0;
};
