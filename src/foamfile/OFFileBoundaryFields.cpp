// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "DvnCore/Timer.h"
#include "foamfile/CheckedLookup.h"
#include "foamfile/GzStream.h"
#include "foamfile/OFLogger.h"
#include "foamfile/TextLines.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

void logDebug(const dvn::Str& message)
{
    OFLogger::get().logDebug("OFFile", message);
}

/// Types whose faces take the value of their cell, whatever the file says of them.
bool continuesCellValue(std::string_view type)
{
    static constexpr std::array<std::string_view, 6> TYPES = {"zeroGradient", "empty",    "uniformFixedValue",
                                                              "slip",         "symmetry", "symmetryPlane"};
    return std::find(TYPES.begin(), TYPES.end(), type) != TYPES.end();
}

/// Bytes of one item of a raw list such as "List<vector>"; 0 for a type that is not known.
std::size_t rawItemSize(std::string_view listType)
{
    struct Type
    {
        std::string_view name;
        std::size_t size;
    };
    static constexpr std::array<Type, 7> TYPES = {{{"List<scalar>", 8},
                                                   {"List<vector>", 24},
                                                   {"List<tensor>", 72},
                                                   {"List<symmTensor>", 48},
                                                   {"List<sphericalTensor>", 8},
                                                   {"List<label>", 4},
                                                   {"List<bool>", 1}}};
    const auto type = std::find_if(TYPES.begin(), TYPES.end(), [&](const Type& t) { return t.name == listType; });
    return type == TYPES.end() ? 0 : type->size;
}

/// The number of a token, or 0.0 where there is none. `skip` characters are left off at its start.
double tokenNumber(const std::vector<dvn::Str>& tokens, std::size_t index, std::size_t skip)
{
    if (index >= tokens.size() || tokens[index].size() <= skip) {
        return 0.0;
    }
    return tokens[index].subStr(skip, tokens[index].size()).toDouble();
}

/// `count` numbers from the second token on. The first of them begins with "(", and the last ends at ")", which the
/// conversion stops at by itself.
template <std::size_t COUNT>
std::array<double, COUNT> bracketedNumbers(const std::vector<dvn::Str>& tokens)
{
    std::array<double, COUNT> numbers = {};
    for (std::size_t i = 0; i < COUNT; ++i) {
        numbers[i] = tokenNumber(tokens, i + 1, i == 0 ? 1 : 0);
    }
    return numbers;
}

/// Copies what each item of a patch has of components in the mesh.
///
/// Item i writes the components of place i alone. What lies outside of either array is left out: tensors are walked in
/// steps of nine over arrays that hold six, and a mapping may be older than the mesh.
struct CopyMeshItemFunctor
{
    std::vector<double>& target;
    const std::vector<double>& source;
    const std::vector<int>& ids;
    std::size_t components;

    void operator()(const tbb::blocked_range<std::size_t>& range) const
    {
        for (std::size_t i = range.begin(); i != range.end(); ++i) {
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

} // namespace

bool OFFile::readValuesOfCellAndBoundaries(const dvn::Str& path, const dvn::Str& objectName,
                                           const dvn::Str& resultClass, std::vector<double>* values,
                                           const std::vector<OFBoundary>& boundaries,
                                           std::vector<std::vector<double>>& boundaryValues)
{
    if (!readResult(path, objectName, resultClass, values)) {
        OFLogger::get().logInfo("OFFile", "Could not read result values for Cells");
        return false;
    }
    if (checkedLookup(m_headerEntries, std::string("class")) != resultClass.toUtf8()) {
        return true;
    }
    logDebug(dvn::Str("readed cells values for result %1").arg(objectName));
    std::string_view line;
    if (!takeLine(&line)) {
        OFLogger::get().logInfo("OFFile", "Problem parsing file");
        return false;
    }
    std::vector<std::string> names;
    names.reserve(boundaries.size());
    for (const OFBoundary& boundary : boundaries) {
        // As UTF-8, so that names beyond ASCII are found.
        names.push_back(boundary.patchName().toUtf8());
    }
    const std::vector<Entries> entries = readBoundariesResult(resultClass, names, boundaryValues);
    applyCellValues(resultClass, *values, boundaries, entries, &boundaryValues);
    return true;
}

/// Gives the patches whose type says so the values of their cells or points. Each pass writes the array of its own
/// patch.
void OFFile::applyCellValues(const dvn::Str& resultClass, const std::vector<double>& values,
                             const std::vector<OFBoundary>& boundaries, const std::vector<Entries>& entries,
                             std::vector<std::vector<double>>* boundaryValues) const
{
    const bool isOnCells = resultClass.startsWith("vol");
    if (!isOnCells && !resultClass.startsWith("point")) {
        return;
    }
    const auto apply = [&](const tbb::blocked_range<std::size_t>& range) {
        for (std::size_t i = range.begin(); i != range.end(); ++i) {
            if (shouldApplyCellValueInBoundaryFace(entries[i])) {
                const auto components = static_cast<std::size_t>(resultSizeFromName(resultClass));
                applyMeshItemValueInBoundaryItem(&(*boundaryValues)[i], components, &values,
                                                 isOnCells ? boundaries[i].faceToCellMapping()
                                                           : boundaries[i].faceNodeToNodeMapping());
            }
        }
    };
    const std::size_t patches = std::min(boundaries.size(), boundaryValues->size());
    tbb::task_group_context context;
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, patches, 1), apply, tbb::auto_partitioner(), context);
}

bool OFFile::shouldApplyCellValueInBoundaryFace(const std::map<std::string, std::string>& boundaryEntries) const
{
    const auto type = boundaryEntries.find("type");
    return type != boundaryEntries.end() && continuesCellValue(type->second);
}

bool OFFile::applyMeshItemValueInBoundaryItem(std::vector<double>* boundaryItemValues,
                                              const std::size_t& componentCount,
                                              const std::vector<double>* meshItemValues,
                                              const std::vector<int>& meshItemIds) const
{
    if (componentCount != 0 && componentCount <= boundaryItemValues->size()) {
        const std::size_t items = boundaryItemValues->size() / componentCount;
        tbb::task_group_context context;
        tbb::parallel_for(tbb::blocked_range<std::size_t>(0, items, 1),
                          CopyMeshItemFunctor{*boundaryItemValues, *meshItemValues, meshItemIds, componentCount},
                          tbb::auto_partitioner(), context);
    }
    logDebug(dvn::Str("copy Cell data into Face : values copied %1").arg(boundaryItemValues->size()));
    return true;
}

std::vector<std::map<std::string, std::string>>
OFFile::readBoundariesResult(const dvn::Str& resultClass, const std::vector<std::string>& names,
                             std::vector<std::vector<double>>& boundaryValues)
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
    const std::size_t patches = std::min(names.size(), boundaryValues.size());
    std::size_t b = 0;
    while (b < patches && takeBoundaryLine(sought == Sought::Entry, &line)) {
        if (sought == Sought::Name) {
            // Only the next name is looked for, so patches come in the order of the mesh, and a patch that is missing
            // takes all behind it along.
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
        if (trimmed(line) == "{" && !skipInnerBlock(names[b], &line)) {
            break;
        }
        std::string values;
        const EntryOutcome outcome = readPatchEntry(line, &result[b], &values);
        if (outcome == EntryOutcome::Open) {
            continue;
        }
        if (outcome == EntryOutcome::Values) {
            std::string firstToken;
            readPatchValues(resultClass, values, &boundaryValues[b], &firstToken);
            const auto type = result[b].find("type");
            OFLogger::get().logDeveloper(
                "OFFile", dvn::Str("Boundary %1. Named %2 of Type %3 defined with %4 values. Time used : %5")
                              .arg(b)
                              .arg(excerpt(names[b]))
                              .arg(type == result[b].end() ? dvn::Str("UNFOUND") : excerpt(type->second))
                              .arg(excerpt(firstToken))
                              .arg(timer.time()));
        }
        // The rest of a block whose values have been read passes by in the search for the next name.
        ++b;
        sought = Sought::Name;
    }
    return result;
}

/// Takes a line of the boundary section, whole and without line end: from chunk after chunk, so that a long list costs
/// no more than one of the interior, or from the stream of a binary file.
///
/// A binary list that follows the line is passed over by its count, because raw values may look like any text. The list
/// of a "value" stays to be read if `keepsValues` says so.
bool OFFile::takeBoundaryLine(bool keepsValues, std::string_view* line) const
{
    if (m_isBinary) {
        if (!takeStreamLine(line)) {
            return false;
        }
        *line = withoutLineEnd(*line);
        if (!keepsValues || splitKeyAndValue(*line).key != "value") {
            skipRawList(trimmed(*line));
        }
        return true;
    }
    while (!takePendingLine(std::string_view::npos, line)) {
        Chunk chunk;
        if (!nextChunk(&m_chunkBuffer, &chunk)) {
            return false;
        }
        keepPending(chunk.begin);
    }
    return true;
}

/// Passes over the raw list that a line announces by ending in its type.
void OFFile::skipRawList(std::string_view line) const
{
    const std::size_t itemSize = rawItemSize(line.substr(line.rfind(' ') + 1));
    int count = 0;
    if (itemSize != 0 && readNextIntLine(&count) && count > 0 && skipAfterNext('(')) {
        m_stream->skip(static_cast<std::uint64_t>(count) * itemSize);
    }
}

/// Passes over a block inside a patch and takes the line behind it; false at the end of the file.
bool OFFile::skipInnerBlock(const std::string& patchName, std::string_view* line) const
{
    logDebug(dvn::Str("Found internal Tree in BC :") + excerpt(patchName));
    do {
        if (!takeBoundaryLine(false, line)) {
            return false;
        }
    } while (trimmed(*line) != "}");
    if (!takeBoundaryLine(true, line)) {
        return false;
    }
    logDebug(dvn::Str("Found closing char for internal Tree in BC :") + excerpt(patchName));
    return true;
}

/// Adds the entry of a line to a patch and tells whether the block ended there or its values begin.
///
/// @param[out] values what stands behind "value"
OFFile::EntryOutcome OFFile::readPatchEntry(std::string_view line, Entries* entries, std::string* values) const
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
    if (OFBoundary::isResultKeyString(key) && lookAheadForValue(values)) {
        return EntryOutcome::Values;
    }
    return EntryOutcome::Open;
}

/// Goes on behind a "refValue" or "valueFraction" to the next line that ends in ";", over the lines of its list if it
/// has one, and tells whether that line is the patch's "value".
///
/// If it is not, the line is used up: the entries of a mixed patch are looked at in pairs. The values come last, and a
/// pair that swallows them without being asked to is no pair of OpenFOAM's.
bool OFFile::lookAheadForValue(std::string* values) const
{
    std::string_view line;
    do {
        if (!takeBoundaryLine(false, &line)) {
            return false;
        }
    } while (!line.ends_with(';'));
    const std::string_view words = fromFirstWord(line);
    const std::size_t keyEnd = words.substr(0, words.size() - 1).find(' ');
    if (keyEnd == std::string_view::npos || words.substr(0, keyEnd) != "value") {
        return false;
    }
    *values = words.substr(keyEnd);
    return true;
}

void OFFile::readPatchValues(const dvn::Str& resultClass, const std::string& text, std::vector<double>* values,
                             std::string* firstToken)
{
    std::vector<dvn::Str> tokens = dvn::Str(text).split(" ", MOST_WORDS);
    if (tokens.empty()) {
        return;
    }
    *firstToken = tokens[0].toUtf8();
    m_listOnKeyLine = tokens.size() > 2;
    if (tokens[0] == "uniform") {
        // What is no number counts as 0 there.
        static_cast<void>(readUniformValues(resultClass, tokens, values));
    } else if (tokens[0] == "nonuniform") {
        readNonUniformValues(tokens, values);
    }
}

bool OFFile::readUniformValues(const dvn::Str& resultClass, std::vector<dvn::Str>& tokens, std::vector<double>* values)
{
    logDebug("read uniform value");
    const int width = calculateNumberOfValues(resultClass, 1);
    if (width == 1) {
        std::fill(values->begin(), values->end(), tokenNumber(tokens, 1, 0));
        return true;
    }
    if (width == 3) {
        const std::array<double, 3> numbers = bracketedNumbers<3>(tokens);
        for (std::size_t i = 0; i + 3 <= values->size(); i += 3) {
            std::copy(numbers.begin(), numbers.end(), values->begin() + static_cast<std::ptrdiff_t>(i));
        }
        return true;
    }
    if (width == 6) {
        // Nine numbers at a time, in steps of three: the writes overlap, and about the first third of the array is
        // reached. Hosts show tensors of patches so, and it stays.
        const std::array<double, 9> numbers = bracketedNumbers<9>(tokens);
        const std::size_t rounds = values->size() / numbers.size();
        for (std::size_t round = 0; round < rounds; ++round) {
            std::copy(numbers.begin(), numbers.end(), values->begin() + static_cast<std::ptrdiff_t>(3 * round));
        }
        return true;
    }
    return false;
}

void OFFile::readNonUniformValues(std::vector<dvn::Str>& tokens, std::vector<double>* values)
{
    logDebug("read Non-uniform value");
    if (m_listOnKeyLine && m_position.lastLineStart != nullptr) {
        keepPending(m_position.lastLineStart);
        m_position.lastLineStart = nullptr;
    }
    // A list without a type, as the empty one of a patch without faces, holds nothing. Of a list that ends early the
    // array has what was read and keeps what it held behind that.
    const dvn::Str type = tokens.size() > 1 ? tokens[1] : dvn::Str();
    if (m_isBinary) {
        readRawPatchList(type.toUtf8(), values);
    } else if (type == "List<scalar>") {
        static_cast<void>(readNextVolScalarField(values));
    } else if (type == "List<vector>") {
        static_cast<void>(readNextVolVectorField(values));
    } else if (type == "List<tensor>") {
        static_cast<void>(skipToList());
    }
}

/// Reads the raw list of a patch, or passes over one that is neither of scalars nor of vectors. Raw values have no end
/// that can be seen, so the count in the file decides where the list ends, and an empty list has no brackets.
void OFFile::readRawPatchList(const std::string& type, std::vector<double>* values) const
{
    if (m_listOnKeyLine) {
        // Raw values never stand on the line of their key; what stands there is empty, and the line is used up.
        return;
    }
    if (type != "List<scalar>" && type != "List<vector>") {
        skipRawList(type);
        return;
    }
    int count = 0;
    if (!readNextIntLine(&count) || count <= 0 || !skipAfterNext('(')) {
        return;
    }
    const std::uint64_t present = static_cast<std::uint64_t>(count) * rawItemSize(type) / sizeof(double);
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(present, values->size()));
    static_cast<void>(readRaw(values->data(), sizeof(double), wanted));
    m_stream->skip((present - wanted) * sizeof(double));
}

dvn::Str OFFile::findValueKeys(const std::map<std::string, std::string>& boundaryEntries) const
{
    for (const auto& [key, value] : boundaryEntries) {
        if (OFBoundary::isResultKeyString(key)) {
            return value;
        }
    }
    return {};
}

bool OFFile::checkResultFile(const dvn::Str& path, const dvn::Str& objectName, const dvn::Str& resultClass)
{
    if (!open(path)) {
        return reportError("Failed to open boundary file. File basename is %1");
    }
    if (checkedLookup(m_headerEntries, std::string("object")) != objectName.toUtf8()) {
        return reportError("Unexpected object in dictionary file. File basename is %1");
    }
    if (checkedLookup(m_headerEntries, std::string("class")) != resultClass.toUtf8()) {
        return reportError("Unexpected class in result file. File basename is %1");
    }
    std::string line;
    return getNextLineStartingWith("boundaryField", line) && skipAfterNext('{');
}
