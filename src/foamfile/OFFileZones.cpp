// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "foamfile/ListMessages.h"
#include "foamfile/OFLogger.h"
#include "foamfile/TextLines.h"
#include "foamfile/TokenScanner.h"

#include <algorithm>
#include <cstring>

namespace {

/// What a zone takes of a file at the least: its name, its braces, a type and a list.
constexpr std::uint64_t BYTES_PER_ZONE = 8;
/// Words of a list's line from which on the count of the list stands on that line.
constexpr std::size_t WORDS_WITH_COUNT = 3;

std::size_t wordCount(std::string_view line)
{
    std::size_t words = 0;
    for (std::string_view rest = fromFirstWord(line); !rest.empty(); ++words) {
        rest = fromFirstWord(rest.substr(std::min(rest.find(' '), rest.size())));
    }
    return words;
}

/// True for "cellLabels List<label> 0();" and for "cellLabels 0;", the form of an empty list in a binary file.
bool isEmptyList(std::string_view line)
{
    return line.find("0()") != std::string_view::npos || trimmed(line).ends_with(" 0;");
}

/// Fills the flips of a uniform line such as "flipMap List<bool> 12{0};"; only the first brace has an effect.
void fillUniformFlips(std::string_view line, std::size_t faceCount, std::vector<int>* flips)
{
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        if (line[i] == '{') {
            flips->resize(faceCount, line[i + 1] - '0');
        }
    }
}

} // namespace

bool OFFile::readFaceZones(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFFaceZone>& zones,
                           std::size_t partId)
{
    static constexpr ListMessages MESSAGES = {"Failed to open FaceZone file. File basename is %1",
                                              "Unexpected object in dictionary file. File basename is %1", nullptr,
                                              "Failed to read number of FaceZones from file. File basename is %1",
                                              "Invalid number of items in FaceZone file. File basename is %1"};
    int count = 0;
    if (!openWithObject(path, objectName, MESSAGES) ||
        !readListCount(MESSAGES, BYTES_PER_ZONE, LARGEST_COUNT, &count)) {
        return false;
    }
    zones.assign(static_cast<std::size_t>(count), OFFaceZone());
    if (count == 0) {
        close();
        return true;
    }
    if (!skipAfterNext('(')) {
        return false;
    }
    for (std::size_t i = 0; i < zones.size(); ++i) {
        zones[i].setId(static_cast<int>(i + 1));
        zones[i].setPartId(static_cast<int>(partId));
        if (!readFaceZone(MESSAGES, &zones[i])) {
            return false;
        }
    }
    close();
    return true;
}

bool OFFile::readFaceZone(const ListMessages& messages, OFFaceZone* zone)
{
    if (!skipEmptyLines()) {
        return false;
    }
    std::string_view line;
    if (!takeLine(&line)) {
        OFLogger::get().logInfo("OFFile", "Problem parsing file");
        return false;
    }
    zone->setName(std::string(trimmed(line)));
    if (!skipAfterNext('{') || !readZoneListCount(messages, &zone->faceIds()) ||
        !readLabelsReportingShort(&zone->faceIds()) || !skipAfterNext(';') || !takeLine(&line)) {
        return false;
    }
    // A chunk may end in front of the ";": then the stream still has the line feed behind it, and the flips follow.
    if (!m_isBinary && line == "\n" && !takeLine(&line)) {
        return false;
    }
    // A line of the stream keeps its line feed, one of a chunk has none; which of the two it is must not show.
    return readFlips(messages, m_isBinary ? line : withoutLineEnd(line), zone) && skipAfterNext('}');
}

/// Reads the flips of a zone from the line that begins them; a line that ends in ">" is followed by a list.
///
/// In a binary file the line is no more than the line feed behind the ";" of the labels, which counts as its last
/// character, so there the flips are passed over: it keeps such files readable, whose flips are one byte each and not
/// four.
bool OFFile::readFlips(const ListMessages& messages, std::string_view line, OFFaceZone* zone)
{
    const std::string_view text = line.substr(0, line.find_last_not_of(' ') + 1);
    if (text.ends_with('>')) {
        return readZoneListCount(messages, &zone->flipMap()) && readLabelsReportingShort(&zone->flipMap());
    }
    fillUniformFlips(text, zone->faceCount(), &zone->flipMap());
    return true;
}

/// Sizes the labels of a zone by a count that stands on a line of its own.
bool OFFile::readZoneListCount(const ListMessages& messages, std::vector<int>* labels)
{
    int count = 0;
    return readNextIntLineFromCurrentChunk(&count) && sizeZoneList(messages, count, labels);
}

bool OFFile::sizeZoneList(const ListMessages& messages, int count, std::vector<int>* labels)
{
    if (count < 0 || !canHold(static_cast<std::uint64_t>(count), BYTES_PER_NUMBER)) {
        return reportError(messages.badCount);
    }
    labels->resize(static_cast<std::size_t>(count));
    return true;
}

bool OFFile::readCellZones(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFCellZone>& zones,
                           std::size_t partId)
{
    static constexpr ListMessages MESSAGES = {"Failed to open CellZone file. File basename is %1",
                                              "Unexpected object in dictionary file. File basename is %1", nullptr,
                                              "Failed to read number of CellZones from file. File basename is %1",
                                              "Invalid number of items in CellZone file. File basename is %1"};
    int count = 0;
    if (!openWithObject(path, objectName, MESSAGES) ||
        !readListCount(MESSAGES, BYTES_PER_ZONE, LARGEST_COUNT, &count)) {
        return false;
    }
    zones.assign(static_cast<std::size_t>(count), OFCellZone());
    if (count == 0) {
        close();
        return true;
    }
    if (!skipAfterNext('(')) {
        return reportError("Problem parsing file %1");
    }
    std::size_t remaining = zones.size();
    for (std::size_t i = 0; i < remaining;) {
        bool isEmpty = false;
        if (!readCellZone(MESSAGES, &zones[i], &isEmpty)) {
            return false;
        }
        if (isEmpty) {
            // The next zone takes this one's place, so ids count the zones that have cells.
            --remaining;
            continue;
        }
        zones[i].setPartId(static_cast<int>(partId));
        zones[i].setId(static_cast<int>(i + 1));
        ++i;
    }
    if (remaining == 0) {
        OFLogger::get().logInfo("OFFile", dvn::Str("Found CellZones with 0 Conten for file %1.").arg(path));
    }
    zones.resize(remaining);
    close();
    return true;
}

bool OFFile::readCellZone(const ListMessages& messages, OFCellZone* zone, bool* isEmpty)
{
    std::string_view line;
    if (!skipEmptyLines() || !takeLine(&line)) {
        return reportError("Problem parsing file %1");
    }
    zone->setName(std::string(trimmed(line)));
    // The line behind the brace is the type.
    if (!skipAfterNext('{') || !skipEmptyLines() || !takeLine(&line) || !skipEmptyLines() || !takeLineOfChunk(&line)) {
        return reportError("Problem parsing file %1");
    }
    if (isEmptyList(line)) {
        *isEmpty = true;
        return skipEmptyZone(*zone);
    }
    if (!readCellZoneCount(messages, line, zone)) {
        return false;
    }
    return (readLabelsReportingShort(&zone->cellIds()) && skipAfterNext('}')) || reportError("Problem parsing file %1");
}

bool OFFile::skipEmptyZone(const OFCellZone& zone)
{
    if (!skipAfterNext('}')) {
        return reportError("Problem parsing file %1");
    }
    OFLogger::get().logInfo("OFFile", dvn::Str("Found empty list for cellIds in cellZone name %1 in file %2")
                                          .arg(excerpt(zone.name().toUtf8()))
                                          .arg(m_path));
    return true;
}

/// Takes a line, but first makes a chunk pending in a file that has chunks. Labels that follow are then read from it.
bool OFFile::takeLineOfChunk(std::string_view* line) const
{
    if (!m_isBinary) {
        Chunk chunk;
        if (!nextChunk(&m_chunkBuffer, &chunk)) {
            return false;
        }
        keepPending(chunk.begin);
    }
    if (!takeLine(line)) {
        return false;
    }
    // The words of a line are counted, and a line feed behind a blank would be one.
    *line = withoutLineEnd(*line);
    return true;
}

/// Sizes the cells of a zone by the count on the list's line, or else by one on a line of its own.
bool OFFile::readCellZoneCount(const ListMessages& messages, std::string_view line, OFCellZone* zone)
{
    int count = 0;
    if (wordCount(line) < WORDS_WITH_COUNT) {
        return (readNextIntLineFromCurrentChunk(&count) || reportError("Problem parsing file %1")) &&
               sizeZoneList(messages, count, &zone->cellIds());
    }
    if (m_position.lastLineStart != nullptr) {
        m_position.cursor = m_position.lastLineStart;
        m_position.pending = true;
    }
    if (!skipAfterNext('>')) {
        OFLogger::get().logInfo(
            "OFFile",
            dvn::Str("Unexpected format parsing %1 in file %2").arg(excerpt(zone->name().toUtf8())).arg(m_path));
    }
    if (!scanPendingCount(&count)) {
        return OFLogger::get().logError("OFFile", dvn::Str("problem reading cell Count in cellZone %1 in file %2")
                                                      .arg(excerpt(zone->name().toUtf8()))
                                                      .arg(m_path));
    }
    return sizeZoneList(messages, count, &zone->cellIds());
}

/// Reads the count at the position in the pending chunk, behind blanks, and stands on what ended it.
bool OFFile::scanPendingCount(int* count) const
{
    if (!m_position.pending) {
        return false;
    }
    const char* const first = m_position.cursor + std::strspn(m_position.cursor, " ");
    const char* p = first;
    if (!TokenScanner::scanLabel(p, count) || (*p != '(' && *p != ' ' && *p != '\n' && *p != '\0')) {
        return false;
    }
    m_position.cursor += p - m_position.cursor;
    return true;
}
