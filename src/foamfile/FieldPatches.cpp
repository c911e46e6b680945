// SPDX-License-Identifier: MIT
#include "foamfile/FieldPatches.h"

#include "DvnCore/Timer.h"
#include "LibCore/Limits.h"
#include "LibCore/Parallel.h"
#include "foamfile/FieldInterior.h"
#include "foamfile/FieldList.h"
#include "foamfile/OFLogger.h"
#include "foamfile/TextLines.h"
#include "records/Components.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace {

using FieldPatches::Entries;

void logDebug(const dvn::Str& message)
{
    OFLogger::get().logDebug("OFFile", message);
}

/// Types whose faces take the value of their cell. Compatibility (docs/compatibility.md, "continued cell values").
bool continuesCellValue(std::string_view type)
{
    static constexpr std::array<std::string_view, 6> TYPES = {"zeroGradient", "empty",    "uniformFixedValue",
                                                              "slip",         "symmetry", "symmetryPlane"};
    return std::find(TYPES.begin(), TYPES.end(), type) != TYPES.end();
}

/// The number of a token without its first `skip` characters; 0.0 if there is none.
double tokenNumber(const std::vector<dvn::Str>& tokens, std::size_t index, std::size_t skip)
{
    // guard: token-length
    if (index >= tokens.size() || tokens[index].size() <= skip) {
        return 0.0;
    }
    return tokens[index].subStr(skip, tokens[index].size()).toDouble();
}

/// The numbers from the second token on. The first of them begins with "(", and the last ends at ")", where the
/// conversion stops by itself.
template <std::size_t COUNT>
std::array<double, COUNT> bracketedNumbers(const std::vector<dvn::Str>& tokens)
{
    std::array<double, COUNT> numbers = {};
    for (std::size_t i = 0; i < COUNT; ++i) {
        numbers[i] = tokenNumber(tokens, i + 1, i == 0 ? 1 : 0);
    }
    return numbers;
}

/// Copies the components of the mesh's item to each item of a patch.
///
/// Item i writes only the components of place i. Anything outside either array is left out: tensors are walked in steps
/// of nine over arrays that hold six, and a mapping may be older than the mesh.
struct CopyMeshItemFunctor
{
    std::vector<double>& target;
    const std::vector<double>& source;
    const std::vector<int>& ids;
    std::size_t components;

    void operator()(const dvf::IndexRange& range) const
    {
        for (std::size_t i = range.begin(); i != range.end(); ++i) {
            // guard: mesh-items
            if (i >= ids.size() || ids[i] < 0) {
                continue;
            }
            const std::size_t first = static_cast<std::size_t>(ids[i]) * components;
            if (first < source.size()) {
                std::copy_n(source.begin() + static_cast<std::ptrdiff_t>(first),
                            std::min(components, source.size() - first),
                            target.begin() + static_cast<std::ptrdiff_t>(i * components));
            }
        }
    }
};

/// Skips the raw list that a line announces by ending in its type.
void skipRawList(TextSource& text, std::string_view line)
{
    const std::size_t itemSize = rawBytesPerItem(line.substr(line.rfind(' ') + 1), text.rawForm());
    int count = 0;
    if (itemSize != 0 && text.readCount(&count) && count > 0 && text.skipPast('(')) {
        text.skipRaw(static_cast<std::uint64_t>(count) * itemSize);
    }
}

/// Takes a line of the boundary section, whole and without line end: from chunk after chunk, so that a long list costs
/// no more than one of the interior, or from the stream of a binary file.
///
/// A binary list that follows the line is skipped by its count, because raw values may look like any text. The list of
/// a "value" stays to be read if `keepsValues` says so.
bool takeLine(TextSource& text, bool keepsValues, std::string_view* line)
{
    if (text.isBinary()) {
        if (!text.takeStreamLine(line)) {
            return false;
        }
        *line = withoutLineEnd(*line);
        if (!keepsValues || splitKeyAndValue(*line).key != "value") {
            skipRawList(text, trimmed(*line));
        }
        return true;
    }
    while (!text.takePendingLine(TextSource::NO_LIMIT, line)) {
        if (!text.makeChunkPending()) {
            return false;
        }
    }
    return true;
}

/// Skips a block inside a patch and takes the line after it; false at the end of the file.
bool skipInnerBlock(TextSource& text, const std::string& patchName, std::string_view* line)
{
    logDebug(dvn::Str("Found internal Tree in BC :") + excerpt(patchName));
    // Blocks may hold blocks, as those of function tables do.
    for (std::size_t depth = 1; depth != 0;) {
        if (!takeLine(text, false, line)) {
            return false;
        }
        const std::string_view word = trimmed(*line);
        depth = word == "{" ? depth + 1 : word == "}" ? depth - 1 : depth;
    }
    if (!takeLine(text, true, line)) {
        return false;
    }
    logDebug(dvn::Str("Found closing char for internal Tree in BC :") + excerpt(patchName));
    return true;
}

/// Whether a line is "value" with a list on the lines after it, such as "value nonuniform List<scalar>".
bool announcesValues(std::string_view line)
{
    return splitKeyAndValue(line).key == "value" && trimmed(line).ends_with('>');
}

/// Goes on after a "refValue" or "valueFraction" to the next line that ends in ";", over the lines of its list if it
/// has one, or to the line that announces the list of the patch's "value". Returns whether that line is the "value".
///
/// Compatibility (docs/compatibility.md, "lines after refValue"): if it is not, the line is used up.
bool lookAheadForValue(TextSource& text, std::string* values)
{
    std::string_view line;
    do {
        if (!takeLine(text, true, &line)) {
            return false;
        }
    } while (!line.ends_with(';') && !announcesValues(line));
    const std::string_view words = fromFirstWord(line);
    const std::size_t keyEnd = words.substr(0, words.size() - 1).find(' ');
    if (keyEnd == std::string_view::npos || words.substr(0, keyEnd) != "value") {
        return false;
    }
    *values = words.substr(keyEnd);
    return true;
}

/// What a line of a patch did.
enum class EntryOutcome
{
    Open,
    Closed,
    Values
};

/// Adds the entry of a line to a patch and says whether the block ended there or its values begin.
///
/// @param[out] values the text after "value"
EntryOutcome readEntry(TextSource& text, std::string_view line, Entries* entries, std::string* values)
{
    if (trimmed(line) == "}") {
        return EntryOutcome::Closed;
    }
    const std::size_t semicolon = line.rfind(';');
    const std::size_t bracket = line.rfind('>');
    const bool isList = semicolon == std::string_view::npos && bracket != std::string_view::npos;
    if (!isList && semicolon == std::string_view::npos) {
        return EntryOutcome::Open;
    }
    const KeyAndValue entry = splitKeyAndValue(line.substr(0, isList ? bracket + 1 : semicolon));
    const std::string key(entry.key);
    entries->emplace(key, entry.value);
    *values = entry.value;
    if (key == "value") {
        return EntryOutcome::Values;
    }
    if (OFBoundary::isResultKeyString(key) && lookAheadForValue(text, values)) {
        return EntryOutcome::Values;
    }
    return EntryOutcome::Open;
}

/// Reads the raw list of a patch, or skips one that is neither of scalars nor of vectors. Raw values have no end that
/// can be seen, so the count in the file decides where the list ends, and an empty list has no brackets.
void readRawPatchList(TextSource& text, const std::string& type, bool isListOnKeyLine, std::vector<double>* values)
{
    if (isListOnKeyLine) {
        // Raw values never begin on the line of their key; a list there is empty, and the line is used up.
        return;
    }
    if (type != "List<scalar>" && type != "List<vector>") {
        skipRawList(text, type);
        return;
    }
    int count = 0;
    if (!text.readCount(&count) || count <= 0 || !text.skipPast('(')) {
        return;
    }
    const std::size_t realSize = text.rawForm().realSize;
    const std::uint64_t present = static_cast<std::uint64_t>(count) * rawBytesPerItem(type, text.rawForm()) / realSize;
    // guard: raw-patch-list
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(present, values->size()));
    static_cast<void>(text.readRawReals(values->data(), wanted));
    text.skipRaw((present - wanted) * realSize);
}

/// Reads the values of a patch from the text after "value", and returns its first token.
std::string readValues(TextSource& text, const dvn::Str& resultClass, const std::string& words,
                       std::vector<double>* values, bool* isListOnKeyLine)
{
    const std::vector<dvn::Str> tokens =
        dvn::Str(withoutBlanksInBrackets(words)).split(" ", dvf::limits::WORDS_OF_LINE);
    // guard: value-token
    if (tokens.empty()) {
        return {};
    }
    *isListOnKeyLine = tokens.size() > 2;
    if (tokens[0] == "uniform") {
        static_cast<void>(FieldPatches::readUniform(resultClass, tokens, values));
    } else if (tokens[0] == "nonuniform") {
        FieldPatches::readNonUniform(text, tokens, *isListOnKeyLine, values);
    }
    return tokens[0].toUtf8();
}

} // namespace

std::vector<Entries> FieldPatches::read(TextSource& text, const dvn::Str& resultClass,
                                        const std::vector<std::string>& names, std::vector<std::vector<double>>& values,
                                        bool* isListOnKeyLine)
{
    enum class Sought
    {
        Name,
        Brace,
        Entry
    };
    Sought sought = Sought::Name;
    std::vector<Entries> result(names.size());
    dvn::Timer timer;
    std::string_view line;
    const std::size_t patches = std::min(names.size(), values.size());
    std::size_t b = 0;
    while (b < patches && takeLine(text, sought == Sought::Entry, &line)) {
        if (sought == Sought::Name) {
            // Compatibility (docs/compatibility.md, "patches in mesh order"): only the next name is looked for.
            if (fromFirstWord(line) == names[b]) {
                result[b].emplace("patchName", names[b]);
                timer.restart();
                sought = Sought::Brace;
            }
            continue;
        }
        if (sought == Sought::Brace) {
            sought = trimmed(line) == "{" ? Sought::Entry : Sought::Brace;
            continue;
        }
        if (trimmed(line) == "{" && !skipInnerBlock(text, names[b], &line)) {
            break;
        }
        std::string words;
        const EntryOutcome outcome = readEntry(text, line, &result[b], &words);
        if (outcome == EntryOutcome::Open) {
            continue;
        }
        if (outcome == EntryOutcome::Values) {
            const std::string firstToken = readValues(text, resultClass, words, &values[b], isListOnKeyLine);
            const auto type = result[b].find("type");
            OFLogger::get().logDeveloper(
                "OFFile", dvn::Str("Boundary %1. Named %2 of Type %3 defined with %4 values. Time used : %5")
                              .arg(b)
                              .arg(excerpt(names[b]))
                              .arg(type == result[b].end() ? dvn::Str("UNFOUND") : excerpt(type->second))
                              .arg(excerpt(firstToken))
                              .arg(timer.time()));
        }
        // The rest of a block whose values have been read is skipped in the search for the next name.
        ++b;
        sought = Sought::Name;
    }
    return result;
}

bool FieldPatches::readUniform(const dvn::Str& resultClass, const std::vector<dvn::Str>& tokens,
                               std::vector<double>* values)
{
    logDebug("read uniform value");
    const int width = FieldInterior::valueCount(resultClass, 1);
    if (width == 1) {
        std::fill(values->begin(), values->end(), tokenNumber(tokens, 1, 0));
        return true;
    }
    if (width == 3) {
        const std::array<double, 3> numbers = bracketedNumbers<3>(tokens);
        // guard: uniform-vector
        for (std::size_t i = 0; i + 3 <= values->size(); i += 3) {
            std::copy(numbers.begin(), numbers.end(), values->begin() + static_cast<std::ptrdiff_t>(i));
        }
        return true;
    }
    if (width == 6) {
        // Compatibility (docs/compatibility.md, "tensor patches"): nine numbers at a time, in steps of three.
        const std::array<double, 9> numbers = bracketedNumbers<9>(tokens);
        // guard: uniform-tensor
        const std::size_t rounds = values->size() / numbers.size();
        for (std::size_t round = 0; round < rounds; ++round) {
            std::copy(numbers.begin(), numbers.end(), values->begin() + static_cast<std::ptrdiff_t>(3 * round));
        }
        return true;
    }
    return false;
}

void FieldPatches::readNonUniform(TextSource& text, const std::vector<dvn::Str>& tokens, bool isListOnKeyLine,
                                  std::vector<double>* values)
{
    logDebug("read Non-uniform value");
    if (isListOnKeyLine) {
        text.repeatLine();
    }
    // A list without a type, as the empty one of a patch without faces, holds nothing. If a list ends early, the array
    // has what was read and keeps the rest. guard: value-type
    const dvn::Str type = tokens.size() > 1 ? tokens[1] : dvn::Str();
    if (text.isBinary()) {
        readRawPatchList(text, type.toUtf8(), isListOnKeyLine, values);
    } else if (type == "List<scalar>") {
        static_cast<void>(FieldList::readNext(text, false, values));
    } else if (type == "List<vector>") {
        static_cast<void>(FieldList::readNext(text, true, values));
    } else if (type == "List<tensor>") {
        static_cast<void>(text.skipToList());
    }
}

bool FieldPatches::continuesCellValues(const Entries& entries)
{
    const auto type = entries.find("type");
    return type != entries.end() && continuesCellValue(type->second);
}

void FieldPatches::applyCellValues(const dvn::Str& resultClass, const std::vector<double>& values,
                                   const std::vector<OFBoundary>& boundaries, const std::vector<Entries>& entries,
                                   std::vector<std::vector<double>>* patchValues)
{
    const bool isOnCells = resultClass.startsWith("vol");
    if (!isOnCells && !resultClass.startsWith("point")) {
        return;
    }
    // Each index writes the array of its own patch.
    dvf::forLargeItems(std::min(boundaries.size(), patchValues->size()), [&](const dvf::IndexRange& range) {
        for (std::size_t i = range.begin(); i != range.end(); ++i) {
            if (continuesCellValues(entries[i])) {
                copyMeshItems(values,
                              isOnCells ? boundaries[i].faceToCellMapping() : boundaries[i].faceNodeToNodeMapping(),
                              static_cast<std::size_t>(resultSizeFromName(resultClass)), &(*patchValues)[i]);
            }
        }
    });
}

void FieldPatches::copyMeshItems(const std::vector<double>& meshValues, const std::vector<int>& meshItemIds,
                                 std::size_t componentCount, std::vector<double>* patchValues)
{
    if (componentCount != 0 && componentCount <= patchValues->size()) {
        dvf::forEachRange(patchValues->size() / componentCount,
                          CopyMeshItemFunctor{*patchValues, meshValues, meshItemIds, componentCount});
    }
    logDebug(dvn::Str("copy Cell data into Face : values copied %1").arg(patchValues->size()));
}

int resultSizeFromName(const dvn::Str& resultClass)
{
    constexpr int TENSOR_SIZE = 9;
    const std::optional<OFResultType> type = FieldInterior::typeOfClass(resultClass);
    if (!type) {
        OFLogger::get().logError("OFFile", dvn::Str("Unexpected result class name. Not supported %1").arg(resultClass));
        return 1;
    }
    return *type == OFResultTensor ? TENSOR_SIZE : *type == OFResultVector ? static_cast<int>(VECTOR_COMPONENTS) : 1;
}
