// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamfile/GrowingBuffer.h"
#include "foamfile/RawForm.h"
#include "foamfile/Reading.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

class GzStream;

/// Where the readers of one file take their text from: a stream of bytes, and the chunk of lines read from it last.
///
/// A chunk is 262144 bytes of the stream and the rest of the line in which they end. What a reader leaves of it is
/// pending: every operation takes text from the pending chunk first and goes on in the stream when that is used up.
/// Whatever bytes a file holds, nothing is read or written outside the buffers.
///
/// One thread at a time. Views and chunks that it hands out are valid until the next operation, unless a comment says
/// otherwise.
class TextSource
{
public:
    /// Bytes that one read of a chunk asks for.
    static constexpr std::size_t CHUNK_SIZE = 262144;
    /// Size of a line buffer, and by how much a chunk may grow to finish its last line before its buffer must grow.
    static constexpr std::size_t LINE_BUFFER_SIZE = 4096;
    /// Size of a buffer that a caller hands to `readChunkInto`.
    static constexpr std::size_t CHUNK_BUFFER_SIZE = CHUNK_SIZE + LINE_BUFFER_SIZE;

    /// Text handed to a parser; `end` is its NUL.
    struct Chunk
    {
        char* begin = nullptr;
        char* end = nullptr;
    };

    TextSource();
    ~TextSource();
    TextSource(const TextSource&) = delete;
    TextSource& operator=(const TextSource&) = delete;

    /// Opens `path` + ".gz" if that exists, else `path`, as text. Only a regular file is opened, so that a pipe or a
    /// device cannot block the host.
    bool open(const dvn::Str& path);
    /// Ends the stream and frees the buffers. Operations on a closed source find the end of the file.
    void close();
    bool isOpen() const { return m_stream != nullptr; }
    /// The path as given, also after a failed `open`.
    const dvn::Str& path() const { return m_path; }
    /// Whether lists hold raw values, as the header says. Lines of a binary file come from the stream, because a chunk
    /// has no end that can be seen in raw values.
    bool isBinary() const { return m_isBinary; }
    void setBinary(bool isBinary) { m_isBinary = isBinary; }
    /// How the lists of a binary file hold their values; usual until it is set.
    const RawForm& rawForm() const { return m_rawForm; }
    void setRawForm(const RawForm& form) { m_rawForm = form; }
    /// Which forms of lists are read, in this file and those opened later.
    Reading reading() const { return m_reading; }
    void setReading(Reading reading) { m_reading = reading; }

    // --- messages

    /// Logs an error about the file; %1 is its path. Always false.
    bool reportError(const char* message) const;
    /// Logs that a list is shorter than its count says.
    void reportShortList(std::size_t promised, std::size_t found) const;

    // --- lines

    /// Takes a line of any length, of the pending chunk or the stream. One of a chunk comes without its line end, one
    /// of the stream keeps it.
    bool takeLine(std::string_view* line) { return takePendingLine(NO_LIMIT, line) || takeStreamLine(line); }
    /// Takes up to `maxLength` characters of a line of the pending chunk, in place and without line end.
    ///
    /// Empty lines are skipped. Compatibility (docs/compatibility.md, "last line without line feed"): text after the
    /// last line feed of a chunk is dropped.
    bool takePendingLine(std::size_t maxLength, std::string_view* line);
    /// Takes a line of the stream, whatever its length; it keeps its line feed.
    bool takeStreamLine(std::string_view* line);
    /// Takes a line of the stream into `LINE_BUFFER_SIZE` bytes; a longer line comes in pieces.
    bool readStreamLine(char* line);
    /// Takes a line of the stream as text up to its first NUL; a line longer than the line buffer comes in pieces.
    bool takeStreamPiece(std::string_view* line);
    /// Puts the position back to the start of the line taken last, if that was one of a chunk.
    bool returnToLine();
    /// The same, once: another call before the next line does nothing.
    void repeatLine();
    static constexpr std::size_t NO_LIMIT = std::string_view::npos;

    // --- chunks

    bool isPending() const { return m_position.pending; }
    /// The unread rest of the pending chunk.
    char* cursor() const { return m_position.cursor; }
    /// Makes the rest of the chunk handed out last pending from `cursor` on.
    void keepPending(char* cursor);
    void keepPending(const Chunk& chunk, const char* cursor) { keepPending(chunk.begin + (cursor - chunk.begin)); }
    /// Drops what is pending.
    void endPending() { m_position = Position(); }
    /// The same for a caller who has taken the text at the cursor and may change it.
    void handOut()
    {
        m_rest = Chunk();
        endPending();
    }
    /// Hands out the pending rest, or reads a chunk; false at the end of the file. Nothing is pending then.
    bool nextChunk(Chunk* chunk) { return nextChunk(&m_chunkBuffer, chunk); }
    /// The same, but reads into a buffer of the caller, which grows; a pending rest stays where it is.
    bool nextChunk(ChunkBuffer* buffer, Chunk* chunk);
    /// Makes a chunk pending if none is; false at the end of the file.
    bool makeChunkPending();
    /// Reads `CHUNK_SIZE` bytes and on to the end of the line after the `used` bytes of a buffer, which grows.
    /// @return the bytes in the buffer, `used` at the end of the file; a NUL follows them
    std::size_t appendChunk(ChunkBuffer* buffer, std::size_t used);
    /// Reads a chunk into a buffer of `CHUNK_BUFFER_SIZE` bytes that cannot grow; where the last line is too long for
    /// it, or `*chunk` is null, the chunk comes in a buffer of this object and `*chunk` points there.
    bool readChunkInto(char** chunk, std::size_t* length);

    // --- looking ahead over several chunks; nothing may be pending

    /// The next whole lines of the stream, about `size` bytes, without taking them; empty if there is no line end among
    /// them. Valid until the next operation but `stage`.
    std::string_view peekLines(std::size_t size);
    /// Reads further text into memory while others parse the peeked lines. See `GzStream::stage`.
    void stage(std::size_t size);
    /// Takes those chunks off the start of peeked lines that end within the first `used` bytes, cut as `nextChunk`
    /// would cut them.
    /// @param[out] bytes how many bytes were taken
    /// @return the number of chunks
    int takeChunks(std::string_view lines, std::size_t used, std::size_t* bytes);

    // --- numbers

    /// The outcome of an attempt to read a number.
    enum class Token
    {
        Number,
        NoNumber,
        EndOfFile
    };
    /// Reads unsigned digits from the stream up to `delimiter`, a carriage return or "(", which stays to be read.
    ///
    /// Digits are added up unchecked, so a count that is too large wraps. A byte that fits nowhere ends the attempt and
    /// is used up, and so is a "(" without a digit before it.
    Token readInt(char delimiter, int* value);
    /// Reads the first run of digits in the stream that a line feed, a carriage return or "(" ends, and skips all else.
    /// This finds the count of a list after the header. A count that a line begins with may also be followed by a
    /// comment, as tools that edit dictionaries write it, "3 // entry0".
    ///
    /// @param otherEnd what may end such a count as well, and stays to be read: "{" of a list of equal items, "6{0}"
    bool readCount(int* value, char otherEnd = '\0');
    /// Reads the first line that begins with digits, up to a blank or its end, from the pending chunk or the stream.
    bool readCountLine(int* value);

    // --- skipping, raw values

    /// Advances past the next `c`; false at the end of the file.
    bool skipPast(char c);
    /// Advances past the line feeds at the position, in binary data as well; false if the file ends after one.
    bool skipLineFeeds();
    /// Advances past the next "(" and the line feeds after it, to the first item of a list.
    bool skipToList() { return skipPast('(') && skipLineFeeds(); }
    /// The same for a list that may be raw. In extended reading, `startRaw` then finds its first value.
    /// @param rawSize bytes of the list's values, if it is raw
    bool skipToList(std::uint64_t rawSize);
    /// Advances from the "(" of a raw list to its first value.
    ///
    /// OpenFOAM puts it right after the "(", where a byte that equals a line feed is part of it. Other writers add line
    /// feeds; these are skipped only if the list then ends on its ")", and otherwise does not.
    /// @param size bytes of the list's values
    void startRaw(std::uint64_t size);
    /// Reads items of the stream as they lie in memory, in the byte order of the machine, and returns how many were
    /// read.
    std::size_t readRaw(void* target, std::size_t itemSize, std::size_t itemCount);
    /// Reads labels of the file's raw form, and returns how many were read. A label that does not fit an int gives -1.
    std::size_t readRawLabels(int* labels, std::size_t count);
    /// Reads scalars of the file's raw form, and returns how many were read.
    std::size_t readRawReals(double* values, std::size_t count);
    /// The next byte of the stream, or -1.
    int nextByte();
    /// Takes the next byte of the stream if it is this one.
    bool takeByte(char byte);
    /// Puts back a byte of the stream that `nextByte` has just given.
    void returnByte(char byte);
    /// Skips bytes of the stream.
    void skipRaw(std::uint64_t byteCount);

    /// False if the file is too small for this many items, each of which takes at least `bytesPerItem` bytes of it.
    bool canHold(std::uint64_t itemCount, std::uint64_t bytesPerItem) const;

private:
    /// The reading position. All places are in the chunk buffer, or in the buffer of the caller who left text pending.
    struct Position
    {
        /// Start of the unread rest of the pending chunk.
        char* cursor = nullptr;
        /// Start of the line taken last from the pending chunk; null when it came from the stream.
        char* lastLineStart = nullptr;
        bool pending = false;
    };

    /// An attempt to read a number, with the digits found and the byte that ended them.
    struct IntAttempt
    {
        Token token;
        int value;
        std::size_t digits;
        char stop;
    };

    IntAttempt tryInt(char delimiter);
    bool skipComment();
    std::size_t finishLine(ChunkBuffer* buffer, std::size_t used);

    dvn::Str m_path;
    /// Null while no file is open.
    std::unique_ptr<GzStream> m_stream;
    bool m_isBinary = false;
    Reading m_reading = Reading::Plain;
    RawForm m_rawForm;
    ChunkBuffer m_chunkBuffer;
    ChunkBuffer m_lineBuffer;
    Position m_position;
    /// The pending rest whose end was found last; valid until text is read or handed out.
    Chunk m_rest;
};
