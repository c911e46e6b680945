// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "foamfile/GzStream.h"
#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"
#include "foamfile/TextLines.h"

#include <limits>

namespace {

/// Room made at once for the starts of the lines of a chunk.
constexpr std::size_t LINE_OFFSETS_RESERVE = 10000;
/// What opens the header, and the position from which on a brace does.
constexpr std::string_view HEADER_NAME = "FoamFile";
/// Tokens of a whole "dimensions" entry: the key and seven exponents.
constexpr std::size_t DIMENSION_TOKENS = 8;

/// Any long line with a brace in it opens the block, whatever stands in its first columns. Meant so: it takes
/// "FoamFile{" as well as a name with blanks around it, and no list starts with such a line.
bool opensBlockAtOnce(std::string_view line)
{
    return line.size() > HEADER_NAME.size() && line.find('{', HEADER_NAME.size()) != std::string_view::npos;
}

} // namespace

OFFile::OFFile(bool hasHeader) : m_hasHeader(hasHeader) {}

OFFile::~OFFile()
{
    close();
}

bool OFFile::hasFoamBlock(const dvn::Str& path)
{
    OFFile file(false);
    return file.open(path) && file.skipToHeaderBlock();
}

bool OFFile::open(const dvn::Str& path)
{
    close();
    m_path = path;
    if (path.isEmpty()) {
        return false;
    }
    // A compressed sibling comes first: solvers leave the plain file of an earlier run beside it.
    const dvn::Str zipped = path + ".gz";
    m_stream = GzStream::open(OFUtilities::fileExists(zipped) ? zipped : path);
    if (m_stream == nullptr) {
        return false;
    }
    m_lineBuffer.grow(LINE_BUFFER_SIZE, 0);
    m_isBinary = false;
    if (m_hasHeader && !readHeader()) {
        close();
        return false;
    }
    // Exactly this word: "binary " with a blank behind it is ascii, as the value is not trimmed.
    m_isBinary = m_hasHeader && headerIs("format", "binary");
    if (!m_isBinary) {
        m_chunkBuffer.grow(CHUNK_BUFFER_SIZE, 0);
    }
    m_lineOffsets.reserve(LINE_OFFSETS_RESERVE);
    return true;
}

void OFFile::close()
{
    m_stream.reset();
    m_chunkBuffer.release();
    m_lineBuffer.release();
    m_position = Position();
    m_rest = Chunk();
}

const std::map<std::string, std::string>& OFFile::headerMap() const
{
    return m_headerEntries;
}

bool OFFile::readHeader()
{
    return skipToHeaderBlock() && readHeaderEntries();
}

bool OFFile::skipToHeaderBlock() const
{
    bool isNamed = false;
    while (m_stream != nullptr && m_stream->readLine(m_lineBuffer.data(), LINE_BUFFER_SIZE)) {
        const std::string_view line = withoutLineEnd(m_lineBuffer.data());
        if (isNamed) {
            if (line.starts_with('{')) {
                return true;
            }
        } else if (opensBlockAtOnce(line)) {
            return true;
        } else {
            isNamed = line.starts_with(HEADER_NAME);
        }
    }
    return false;
}

bool OFFile::readHeaderEntries()
{
    while (m_stream->readLine(m_lineBuffer.data(), LINE_BUFFER_SIZE)) {
        const std::string_view line = withoutLineEnd(m_lineBuffer.data());
        if (line.starts_with('}')) {
            return true;
        }
        const std::size_t end = line.rfind(';');
        if (end == std::string_view::npos) {
            m_stream.reset();
            return false;
        }
        const KeyAndValue entry = splitKeyAndValue(line.substr(0, end));
        m_headerEntries.emplace(entry.key, entry.value);
    }
    return false;
}

bool OFFile::readDimensions(std::vector<dvn::Str>* tokens)
{
    std::string line;
    if (!getNextLineStartingWith("dimensions", line)) {
        return false;
    }
    *tokens = dvn::Str(line).split(" ", MOST_WORDS);
    return tokens->size() == DIMENSION_TOKENS;
}

bool OFFile::headerIs(const char* key, const dvn::Str& expected) const
{
    const auto entry = m_headerEntries.find(key);
    return entry != m_headerEntries.end() && entry->second == expected.toUtf8();
}

bool OFFile::reportError(const char* message) const
{
    return OFLogger::get().logError("OFFile", dvn::Str(message).arg(m_path));
}

void OFFile::reportShortList(std::size_t promised, std::size_t found) const
{
    // The path is filled in last: it may hold a percent sign of its own.
    OFLogger::get().logInfo("OFFile",
                            dvn::Str("List is shorter than its count: %1 items promised, %2 found. File is %3")
                                .arg(promised)
                                .arg(found)
                                .arg(m_path));
}

bool OFFile::canHold(std::uint64_t itemCount, std::uint64_t bytesPerItem) const
{
    return itemCount <= std::numeric_limits<std::uint64_t>::max() / bytesPerItem &&
           m_stream->canHold(itemCount * bytesPerItem);
}
