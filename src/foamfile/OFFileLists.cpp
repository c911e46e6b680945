// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "LibCore/LargePages.h"
#include "foamfile/CheckedLookup.h"
#include "foamfile/GzStream.h"
#include "foamfile/ListMessages.h"
#include "foamfile/TokenScanner.h"

namespace {

/// Finds the number of cells in a note such as "nPoints:882  nCells:400  nFaces:1640  nInternalFaces:760".
bool cellCountFromNote(const dvn::Str& note, int* cellCount)
{
    const dvn::Str key("nCells:");
    const std::size_t cells = note.find(key);
    const std::size_t faces = note.find("nFaces:");
    // A text that is not there has the largest of positions, so a note without cells fails and one without faces does
    // not.
    if (cells >= faces) {
        return false;
    }
    // The text is longer than the number, which the conversion does not mind. A note may end behind the key.
    const std::size_t number = cells + key.size();
    *cellCount = number < note.size() ? note.subStr(number, faces).trimmed().toInt(0) : 0;
    return true;
}

} // namespace

bool OFFile::openOrReport(const dvn::Str& path, const ListMessages& messages)
{
    return open(path) || reportError(messages.openFailed);
}

bool OFFile::openWithObject(const dvn::Str& path, const dvn::Str& objectName, const ListMessages& messages)
{
    if (!openOrReport(path, messages)) {
        return false;
    }
    return checkedLookup(m_headerEntries, std::string("object")) == objectName.toUtf8() ||
           reportError(messages.wrongObject);
}

bool OFFile::readListCount(const ListMessages& messages, std::uint64_t bytesPerItem, int largest, int* count) const
{
    if (!readNextIntLine(count)) {
        return reportError(messages.noCount);
    }
    // Digits that overflowed come out negative.
    const bool isValid = *count >= 0 && *count <= largest && canHold(static_cast<std::uint64_t>(*count), bytesPerItem);
    return isValid || reportError(messages.badCount);
}

bool OFFile::readLabelList(const dvn::Str& path, const dvn::Str& objectName, std::vector<int>* labels, int* cellCount)
{
    static constexpr ListMessages MESSAGES = {"Failed to open labels file. File basename is %1",
                                              "Unexpected object in labels file. File basename is %1",
                                              "Unexpected class in labels file. File basename is %1",
                                              "Failed to read number of items in labels file. File basename is %1",
                                              "Invalid number of items in labels file. File basename is %1"};
    if (!openWithObject(path, objectName, MESSAGES)) {
        return false;
    }
    if (checkedLookup(m_headerEntries, std::string("class")) != "labelList") {
        return reportError(MESSAGES.wrongClass);
    }
    // Only `owner` and `neighbour` carry the note, so other label lists leave here, by exception or with the message.
    if (!cellCountFromNote(checkedLookup(m_headerEntries, std::string("note")), cellCount)) {
        return reportError("Failed to read number of cells in file. This info should be available as 'note' in the "
                           "header of File: %1");
    }
    int count = 0;
    if (!readListCount(MESSAGES, BYTES_PER_NUMBER, LARGEST_COUNT, &count)) {
        return false;
    }
    dvf::reserveLarge(labels, static_cast<std::size_t>(count));
    labels->resize(static_cast<std::size_t>(count));
    if (count != 0 && !readLabelsReportingShort(labels)) {
        return false;
    }
    close();
    return true;
}

bool OFFile::skipToList() const
{
    return skipAfterNext('(') && skipEmptyLines();
}

bool OFFile::readNextLabelList(std::vector<int>* labels)
{
    return skipToList() && readLabels(labels) == labels->size();
}

bool OFFile::readLabelsReportingShort(std::vector<int>* labels)
{
    if (!skipToList()) {
        return false;
    }
    const std::size_t found = readLabels(labels);
    if (found < labels->size()) {
        reportShortList(labels->size(), found);
    }
    return found == labels->size();
}

std::size_t OFFile::readLabels(std::vector<int>* labels) const
{
    return m_isBinary ? readRaw(labels->data(), sizeof(int), labels->size()) : walkLabels(labels);
}

bool OFFile::readNextLabelListAscii(std::vector<int>* labels)
{
    return walkLabels(labels) == labels->size();
}

bool OFFile::readNextLabelListBinary(std::vector<int>* labels)
{
    return readRaw(labels->data(), sizeof(int), labels->size()) == labels->size();
}

/// Reads labels to the end of the target or to the first text that is none, and tells how many came.
std::size_t OFFile::walkLabels(std::vector<int>* labels) const
{
    std::size_t done = 0;
    Chunk chunk;
    while (done < labels->size() && nextChunk(&m_chunkBuffer, &chunk)) {
        const char* p = chunk.begin;
        if (done != 0) {
            // Line feeds that a border cut off from the label before them.
            TokenScanner::skipLineFeeds(p);
        }
        while (done < labels->size() && *p != '\0') {
            // A ")" in place of a label is a list that is shorter than promised; it is no digit either.
            int label = 0;
            if (!TokenScanner::scanLabel(p, &label) || !TokenScanner::endsListItem(*p)) {
                return done;
            }
            (*labels)[done++] = label;
            TokenScanner::skipStop(p);
            TokenScanner::skipLineFeeds(p);
        }
        if (done == labels->size()) {
            // A zone goes on behind its labels in this chunk.
            keepPending(chunk.begin + (p - chunk.begin));
        }
    }
    return done;
}

std::size_t OFFile::readRaw(void* target, std::size_t itemSize, std::size_t itemCount) const
{
    return m_stream == nullptr ? 0 : m_stream->read(target, itemSize * itemCount) / itemSize;
}
