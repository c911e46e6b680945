// SPDX-License-Identifier: MIT
#include "foamfile/SurfaceValues.h"

#include "foamfile/ListAt.h"
#include "foamfile/ListHeader.h"
#include "foamfile/TensorItems.h"
#include "foamfile/TokenScanner.h"

#include <string_view>
#include <utility>

namespace {

/// Opens a file and reads on to its list.
bool openList(const dvn::Str& path, FoamFile* file, std::size_t* count)
{
    file->hasHeader = SurfaceValues::hasHeader(path);
    file->reading = Reading::Extended;
    int found = 0;
    // A count that overflowed may come out negative. A list of equal items opens with a brace.
    if (!file->open(path) || !file->text.readCount(&found, '{') || found < 0) {
        return false;
    }
    *count = static_cast<std::size_t>(found);
    return true;
}

} // namespace

bool SurfaceValues::hasHeader(const dvn::Str& path)
{
    TextSource text;
    if (!text.open(path)) {
        return false;
    }
    std::string_view line;
    while (text.takeStreamPiece(&line)) {
        // Lines of the comment before a header begin with neither.
        if (line.starts_with("FoamFile")) {
            return true;
        }
        if (!line.empty() && TokenScanner::isDigit(line.front())) {
            return false;
        }
    }
    return false;
}

std::optional<std::size_t> SurfaceValues::countItems(const dvn::Str& path)
{
    FoamFile file;
    std::size_t count = 0;
    if (!openList(path, &file, &count)) {
        return std::nullopt;
    }
    // The count of a compact list is that of the offsets.
    const bool isCompact = file.hasHeader && file.entry("class") == "faceCompactList";
    return isCompact && count != 0 ? count - 1 : count;
}

bool SurfaceValues::read(const dvn::Str& path, const ListItems& items, std::size_t count, std::vector<double>* values)
{
    FoamFile file;
    std::size_t found = 0;
    std::vector<double> list;
    bool isRead = openList(path, &file, &found) && found == count;
    if (isRead) {
        // Sized before reading, because a list of equal items may be longer than its file.
        list.resize(count * items.components);
        isRead = ListAt::readReals(file.text, count, items, &list);
    }
    if (!isRead) {
        return file.text.reportError("The values of a sampled surface cannot be read from %1");
    }
    *values = hostItems(items, std::move(list));
    return true;
}
