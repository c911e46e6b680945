// SPDX-License-Identifier: MIT
#include "foamfile/Zones.h"

#include "LibCore/Limits.h"
#include "foamfile/LabelList.h"
#include "foamfile/OFLogger.h"
#include "foamfile/TextLines.h"
#include "foamfile/TokenScanner.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

namespace {

using Messages = ListHeader::Messages;

constexpr const char* PROBLEM = "Problem parsing file %1";

/// A line that starts a list and has at least this many words holds the count, too.
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
    // guard: uniform-flips
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        if (line[i] == '{') {
            flips->resize(faceCount, line[i + 1] - '0');
        }
    }
}

bool sizeList(TextSource& text, int count, const Messages& messages, std::vector<int>* labels)
{
    // guard: zone-count
    if (count < 0 || !text.canHold(static_cast<std::uint64_t>(count), dvf::limits::BYTES_PER_NUMBER)) {
        return text.reportError(messages.badCount);
    }
    labels->resize(static_cast<std::size_t>(count));
    return true;
}

/// Sizes the labels of a zone by a count on a line of its own.
bool readListCount(TextSource& text, const Messages& messages, std::vector<int>* labels)
{
    int count = 0;
    return text.readCountLine(&count) && sizeList(text, count, messages, labels);
}

bool openZones(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, const Messages& messages, int* count)
{
    return ListHeader::open(file, path, objectName, messages) &&
           ListHeader::readCount(file, dvf::limits::BYTES_PER_ZONE, dvf::limits::LIST_COUNT, messages, count);
}

// --- face zones

/// Reads the flips of a zone from the line that begins them; a line that ends in ">" is followed by a list.
///
/// Compatibility (docs/compatibility.md, "no flips in binary"): in a binary file the line is just the line feed after
/// the ";" of the labels, which counts as its last character, so the flips are skipped there. This keeps such files
/// readable: their flips are one byte each, not four.
bool readFlips(TextSource& text, std::string_view line, const Messages& messages, OFFaceZone* zone)
{
    const std::string_view flips = line.substr(0, line.find_last_not_of(' ') + 1);
    if (flips.ends_with('>')) {
        return readListCount(text, messages, &zone->flipMap()) &&
               LabelList::readNextReportingShort(text, &zone->flipMap());
    }
    fillUniformFlips(flips, zone->faceCount(), &zone->flipMap());
    return true;
}

bool readFaceZone(TextSource& text, const Messages& messages, OFFaceZone* zone)
{
    if (!text.skipLineFeeds()) {
        return false;
    }
    std::string_view line;
    if (!text.takeLine(&line)) {
        OFLogger::get().logInfo("OFFile", "Problem parsing file");
        return false;
    }
    zone->setName(std::string(trimmed(line)));
    if (!text.skipPast('{') || !readListCount(text, messages, &zone->faceIds()) ||
        !LabelList::readNextReportingShort(text, &zone->faceIds()) || !text.skipPast(';') || !text.takeLine(&line)) {
        return false;
    }
    // A chunk may end before the ";": then the stream still has the line feed after it, and the flips follow.
    if (!text.isBinary() && line == "\n" && !text.takeLine(&line)) {
        return false;
    }
    // A line of the stream keeps its line feed, one of a chunk has none; the outcome must not depend on it.
    return readFlips(text, text.isBinary() ? line : withoutLineEnd(line), messages, zone) && text.skipPast('}');
}

// --- cell zones

/// Takes a line, but first makes a chunk pending in a file that has chunks, from which the labels are then read.
bool takeLineOfChunk(TextSource& text, std::string_view* line)
{
    if ((!text.isBinary() && !text.makeChunkPending()) || !text.takeLine(line)) {
        return false;
    }
    // The words of the line are counted, and a line feed after a blank would be one.
    *line = withoutLineEnd(*line);
    return true;
}

/// Reads the count at the position in the pending chunk, after blanks, and stops at what ended it.
bool scanPendingCount(TextSource& text, int* count)
{
    if (!text.isPending()) {
        return false;
    }
    char* const cursor = text.cursor();
    const char* p = cursor + std::strspn(cursor, " ");
    if (!TokenScanner::scanLabel(p, count) || (*p != '(' && *p != ' ' && *p != '\n' && *p != '\0')) {
        return false;
    }
    text.keepPending(cursor + (p - cursor));
    return true;
}

/// Sizes the cells of a zone by the count on the list's line, or else by one on a line of its own.
bool readCellCount(TextSource& text, std::string_view line, const Messages& messages, OFCellZone* zone)
{
    int count = 0;
    if (wordCount(line) < WORDS_WITH_COUNT) {
        return (text.readCountLine(&count) || text.reportError(PROBLEM)) &&
               sizeList(text, count, messages, &zone->cellIds());
    }
    const dvn::Str name = excerpt(zone->name().toUtf8());
    // If the line came from the stream, it is used up; the count is then looked for after it.
    static_cast<void>(text.returnToLine());
    if (!text.skipPast('>')) {
        OFLogger::get().logInfo("OFFile",
                                dvn::Str("Unexpected format parsing %1 in file %2").arg(name).arg(text.path()));
    }
    if (!scanPendingCount(text, &count)) {
        return OFLogger::get().logError(
            "OFFile", dvn::Str("problem reading cell Count in cellZone %1 in file %2").arg(name).arg(text.path()));
    }
    return sizeList(text, count, messages, &zone->cellIds());
}

bool skipEmptyZone(TextSource& text, const OFCellZone& zone)
{
    if (!text.skipPast('}')) {
        return text.reportError(PROBLEM);
    }
    OFLogger::get().logInfo("OFFile", dvn::Str("Found empty list for cellIds in cellZone name %1 in file %2")
                                          .arg(excerpt(zone.name().toUtf8()))
                                          .arg(text.path()));
    return true;
}

bool readCellZone(TextSource& text, const Messages& messages, OFCellZone* zone, bool* isEmpty)
{
    std::string_view line;
    if (!text.skipLineFeeds() || !text.takeLine(&line)) {
        return text.reportError(PROBLEM);
    }
    zone->setName(std::string(trimmed(line)));
    // The line after the brace is the type.
    if (!text.skipPast('{') || !text.skipLineFeeds() || !text.takeLine(&line) || !text.skipLineFeeds() ||
        !takeLineOfChunk(text, &line)) {
        return text.reportError(PROBLEM);
    }
    *isEmpty = isEmptyList(line);
    if (*isEmpty) {
        return skipEmptyZone(text, *zone);
    }
    if (!readCellCount(text, line, messages, zone)) {
        return false;
    }
    return (LabelList::readNextReportingShort(text, &zone->cellIds()) && text.skipPast('}')) ||
           text.reportError(PROBLEM);
}

} // namespace

bool Zones::readFaceZones(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName,
                          std::vector<OFFaceZone>& zones, std::size_t partId)
{
    static constexpr Messages MESSAGES = {.openFailed = "Failed to open FaceZone file. File basename is %1",
                                          .wrongObject = "Unexpected object in dictionary file. File basename is %1",
                                          .noCount =
                                              "Failed to read number of FaceZones from file. File basename is %1",
                                          .badCount = "Invalid number of items in FaceZone file. File basename is %1"};
    zones.clear();
    int count = 0;
    if (!openZones(file, path, objectName, MESSAGES, &count)) {
        return false;
    }
    if (count != 0 && !file.text.skipPast('(')) {
        return false;
    }
    for (int id = 1; id <= count; ++id) {
        OFFaceZone zone;
        zone.setId(id);
        zone.setPartId(static_cast<int>(partId));
        if (!readFaceZone(file.text, MESSAGES, &zone)) {
            return false;
        }
        zones.push_back(std::move(zone));
    }
    file.text.close();
    return true;
}

bool Zones::readCellZones(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName,
                          std::vector<OFCellZone>& zones, std::size_t partId)
{
    static constexpr Messages MESSAGES = {.openFailed = "Failed to open CellZone file. File basename is %1",
                                          .wrongObject = "Unexpected object in dictionary file. File basename is %1",
                                          .noCount =
                                              "Failed to read number of CellZones from file. File basename is %1",
                                          .badCount = "Invalid number of items in CellZone file. File basename is %1"};
    zones.clear();
    int count = 0;
    if (!openZones(file, path, objectName, MESSAGES, &count)) {
        return false;
    }
    if (count == 0) {
        file.text.close();
        return true;
    }
    if (!file.text.skipPast('(')) {
        return file.text.reportError(PROBLEM);
    }
    for (int i = 0; i < count; ++i) {
        OFCellZone zone;
        bool isEmpty = false;
        if (!readCellZone(file.text, MESSAGES, &zone, &isEmpty)) {
            return false;
        }
        // An empty zone is dropped, so ids count the zones that have cells.
        if (!isEmpty) {
            zone.setPartId(static_cast<int>(partId));
            zone.setId(static_cast<int>(zones.size()) + 1);
            zones.push_back(std::move(zone));
        }
    }
    if (zones.empty()) {
        OFLogger::get().logInfo("OFFile", dvn::Str("Found CellZones with 0 Conten for file %1.").arg(path));
    }
    file.text.close();
    return true;
}
