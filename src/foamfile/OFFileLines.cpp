// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "foamfile/GzStream.h"

#include <algorithm>
#include <cstring>

namespace {

/// The length of the line that starts here, or one more than `most` if it is longer: a long line that is handed out in
/// pieces must not be run over for each of them.
std::size_t lineLength(const char* line, std::size_t most)
{
    if (most == std::string_view::npos) {
        return std::strcspn(line, "\r\n");
    }
    std::size_t length = 0;
    while (length <= most && line[length] != '\0' && line[length] != '\r' && line[length] != '\n') {
        ++length;
    }
    return length;
}

} // namespace

bool OFFile::getNextLine(char** line) const
{
    if (copyPendingLine(*line)) {
        return true;
    }
    m_position.lastLineStart = nullptr;
    return m_stream != nullptr && m_stream->readLine(*line, LINE_BUFFER_SIZE);
}

bool OFFile::getNextLineUsingChunk(char** line) const
{
    Chunk chunk;
    if (!m_position.pending && !m_isBinary && nextChunk(&m_chunkBuffer, &chunk)) {
        keepPending(chunk.begin);
    }
    return getNextLine(line);
}

bool OFFile::getNonTreatedLine(char** line) const
{
    if (copyPendingLine(*line)) {
        return true;
    }
    **line = '\0';
    return false;
}

bool OFFile::getNextChunkOfLines(char** chunk, std::size_t* lastIndex) const
{
    if (m_position.pending) {
        return getNonTreatedChunk(chunk, lastIndex);
    }
    std::size_t length = 0;
    if (!readForeignChunk(chunk, &length)) {
        return false;
    }
    if (lastIndex != nullptr) {
        *lastIndex = length - 1;
    }
    return true;
}

bool OFFile::getNonTreatedChunk(char** chunk, std::size_t* lastIndex) const
{
    if (!m_position.pending) {
        if (*chunk != nullptr) {
            **chunk = '\0';
        }
        return true;
    }
    *chunk = m_position.cursor;
    // The caller may change what it gets.
    m_rest = Chunk();
    endPending();
    if (lastIndex != nullptr) {
        // Lands on the NUL when it starts from zero, one further than for a chunk just read. Callers know.
        *lastIndex += std::strlen(*chunk);
    }
    return true;
}

bool OFFile::getNextLineStartingWith(const std::string& prefix, std::string& line)
{
    std::string_view text;
    while (takeLine(&text)) {
        line = text;
        if (text.starts_with(prefix)) {
            return true;
        }
    }
    return false;
}

bool OFFile::skipAfterNext(char c) const
{
    if (m_position.pending) {
        char* const hit = std::strchr(m_position.cursor, c);
        if (hit != nullptr && *hit != '\0') {
            m_position.cursor = hit + 1;
            return true;
        }
        endPending();
    }
    return m_stream != nullptr && m_stream->skipBehind(c);
}

bool OFFile::skipEmptyLines() const
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
    // The end of the file at the very first byte counts as something that is no line feed.
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

bool OFFile::findName(const std::string& /*name*/) const
{
    return true;
}

void OFFile::keepPending(char* cursor) const
{
    m_position.cursor = cursor;
    m_position.pending = true;
}

void OFFile::endPending() const
{
    m_position = Position();
}

bool OFFile::takePendingLine(std::size_t maxLength, std::string_view* line) const
{
    if (!m_position.pending) {
        return false;
    }
    char* const first = m_position.cursor + std::strspn(m_position.cursor, "\r\n");
    const std::size_t length = lineLength(first, maxLength);
    if (first[length] == '\0' && length <= maxLength) {
        // A chunk ends at a line end, so text in front of its NUL is the rest of a file without a last line feed. It is
        // dropped: a value cut off in the middle would pass for a whole one.
        endPending();
        return false;
    }
    m_position.lastLineStart = m_position.cursor;
    m_position.cursor = first + std::min(length, maxLength);
    *line = std::string_view(first, std::min(length, maxLength));
    return true;
}

bool OFFile::copyPendingLine(char* target) const
{
    const bool wasPending = m_position.pending;
    std::string_view line;
    if (!takePendingLine(LINE_BUFFER_SIZE - 1, &line)) {
        if (wasPending) {
            *target = '\0';
        }
        return false;
    }
    std::memcpy(target, line.data(), line.size());
    target[line.size()] = '\0';
    return true;
}

bool OFFile::takeStreamLine(std::string_view* line) const
{
    m_position.lastLineStart = nullptr;
    if (m_stream == nullptr) {
        return false;
    }
    std::size_t length = 0;
    bool hasCome = false;
    bool isWhole = false;
    while (!isWhole) {
        m_lineBuffer.grow(length + LINE_BUFFER_SIZE, length);
        const std::size_t room = m_lineBuffer.capacity() - length;
        char* const piece = m_lineBuffer.data() + length;
        if (!m_stream->readLine(piece, room)) {
            *line = std::string_view(m_lineBuffer.data(), length);
            return hasCome;
        }
        hasCome = true;
        // A NUL in the line hides the rest of it, as it does for every reader of lines.
        const std::size_t came = std::strlen(piece);
        length += came;
        isWhole = came + 1 < room || piece[came - 1] == '\n';
    }
    *line = std::string_view(m_lineBuffer.data(), length);
    return true;
}

bool OFFile::takeLine(std::string_view* line) const
{
    return takePendingLine(std::string_view::npos, line) || takeStreamLine(line);
}

bool OFFile::nextChunk(ChunkBuffer* buffer, Chunk* chunk) const
{
    if (m_position.pending) {
        char* const cursor = m_position.cursor;
        // The end found last is that of every rest from there on: the last line of a chunk may be as long as the file,
        // and a rest is handed out for each of many short lists.
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

std::size_t OFFile::appendChunk(ChunkBuffer* buffer, std::size_t used) const
{
    m_rest = Chunk();
    buffer->grow(used + CHUNK_BUFFER_SIZE, used);
    const std::size_t came = m_stream->read(buffer->data() + used, CHUNK_SIZE);
    std::size_t length = used + came;
    if (came != 0 && buffer->data()[length - 1] != '\n') {
        length = finishLine(buffer, length);
    }
    buffer->data()[length] = '\0';
    return length;
}

std::size_t OFFile::finishLine(ChunkBuffer* buffer, std::size_t used) const
{
    for (;;) {
        // A whole list may stand on one line, so the line decides how large a chunk gets.
        buffer->grow(used + LINE_BUFFER_SIZE, used);
        const std::size_t room = buffer->capacity() - used - 1;
        const std::size_t came = m_stream->readToLineEnd(buffer->data() + used, room);
        used += came;
        if (came < room || buffer->data()[used - 1] == '\n') {
            return used;
        }
    }
}

/// Reads a chunk into the buffer of a caller, which cannot grow: a last line longer than its margin makes the chunk
/// move to the buffer of this object.
bool OFFile::readForeignChunk(char** chunk, std::size_t* length) const
{
    if (m_stream == nullptr || (*chunk == nullptr && m_isBinary)) {
        return false;
    }
    const bool isOwn = *chunk == nullptr || m_chunkBuffer.contains(*chunk);
    if (isOwn) {
        *length = appendChunk(&m_chunkBuffer, 0);
        *chunk = m_chunkBuffer.data();
        return *length != 0;
    }
    constexpr std::size_t MARGIN = LINE_BUFFER_SIZE - 1;
    m_rest = Chunk();
    *length = m_stream->read(*chunk, CHUNK_SIZE);
    if (*length != 0 && (*chunk)[*length - 1] != '\n') {
        const std::size_t more = m_stream->readToLineEnd(*chunk + *length, MARGIN);
        *length += more;
        if (more == MARGIN && (*chunk)[*length - 1] != '\n') {
            m_chunkBuffer.grow(CHUNK_BUFFER_SIZE, 0);
            // `isOwn` says that the chunk is not in the buffer that has grown.
            // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete)
            std::memcpy(m_chunkBuffer.data(), *chunk, *length);
            *length = finishLine(&m_chunkBuffer, *length);
            *chunk = m_chunkBuffer.data();
        }
    }
    (*chunk)[*length] = '\0';
    return *length != 0;
}
