// SPDX-License-Identifier: MIT
#include "foamfile/LabelList.h"

#include "LibCore/LargePages.h"
#include "LibCore/Limits.h"
#include "foamfile/TokenScanner.h"

#include <algorithm>

namespace {

/// Finds the number of cells in a note such as "nPoints:882  nCells:400  nFaces:1640  nInternalFaces:760".
bool cellCountFromNote(const dvn::Str& note, int* cellCount)
{
    const dvn::Str key("nCells:");
    const std::size_t cells = note.find(key);
    const std::size_t faces = note.find("nFaces:");
    // `find` gives the largest position for a text that it does not find, so a note without cells fails and one without
    // faces does not.
    if (cells >= faces) {
        return false;
    }
    // The text is longer than the number, which does not affect the conversion. A note may end after the key.
    const std::size_t number = cells + key.size();
    *cellCount = number < note.size() ? note.subStr(number, faces).trimmed().toInt(0) : 0;
    return true;
}

/// What follows the count of a list of equal items.
constexpr char EQUAL_ITEMS = '{';

/// Reads a list of equal labels from its brace on, as a mesh of one cell has its owners: "6{0}".
bool readEqual(TextSource& text, std::vector<int>* labels)
{
    int label = 0;
    if (!text.takeByte(EQUAL_ITEMS) || text.readInt('}', &label) != TextSource::Token::Number) {
        return false;
    }
    std::fill(labels->begin(), labels->end(), label);
    return true;
}

} // namespace

bool LabelList::readFile(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, std::vector<int>* labels,
                         int* cellCount)
{
    static constexpr ListHeader::Messages MESSAGES = {
        .openFailed = "Failed to open labels file. File basename is %1",
        .wrongObject = "Unexpected object in labels file. File basename is %1",
        .wrongClass = "Unexpected class in labels file. File basename is %1",
        .noCount = "Failed to read number of items in labels file. File basename is %1",
        .badCount = "Invalid number of items in labels file. File basename is %1"};
    if (!ListHeader::open(file, path, objectName, MESSAGES) || !ListHeader::checkClass(file, "labelList", MESSAGES)) {
        return false;
    }
    // Only `owner` and `neighbour` carry the note, so in plain reading other label lists leave here, by exception or
    // with the message.
    if (!cellCountFromNote(file.entry("note"), cellCount)) {
        if (file.reading == Reading::Plain) {
            return file.text.reportError(NO_CELL_COUNT);
        }
        *cellCount = UNKNOWN_CELL_COUNT;
    }
    int count = 0;
    if (!ListHeader::readCount(file, dvf::limits::BYTES_PER_NUMBER, dvf::limits::LIST_COUNT, MESSAGES, &count,
                               EQUAL_ITEMS)) {
        return false;
    }
    dvf::reserveLarge(labels, static_cast<std::size_t>(count));
    labels->resize(static_cast<std::size_t>(count));
    if (count != 0 && !readEqual(file.text, labels) && !readNextReportingShort(file.text, labels)) {
        return false;
    }
    file.text.close();
    return true;
}

bool LabelList::readNextReportingShort(TextSource& text, std::vector<int>* labels)
{
    if (!text.skipToList(labels->size() * text.rawForm().labelSize)) {
        return false;
    }
    const std::size_t found = read(text, labels);
    if (found < labels->size()) {
        text.reportShortList(labels->size(), found);
    }
    return found == labels->size();
}

std::size_t LabelList::read(TextSource& text, std::vector<int>* labels)
{
    // guard: labels-binary
    return text.isBinary() ? text.readRawLabels(labels->data(), labels->size()) : walk(text, labels);
}

std::size_t LabelList::walk(TextSource& text, std::vector<int>* labels)
{
    std::size_t done = 0;
    TextSource::Chunk chunk;
    while (done < labels->size() && text.nextChunk(&chunk)) {
        const char* p = chunk.begin;
        if (done != 0) {
            // Line feeds that a chunk border cut off from the label before them.
            TokenScanner::skipLineFeeds(p);
        }
        // guard: labels-ascii
        while (done < labels->size() && *p != '\0') {
            // A ")" in place of a label means that the list is shorter than promised; it is not a digit either.
            int label = 0;
            if (!TokenScanner::scanLabel(p, &label) || !TokenScanner::endsListItem(*p)) {
                return done;
            }
            (*labels)[done++] = label;
            TokenScanner::skipStop(p);
            TokenScanner::skipLineFeeds(p);
        }
        if (done == labels->size()) {
            // A zone goes on after its labels in this chunk.
            text.keepPending(chunk, p);
        }
    }
    return done;
}
