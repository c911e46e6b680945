// SPDX-License-Identifier: MIT
#include "foamfile/Dictionary.h"

#include "LibCore/Limits.h"
#include "foamfile/CheckedLookup.h"
#include "foamfile/TextLines.h"

#include <algorithm>
#include <string_view>

namespace {

/// The line up to its first line end of either kind.
std::string_view upToLineEnd(std::string_view line)
{
    return line.substr(0, line.find_first_of("\r\n"));
}

/// Adds the entry of a "key value;" line, if the line is one and the key is new.
///
/// Compatibility (docs/compatibility.md, "shifted dictionary values"): the position of the value is counted from the
/// start of the line, not from the key.
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

bool Dictionary::readFile(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName,
                          std::map<dvn::Str, dvn::Str>* entries)
{
    static constexpr ListHeader::Messages MESSAGES = {
        .openFailed = "Failed to open dictionary file. File basename is %1",
        .wrongObject = "Unexpected object in dictionary file. File basename is %1",
        .wrongClass = "Unexpected class in dictionary file. File basename is %1"};
    if (!ListHeader::open(file, path, objectName, MESSAGES) || !ListHeader::checkClass(file, "dictionary", MESSAGES)) {
        return false;
    }
    std::string_view line;
    while (file.text.takeStreamPiece(&line)) {
        addDictionaryEntry(upToLineEnd(line), entries);
    }
    file.text.close();
    return true;
}

bool Dictionary::readBoundary(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName,
                              std::vector<OFBoundary>& boundaries, std::size_t partId)
{
    static constexpr ListHeader::Messages MESSAGES = {
        .openFailed = "Failed to open boundary file. File basename is %1",
        .wrongObject = "Unexpected object in dictionary file. File basename is %1",
        .noCount = "Failed to read number of boundaries in boundary file. File basename is %1",
        .badCount = "Invalid number of items in boundary file. File basename is %1"};
    int count = 0;
    if (!ListHeader::open(file, path, objectName, MESSAGES) ||
        !ListHeader::readCount(file, dvf::limits::BYTES_PER_PATCH, dvf::limits::LIST_COUNT, MESSAGES, &count)) {
        return false;
    }
    boundaries.resize(static_cast<std::size_t>(count));
    if (count == 0) {
        file.text.close();
        return true;
    }
    if (!file.text.skipPast('(')) {
        return false;
    }
    for (OFBoundary& boundary : boundaries) {
        const std::map<std::string, std::string> info = readBoundaryInfo(file.text);
        boundary.setPartId(static_cast<int>(partId));
        boundary.setPatchName(checkedLookup(info, std::string("patchName")));
        boundary.setType(checkedLookup(info, std::string("type")));
        // A negative count would turn into a huge one.
        const int faceCount = dvn::Str(checkedLookup(info, std::string("nFaces"))).toInt(0);
        boundary.setFaceCount(static_cast<std::size_t>(std::max(faceCount, 0)));
        boundary.setStartFaceIndex(dvn::Str(checkedLookup(info, std::string("startFace"))).toInt(0));
    }
    return true;
}

std::map<std::string, std::string> Dictionary::readBoundaryInfo(TextSource& text)
{
    enum class Sought
    {
        Name,
        Brace,
        Entry
    };
    Sought sought = Sought::Name;
    std::map<std::string, std::string> info;
    std::string_view line;
    while (text.takeStreamPiece(&line)) {
        line = withoutLineEnd(line);
        if (sought == Sought::Name) {
            // Whatever comes first is the name, even a comment.
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
