// SPDX-License-Identifier: MIT
#include "foamfile/TextSource.h"

#include "LibCore/Limits.h"
#include "foamfile/GzStream.h"
#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"
#include "foamfile/TokenScanner.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace {

/// The length of the line that starts here, or one more than `most` if it is longer: a long line that is handed out in
/// pieces must not be scanned to its end for each of them.
std::size_t lineLength(const char* line, std::size_t most)
{
    if (most == TextSource::NO_LIMIT) {
        return std::strcspn(line, "\r\n");
    }
    std::size_t length = 0;
    while (length <= most && line[length] != '\0' && line[length] != '\r' && line[length] != '\n') {
        ++length;
    }
    return length;
}

/// Bytes of raw values that are converted at once: they fit the first cache of a core.
constexpr std::size_t RAW_BLOCK = 16384;
/// More line feeds than any writer puts between the "(" of a raw list and its first value.
constexpr std::size_t MOST_LINE_FEEDS = 16;

/// Reads raw values that are not in the form of the machine, block by block, and returns how many were read.
template <typename Value, typename Convert>
std::size_t readConverted(TextSource& text, std::size_t itemSize, const Convert& convert, Value* values,
                          std::size_t count)
{
    std::array<char, RAW_BLOCK> block;
    std::size_t done = 0;
    while (done < count) {
        const std::size_t wanted = std::min(count - done, block.size() / itemSize);
        const std::size_t came = text.readRaw(block.data(), itemSize, wanted);
        convert(block.data(), came, text.rawForm(), values + done);
        done += came;
        if (came < wanted) {
            break;
        }
    }
    return done;
}

} // namespace

TextSource::TextSource() = default;
TextSource::~TextSource() = default;

bool TextSource::open(const dvn::Str& path)
{
    close();
    m_path = path;
    if (path.isEmpty()) {
        return false;
    }
    // A compressed sibling comes first: solvers leave the plain file of an earlier run beside it. OpenFOAM itself, and
    // with it extended reading, takes the plain file.
    const dvn::Str zipped = path + ".gz";
    const bool takesPlain = m_reading == Reading::Extended && OFUtilities::isRegularFile(path);
    m_stream = GzStream::open(!takesPlain && OFUtilities::fileExists(zipped) ? zipped : path);
    m_isBinary = false;
    m_rawForm = RawForm();
    return m_stream != nullptr;
}

void TextSource::close()
{
    m_stream.reset();
    m_chunkBuffer.release();
    m_lineBuffer.release();
    m_position = Position();
    m_rest = Chunk();
}

bool TextSource::reportError(const char* message) const
{
    return OFLogger::get().logError("OFFile", dvn::Str(message).arg(m_path));
}

void TextSource::reportShortList(std::size_t promised, std::size_t found) const
{
    // The path is filled in last: it may hold a percent sign of its own.
    OFLogger::get().logInfo("OFFile",
                            dvn::Str("List is shorter than its count: %1 items promised, %2 found. File is %3")
                                .arg(promised)
                                .arg(found)
                                .arg(m_path));
}

bool TextSource::takePendingLine(std::size_t maxLength, std::string_view* line)
{
    if (!m_position.pending) {
        return false;
    }
    char* const first = m_position.cursor + std::strspn(m_position.cursor, "\r\n");
    const std::size_t length = lineLength(first, maxLength);
    if (first[length] == '\0' && length <= maxLength) {
        endPending();
        return false;
    }
    m_position.lastLineStart = m_position.cursor;
    m_position.cursor = first + std::min(length, maxLength);
    *line = std::string_view(first, std::min(length, maxLength));
    return true;
}

bool TextSource::takeStreamLine(std::string_view* line)
{
    m_position.lastLineStart = nullptr;
    if (m_stream == nullptr) {
        return false;
    }
    std::size_t length = 0;
    bool hasCome = false;
    bool isWhole = false;
    while (!isWhole) {
        // guard: stream-line
        m_lineBuffer.grow(length + LINE_BUFFER_SIZE, length);
        const std::size_t room = m_lineBuffer.capacity() - length;
        char* const piece = m_lineBuffer.data() + length;
        if (!m_stream->readLine(piece, room)) {
            *line = std::string_view(m_lineBuffer.data(), length);
            return hasCome;
        }
        hasCome = true;
        // A NUL in the line hides the rest of it, as it does from every reader of lines.
        const std::size_t came = std::strlen(piece);
        length += came;
        isWhole = came + 1 < room || piece[came - 1] == '\n';
    }
    *line = std::string_view(m_lineBuffer.data(), length);
    return true;
}

bool TextSource::readStreamLine(char* line)
{
    m_position.lastLineStart = nullptr;
    return m_stream != nullptr && m_stream->readLine(line, LINE_BUFFER_SIZE);
}

bool TextSource::takeStreamPiece(std::string_view* line)
{
    m_lineBuffer.grow(LINE_BUFFER_SIZE, 0);
    if (m_stream == nullptr || !m_stream->readLine(m_lineBuffer.data(), LINE_BUFFER_SIZE)) {
        return false;
    }
    *line = m_lineBuffer.data();
    return true;
}

bool TextSource::returnToLine()
{
    if (m_position.lastLineStart == nullptr) {
        return false;
    }
    m_position.cursor = m_position.lastLineStart;
    m_position.pending = true;
    return true;
}

void TextSource::repeatLine()
{
    if (returnToLine()) {
        m_position.lastLineStart = nullptr;
    }
}

void TextSource::keepPending(char* cursor)
{
    m_position.cursor = cursor;
    m_position.pending = true;
}

bool TextSource::nextChunk(ChunkBuffer* buffer, Chunk* chunk)
{
    if (m_position.pending) {
        char* const cursor = m_position.cursor;
        // The end found last is also the end of every later rest of the chunk. It is kept because the last line of a
        // chunk may be as long as the file, and many short lists may each ask for a rest.
        if (m_rest.begin == nullptr || cursor < m_rest.begin || cursor > m_rest.end) {
            m_rest = {cursor, cursor + std::strlen(cursor)};
        }
        *chunk = {cursor, m_rest.end};
        endPending();
        return true;
    }
    if (m_stream == nullptr) {
        return false;
    }
    const std::size_t length = appendChunk(buffer, 0);
    *chunk = {buffer->data(), buffer->data() + length};
    return length != 0;
}

bool TextSource::makeChunkPending()
{
    Chunk chunk;
    if (!nextChunk(&chunk)) {
        return false;
    }
    keepPending(chunk.begin);
    return true;
}

std::size_t TextSource::appendChunk(ChunkBuffer* buffer, std::size_t used)
{
    m_rest = Chunk();
    buffer->grow(used + CHUNK_BUFFER_SIZE, used);
    const std::size_t came = m_stream == nullptr ? 0 : m_stream->read(buffer->data() + used, CHUNK_SIZE);
    std::size_t length = used + came;
    if (came != 0 && buffer->data()[length - 1] != '\n') {
        length = finishLine(buffer, length);
    }
    buffer->data()[length] = '\0';
    return length;
}

/// Appends bytes up to and with the next line feed to the `used` bytes of a buffer, which grows.
std::size_t TextSource::finishLine(ChunkBuffer* buffer, std::size_t used)
{
    for (;;) {
        // A whole list may be one line, so the line decides how large a chunk gets. guard: chunk-line
        buffer->grow(used + LINE_BUFFER_SIZE, used);
        const std::size_t room = buffer->capacity() - used - 1;
        const std::size_t came = m_stream->readToLineEnd(buffer->data() + used, room);
        used += came;
        if (came < room || buffer->data()[used - 1] == '\n') {
            return used;
        }
    }
}

bool TextSource::readChunkInto(char** chunk, std::size_t* length)
{
    if (m_stream == nullptr || (*chunk == nullptr && m_isBinary)) {
        return false;
    }
    if (*chunk == nullptr || m_chunkBuffer.contains(*chunk)) {
        *length = appendChunk(&m_chunkBuffer, 0);
        *chunk = m_chunkBuffer.data();
        return *length != 0;
    }
    constexpr std::size_t MARGIN = LINE_BUFFER_SIZE - 1;
    m_rest = Chunk();
    *length = m_stream->read(*chunk, CHUNK_SIZE);
    if (*length != 0 && (*chunk)[*length - 1] != '\n') {
        // guard: caller-chunk
        const std::size_t more = m_stream->readToLineEnd(*chunk + *length, MARGIN);
        *length += more;
        if (more == MARGIN && (*chunk)[*length - 1] != '\n') {
            m_chunkBuffer.grow(CHUNK_BUFFER_SIZE, 0);
            // The test above says that the chunk is not in the buffer that has just grown.
            // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete)
            std::memcpy(m_chunkBuffer.data(), *chunk, *length);
            *length = finishLine(&m_chunkBuffer, *length);
            *chunk = m_chunkBuffer.data();
        }
    }
    (*chunk)[*length] = '\0';
    return *length != 0;
}

std::string_view TextSource::peekLines(std::size_t size)
{
    const std::string_view text = m_stream == nullptr ? std::string_view() : m_stream->peek(size);
    return text.substr(0, text.rfind('\n') + 1);
}

void TextSource::stage(std::size_t size)
{
    m_stream->stage(size);
}

int TextSource::takeChunks(std::string_view lines, std::size_t used, std::size_t* bytes)
{
    int count = 0;
    *bytes = 0;
    while (used - *bytes >= CHUNK_SIZE) {
        const std::size_t lineEnd = lines.find('\n', *bytes + CHUNK_SIZE - 1);
        if (lineEnd == std::string_view::npos || lineEnd + 1 > used) {
            break;
        }
        *bytes = lineEnd + 1;
        ++count;
    }
    if (count != 0) {
        m_stream->take(*bytes);
    }
    return count;
}

TextSource::Token TextSource::readInt(char delimiter, int* value)
{
    const IntAttempt attempt = tryInt(delimiter);
    if (attempt.token == Token::Number) {
        *value = attempt.value;
    }
    return attempt.token;
}

TextSource::IntAttempt TextSource::tryInt(char delimiter)
{
    std::uint32_t sum = 0;
    std::size_t digits = 0;
    for (;;) {
        const int byte = nextByte();
        if (byte == GzStream::END_OF_DATA) {
            return {Token::EndOfFile, 0, digits, '\0'};
        }
        const char c = static_cast<char>(byte);
        // Compatibility (docs/compatibility.md, "wrapping labels and counts"): the reader of the list refuses a count
        // that comes out negative.
        const int value = static_cast<int>(sum);
        if (c == delimiter || c == '\r' || c == '(') {
            if (digits == 0) {
                return {Token::NoNumber, 0, digits, c};
            }
            if (c == '(') {
                m_stream->unread(c);
            }
            return {Token::Number, value, digits, c};
        }
        if (!TokenScanner::isDigit(c) || digits == dvf::limits::NUMBER_LENGTH) {
            return {Token::NoNumber, value, digits, c};
        }
        sum = sum * 10 + static_cast<std::uint32_t>(c - '0');
        ++digits;
    }
}

bool TextSource::readCount(int* value, char otherEnd)
{
    // Each failed attempt has used up the byte at which it stopped, so this ends.
    bool isAtLineStart = true;
    for (;;) {
        const IntAttempt attempt = tryInt('\n');
        if (attempt.token == Token::EndOfFile) {
            return false;
        }
        const bool isBlank = attempt.stop == ' ' || attempt.stop == '\t';
        const bool isFirstOfLine = isAtLineStart && attempt.digits != 0;
        const bool isOtherEnd = isFirstOfLine && otherEnd != '\0' && attempt.stop == otherEnd;
        if (isOtherEnd) {
            m_stream->unread(otherEnd);
        }
        if (attempt.token == Token::Number || isOtherEnd || (isFirstOfLine && isBlank && skipComment())) {
            *value = attempt.value;
            return true;
        }
        isAtLineStart = attempt.stop == '\n' || (isAtLineStart && isBlank && attempt.digits == 0);
    }
}

/// Skips blanks and a comment, with its line; false, with the byte that begins neither next, if there is none.
bool TextSource::skipComment()
{
    int byte = nextByte();
    while (byte == ' ' || byte == '\t') {
        byte = nextByte();
    }
    if (byte == '/') {
        byte = nextByte();
        if (byte == '/') {
            return skipPast('\n');
        }
    }
    if (byte != GzStream::END_OF_DATA) {
        m_stream->unread(static_cast<char>(byte));
    }
    return false;
}

bool TextSource::readCountLine(int* value)
{
    std::string_view line;
    while (takeLine(&line)) {
        // Text of a chunk ends at a NUL and not at the end of the line, so the digits need an end of their own.
        const std::size_t digits = std::min(line.find_first_not_of("0123456789"), line.size());
        const bool isWhole = digits == line.size() || line[digits] == ' ' || line[digits] == '\n';
        const char* cursor = line.data();
        if (isWhole && TokenScanner::scanLabel(cursor, value)) {
            return true;
        }
    }
    return false;
}

bool TextSource::skipPast(char c)
{
    if (m_position.pending) {
        char* const hit = std::strchr(m_position.cursor, c);
        if (hit != nullptr && *hit != '\0') {
            m_position.cursor = hit + 1;
            return true;
        }
        endPending();
    }
    return m_stream != nullptr && m_stream->skipPast(c);
}

bool TextSource::skipLineFeeds()
{
    if (m_position.pending) {
        m_position.cursor += std::strspn(m_position.cursor, "\n");
        if (*m_position.cursor != '\0') {
            return true;
        }
        endPending();
    }
    if (m_stream == nullptr) {
        return false;
    }
    int byte = m_stream->nextByte();
    // The end of the file at the very first byte counts as something that is not a line feed.
    if (byte == GzStream::END_OF_DATA) {
        return true;
    }
    while (byte == '\n') {
        byte = m_stream->nextByte();
    }
    if (byte == GzStream::END_OF_DATA) {
        return false;
    }
    m_stream->unread(static_cast<char>(byte));
    return true;
}

bool TextSource::skipToList(std::uint64_t rawSize)
{
    if (!m_isBinary || m_reading == Reading::Plain) {
        return skipToList();
    }
    if (!skipPast('(')) {
        return false;
    }
    startRaw(rawSize);
    return true;
}

void TextSource::startRaw(std::uint64_t size)
{
    // Nearly every list starts with another byte, and then there is nothing to decide.
    if (!takeByte('\n')) {
        return;
    }
    m_stream->unread('\n');
    const std::string_view next = m_stream->peek(MOST_LINE_FEEDS);
    const std::size_t lineFeeds = std::min(next.find_first_not_of('\n'), next.size());
    // The fewest that fit: the others are part of the first value.
    for (std::size_t skipped = 0; skipped <= lineFeeds; ++skipped) {
        if (m_stream->byteAhead(skipped + size) == ')') {
            m_stream->take(skipped);
            return;
        }
    }
}

std::size_t TextSource::readRaw(void* target, std::size_t itemSize, std::size_t itemCount)
{
    return m_stream == nullptr ? 0 : m_stream->read(target, itemSize * itemCount) / itemSize;
}

std::size_t TextSource::readRawLabels(int* labels, std::size_t count)
{
    return m_rawForm.hasUsualLabels() ? readRaw(labels, sizeof(int), count)
                                      : readConverted(*this, m_rawForm.labelSize, labelsFromRaw, labels, count);
}

std::size_t TextSource::readRawReals(double* values, std::size_t count)
{
    return m_rawForm.hasUsualReals() ? readRaw(values, sizeof(double), count)
                                     : readConverted(*this, m_rawForm.realSize, realsFromRaw, values, count);
}

int TextSource::nextByte()
{
    return m_stream == nullptr ? GzStream::END_OF_DATA : m_stream->nextByte();
}

bool TextSource::takeByte(char byte)
{
    const int next = nextByte();
    if (next == static_cast<unsigned char>(byte)) {
        return true;
    }
    if (next != GzStream::END_OF_DATA) {
        m_stream->unread(static_cast<char>(next));
    }
    return false;
}

void TextSource::returnByte(char byte)
{
    if (m_stream != nullptr) {
        m_stream->unread(byte);
    }
}

void TextSource::skipRaw(std::uint64_t byteCount)
{
    if (m_stream != nullptr) {
        m_stream->skip(byteCount);
    }
}

bool TextSource::canHold(std::uint64_t itemCount, std::uint64_t bytesPerItem) const
{
    return m_stream != nullptr && itemCount <= std::numeric_limits<std::uint64_t>::max() / bytesPerItem &&
           m_stream->canHold(itemCount * bytesPerItem);
}
