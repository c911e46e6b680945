// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "foamfile/CheckedLookup.h"
#include "foamfile/GzStream.h"
#include "foamfile/ListMessages.h"
#include "foamfile/TextLines.h"

#include <algorithm>
#include <string_view>

namespace {

/// What a patch takes of a file at the least: its name, its braces and three entries.
constexpr std::uint64_t BYTES_PER_PATCH = 16;

/// The line up to its first line end of either kind.
std::string_view upToLineEnd(std::string_view line)
{
    return line.substr(0, line.find_first_of("\r\n"));
}

/// Adds the entry of a "key value;" line, if the line is one and the key is new.
///
/// The value is counted off from the start of the line and not from where the key stands, so an indented line gives a
/// piece of the line that is shifted by its indentation. Callers look up keys that stand at the start of their line,
/// and what they get for others must stay what it is.
void addDictionaryEntry(std::string_view line, std::map<dvn::Str, dvn::Str>* entries)
{
    if (!line.ends_with(';')) {
        return;
    }
    line.remove_suffix(1);
    const std::string_view words = fromFirstWord(line);
    const std::size_t keyEnd = words.find(' ');
    if (keyEnd == std::string_view::npos || fromFirstWord(words.substr(keyEnd)).empty()) {
        return;
    }
    entries->emplace(std::string(words.substr(0, keyEnd)), std::string(fromFirstWord(line.substr(keyEnd))));
}

} // namespace

bool OFFile::readDictionary(const dvn::Str& path, const dvn::Str& objectName, std::map<dvn::Str, dvn::Str>* entries)
{
    static constexpr ListMessages MESSAGES = {"Failed to open dictionary file. File basename is %1",
                                              "Unexpected object in dictionary file. File basename is %1",
                                              "Unexpected class in dictionary file. File basename is %1", nullptr,
                                              nullptr};
    if (!openWithObject(path, objectName, MESSAGES)) {
        return false;
    }
    if (checkedLookup(m_headerEntries, std::string("class")) != "dictionary") {
        return reportError(MESSAGES.wrongClass);
    }
    while (m_stream->readLine(m_lineBuffer.data(), LINE_BUFFER_SIZE)) {
        addDictionaryEntry(upToLineEnd(m_lineBuffer.data()), entries);
    }
    close();
    return true;
}

bool OFFile::readBoundary(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFBoundary>& boundaries,
                          std::size_t partId)
{
    static constexpr ListMessages MESSAGES = {
        "Failed to open boundary file. File basename is %1",
        "Unexpected object in dictionary file. File basename is %1", nullptr,
        "Failed to read number of boundaries in boundary file. File basename is %1",
        "Invalid number of items in boundary file. File basename is %1"};
    if (!openWithObject(path, objectName, MESSAGES)) {
        return false;
    }
    int count = 0;
    if (!readListCount(MESSAGES, BYTES_PER_PATCH, LARGEST_COUNT, &count)) {
        return false;
    }
    boundaries.resize(static_cast<std::size_t>(count));
    if (count == 0) {
        close();
        return true;
    }
    if (!skipAfterNext('(')) {
        return false;
    }
    for (OFBoundary& boundary : boundaries) {
        const std::map<std::string, std::string> info = readBoundaryInfo();
        boundary.setPartId(static_cast<int>(partId));
        boundary.setPatchName(checkedLookup(info, std::string("patchName")));
        boundary.setType(checkedLookup(info, std::string("type")));
        // A count below zero would turn into the largest of all.
        const int faceCount = dvn::Str(checkedLookup(info, std::string("nFaces"))).toInt(0);
        boundary.setFaceCount(static_cast<std::size_t>(std::max(faceCount, 0)));
        boundary.setStartFaceIndex(dvn::Str(checkedLookup(info, std::string("startFace"))).toInt(0));
    }
    return true;
}

std::map<std::string, std::string> OFFile::readBoundaryInfo()
{
    enum class Sought
    {
        Name,
        Brace,
        Entry
    };
    Sought sought = Sought::Name;
    std::map<std::string, std::string> info;
    while (m_stream != nullptr && m_stream->readLine(m_lineBuffer.data(), LINE_BUFFER_SIZE)) {
        const std::string_view line = withoutLineEnd(m_lineBuffer.data());
        if (sought == Sought::Name) {
            // Whatever comes first is the name, a comment too.
            const std::string_view name = fromFirstWord(line);
            if (!name.empty()) {
                info.emplace("patchName", name);
                sought = Sought::Brace;
            }
        } else if (sought == Sought::Brace) {
            sought = trimmed(line) == "{" ? Sought::Entry : Sought::Brace;
        } else if (trimmed(line) == "}") {
            return info;
        } else if (const std::size_t end = line.rfind(';'); end != std::string_view::npos) {
            const KeyAndValue entry = splitKeyAndValue(line.substr(0, end));
            info.emplace(entry.key, entry.value);
        }
    }
    return info;
}
