// SPDX-License-Identifier: MIT
#include "foamfile/FoamHeader.h"

#include "foamfile/CheckedLookup.h"
#include "foamfile/TextLines.h"

#include <string_view>

namespace {

/// What opens the header. A brace after this many characters opens it too.
constexpr std::string_view HEADER_NAME = "FoamFile";

/// Compatibility (docs/compatibility.md, "any line with a brace opens the header"): any long line with a brace in it
/// opens the block, whatever its first columns hold. This accepts "FoamFile{" as well as a name with blanks around it,
/// and no list starts with such a line.
bool opensBlockAtOnce(std::string_view line)
{
    return line.size() > HEADER_NAME.size() && line.find('{', HEADER_NAME.size()) != std::string_view::npos;
}

} // namespace

bool FoamHeader::read(TextSource& text)
{
    return skipToBlock(text) && readEntries(text);
}

bool FoamHeader::skipToBlock(TextSource& text)
{
    bool isNamed = false;
    std::string_view line;
    while (text.takeStreamPiece(&line)) {
        line = withoutLineEnd(line);
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

bool FoamHeader::readEntries(TextSource& text)
{
    std::string_view line;
    while (text.takeStreamPiece(&line)) {
        line = withoutLineEnd(line);
        if (line.starts_with('}')) {
            return true;
        }
        const std::size_t end = line.rfind(';');
        if (end == std::string_view::npos) {
            text.close();
            return false;
        }
        const KeyAndValue entry = splitKeyAndValue(line.substr(0, end));
        m_entries.emplace(entry.key, entry.value);
    }
    return false;
}

const std::string& FoamHeader::at(const char* key) const
{
    return checkedLookup(m_entries, std::string(key));
}

bool FoamHeader::has(const char* key, const dvn::Str& value) const
{
    const auto entry = m_entries.find(key);
    return entry != m_entries.end() && entry->second == value.toUtf8();
}
