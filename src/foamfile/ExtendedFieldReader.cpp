// SPDX-License-Identifier: MIT
#include "foamfile/ExtendedFieldReader.h"

#include "DvnCore/Undefined.h"
#include "LibCore/Numbers.h"
#include "foamfile/FieldPatches.h"
#include "foamfile/ListAt.h"
#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"
#include "foamfile/TensorItems.h"
#include "records/Components.h"

#include <algorithm>
#include <utility>

using foamdict::Dictionary;
using foamdict::Entry;
using foamdict::Token;

namespace {

constexpr std::string_view INTERIOR = "internalField";
/// The same in a file of the interior alone.
constexpr std::string_view INTERNAL_VALUES = "value";
constexpr std::string_view PATCHES = "boundaryField";
/// The normal component of a patch that lets the rest slip.
constexpr std::string_view FIXED_VALUE = "fixedValue";
/// Ascii lists up to this count are read token by token, since a macro may stand in them. Solvers write lists in lines
/// of their own from the next count on.
constexpr std::size_t SHORT_LIST = 10;

bool isInterior(const foamdict::ListPlace& place)
{
    return place.path.size() == 1 && (place.path.front() == INTERIOR || place.path.front() == INTERNAL_VALUES);
}

/// Whether a list may be shown on a patch: its values, or those of an entry that is used if it has none.
bool isOfPatchValues(const foamdict::ListPlace& place)
{
    constexpr std::size_t DEPTH = 3;
    return place.path.size() == DEPTH && place.path.front() == PATCHES &&
           (place.path.back() == "value" || place.path.back() == FIXED_VALUE ||
            PatchRules::isSubstitute(place.path.back()));
}

/// The block for a patch: that of its name, else that of the last group it is in, else that of the last expression
/// which matches its name. An expression that is meant for other patches does not count for one whose type leaves no
/// choice: OpenFOAM's own include for these would come before it.
const Dictionary* blockOfPatch(const Dictionary& patches, const OFBoundary& patch)
{
    const std::string name = patch.patchName().toUtf8();
    if (const Dictionary* const block = patches.block(name)) {
        return block;
    }
    const Entry* last = nullptr;
    for (const dvn::Str& group : patch.groups()) {
        const Entry* const entry = patches.find(group.toUtf8());
        if (entry != nullptr && entry->block != nullptr && (last == nullptr || entry > last)) {
            last = entry;
        }
    }
    if (last != nullptr) {
        return last->block.get();
    }
    const Entry* const pattern = patches.findPattern(name);
    const std::string meshType = patch.type().toUtf8();
    const bool counts = pattern != nullptr && pattern->block != nullptr &&
                        (!PatchRules::isConstraint(meshType) || firstWord(*pattern->block, "type") == meshType);
    return counts ? pattern->block.get() : nullptr;
}

/// The places of a patch's points in the order in which its faces name them, which is that of lists in files. The
/// host's order is ascending.
std::vector<std::size_t> placesOfPoints(const OFBoundary& patch)
{
    const std::vector<int>& nodes = patch.faceNodeToNodeMapping();
    std::vector<bool> isPlaced(nodes.size());
    std::vector<std::size_t> places;
    places.reserve(nodes.size());
    for (const int node : patch.faceConnectivity()) {
        const auto found = std::ranges::lower_bound(nodes, node);
        const auto place = static_cast<std::size_t>(found - nodes.begin());
        if (found != nodes.end() && *found == node && !isPlaced[place]) {
            isPlaced[place] = true;
            places.push_back(place);
        }
    }
    return places;
}

void orderPoints(const OFBoundary& patch, std::size_t width, std::vector<double>* values)
{
    const std::vector<std::size_t> places = placesOfPoints(patch);
    // guard: point-places
    if (places.size() * width != values->size()) {
        return;
    }
    std::vector<double> ordered(values->size());
    for (std::size_t i = 0; i < places.size(); ++i) {
        std::copy_n(values->begin() + static_cast<std::ptrdiff_t>(i * width), width,
                    ordered.begin() + static_cast<std::ptrdiff_t>(places[i] * width));
    }
    *values = std::move(ordered);
}

/// The time whose folder a file is in; the file may be in the folder of a region or a processor there.
std::optional<double> timeOf(const dvn::Str& path)
{
    const std::vector<dvn::Str> names = path.split("/");
    constexpr std::size_t FOLDERS_UP_TO_TIME = 3;
    for (std::size_t i = 1; i <= FOLDERS_UP_TO_TIME && i < names.size(); ++i) {
        const dvn::Str& name = names[names.size() - 1 - i];
        if (OFUtilities::isTimeName(name)) {
            return name.toDouble();
        }
    }
    return std::nullopt;
}

} // namespace

ExtendedFieldReader::ExtendedFieldReader(const dvn::Str& path, const ExtendedField::Target& target)
    : DictionaryClient(path), m_path(path), m_target(target), m_time(timeOf(path))
{}

void ExtendedFieldReader::onHeader(const Dictionary& header)
{
    DictionaryClient::onHeader(header);
    m_kind = ExtendedField::kindOfClass(firstWord(header, "class"));
    if (m_kind && m_target.dimension != (m_kind->type == OFResultTensor ? static_cast<int>(TENSOR_COMPONENTS)
                                                                        : static_cast<int>(m_kind->items.components))) {
        m_kind.reset();
    }
    m_isElsewhere = m_kind && m_kind->mapping != m_target.mapping;
    if (!m_kind || m_isElsewhere) {
        m_kind.reset();
        chars().end();
    }
}

std::optional<std::size_t> ExtendedFieldReader::readList(const foamdict::ListPlace& place)
{
    if (!m_kind || (!isBinary() && place.count <= SHORT_LIST)) {
        return std::nullopt;
    }
    const std::string listType = "List<" + std::string(place.type) + ">";
    if (place.type.empty() && (isBinary() || !isInterior(place))) {
        // A list without a type is text in binary files too, such as the rows of a table, and may hold anything.
        return std::nullopt;
    }
    const bool isOfField = place.type.empty() || listItemsOfType(listType) == m_kind->items;
    if (isOfField && isInterior(place) && canReadInPlace(place.count)) {
        m_isInteriorInTarget = readReals(place, m_target.values);
        return IN_TARGET;
    }
    if (isOfField && (isInterior(place) || isOfPatchValues(place))) {
        return keepList(place);
    }
    dropList(place, listType);
    return DROPPED;
}

/// Whether the interior can be read straight into the array of the caller.
bool ExtendedFieldReader::canReadInPlace(std::size_t count) const
{
    return m_kind->items.components == width() && m_target.values->size() / width() == count &&
           m_target.values->size() % width() == 0;
}

/// @return false, with the file in the log, for a list that breaks off or that the file cannot hold
bool ExtendedFieldReader::readReals(const foamdict::ListPlace& place, std::vector<double>* values) const
{
    TextSource& text = sourceOf(place);
    return ListAt::readReals(text, place.count, m_kind->items, values) ||
           text.reportError("Cannot read a list of values in %1.");
}

std::size_t ExtendedFieldReader::keepList(const foamdict::ListPlace& place)
{
    List list;
    list.isGood = readReals(place, &list.values);
    m_lists.push_back(std::move(list));
    return m_lists.size() - 1;
}

/// Goes on past a list that is not one of the field's values, such as the map of a coupling.
void ExtendedFieldReader::dropList(const foamdict::ListPlace& place, const std::string& listType)
{
    // Items of other types, such as words, are text in binary files too.
    const std::size_t itemSize = isBinary() ? rawBytesPerItem(listType, sourceOf(place).rawForm()) : 0;
    if (itemSize == 0 || place.bracket == '{') {
        skipList(place);
        return;
    }
    TextSource& text = sourceOf(place);
    if (place.count != 0 && text.skipPast('(')) {
        text.skipRaw(static_cast<std::uint64_t>(place.count) * itemSize);
    }
}

/// The numbers of one item from a token on: "1", "(1 0 0)", with nothing after it.
std::optional<ExtendedFieldReader::Item> ExtendedFieldReader::itemOf(const Tokens& tokens, std::size_t first,
                                                                     std::size_t end) const
{
    if (m_kind->items.isBracketed) {
        // guard: item-brackets
        if (end < first + 2 || !tokens[first].isPunctuation('(') || !tokens[end - 1].isPunctuation(')')) {
            return std::nullopt;
        }
        ++first;
        --end;
    }
    if (end - first != m_kind->items.components) {
        return std::nullopt;
    }
    Item item = {};
    for (std::size_t i = first; i < end; ++i) {
        // A run that diverged writes words such as "nan", which are numbers to the conversion.
        const bool isWord = tokens[i].kind == Token::Kind::Word;
        if (isWord ? !dvf::tokenToDouble(tokens[i].text, &item[i - first]) : tokens[i].kind != Token::Kind::Number) {
            return std::nullopt;
        }
        item[i - first] = isWord ? item[i - first] : tokens[i].number;
    }
    return item;
}

/// The numbers of an item as the host takes them, of which the first `width()` count.
ExtendedFieldReader::HostItem ExtendedFieldReader::hostItem(const Item& item) const
{
    if (m_kind->type == OFResultTensor) {
        return hostTensor(m_kind->items, item.data());
    }
    HostItem sent = {};
    std::copy_n(item.begin(), width(), sent.begin());
    return sent;
}

void ExtendedFieldReader::fillUniform(const Item& item, std::vector<double>* values) const
{
    const HostItem sent = hostItem(item);
    // guard: uniform-values
    for (std::size_t i = 0; i + width() <= values->size(); i += width()) {
        std::copy_n(sent.begin(), width(), values->begin() + static_cast<std::ptrdiff_t>(i));
    }
}

/// Fills an array from a value: "uniform ITEM", "nonuniform LIST", or ITEM alone as older versions wrote it.
///
/// @return false, with the array unchanged, if the value is not of this form or does not fit
bool ExtendedFieldReader::fill(const Tokens& tokens, std::vector<double>* values)
{
    if (tokens.empty()) {
        return false;
    }
    if (tokens.front().text == "nonuniform") {
        return fillFromList(tokens, values);
    }
    const std::size_t first = tokens.front().text == "uniform" ? 1 : 0;
    const std::optional<Item> item = itemOf(tokens, first, tokens.size());
    if (item) {
        fillUniform(*item, values);
    }
    return item.has_value();
}

bool ExtendedFieldReader::fillFromList(const Tokens& tokens, std::vector<double>* values)
{
    const auto list = std::ranges::find(tokens, Token::Kind::List, &Token::kind);
    if (list == tokens.end()) {
        return fillFromItems(tokens, values);
    }
    if (list->list >= m_lists.size() || !m_lists[list->list].isGood) {
        return false;
    }
    // A copy: several patches may share a list by a macro or an expression.
    std::vector<double> all = hostItems(m_kind->items, m_lists[list->list].values);
    if (all.size() != values->size()) {
        return false;
    }
    *values = std::move(all);
    return true;
}

/// The same for a short list, which comes as tokens: "nonuniform List<scalar> 2 (1 2)", or "2 {1}".
bool ExtendedFieldReader::fillFromItems(const Tokens& tokens, std::vector<double>* values)
{
    std::size_t next = 1;
    if (next < tokens.size() && tokens[next].text.starts_with("List<")) {
        ++next;
    }
    // guard: short-list
    if (next >= tokens.size() || tokens[next].kind != Token::Kind::Number ||
        !(tokens[next].number >= 0 && tokens[next].number <= static_cast<double>(SHORT_LIST))) {
        return false;
    }
    const auto count = static_cast<std::size_t>(tokens[next++].number);
    if (values->size() != count * width()) {
        return false;
    }
    if (count == 0) {
        return true;
    }
    if (tokens.size() < next + 2) {
        return false;
    }
    const std::size_t end = tokens.size() - 1;
    if (tokens[next].isPunctuation('{')) {
        const std::optional<Item> item = itemOf(tokens, next + 1, end);
        if (item) {
            fillUniform(*item, values);
        }
        return item.has_value();
    }
    ++next;
    const std::size_t tokensPerItem = m_kind->items.components + (m_kind->items.isBracketed ? 2 : 0);
    if (end - next != count * tokensPerItem) {
        return false;
    }
    std::vector<double> all;
    for (; next != end; next += tokensPerItem) {
        const std::optional<Item> item = itemOf(tokens, next, next + tokensPerItem);
        if (!item) {
            return false;
        }
        all.insert(all.end(), item->begin(), item->begin() + static_cast<std::ptrdiff_t>(m_kind->items.components));
    }
    *values = hostItems(m_kind->items, std::move(all));
    return true;
}

/// Fills an array from a function of time, at the time of the file: "constant ITEM" or "table ((TIME ITEM) ...)", which
/// is linear between its rows.
bool ExtendedFieldReader::fillFromFunction(const Tokens& tokens, std::vector<double>* values) const
{
    const std::string_view form = tokens.empty() ? std::string_view() : tokens.front().text;
    std::optional<Item> item;
    if (form == "constant") {
        item = itemOf(tokens, 1, tokens.size());
    } else if (form == "table" && m_time) {
        item = itemOfTable(tokens, *m_time);
    }
    if (item) {
        fillUniform(*item, values);
    }
    return item.has_value();
}

std::optional<ExtendedFieldReader::Item> ExtendedFieldReader::itemOfTable(const Tokens& tokens, double time) const
{
    const std::size_t tokensPerItem = m_kind->items.components + (m_kind->items.isBracketed ? 2 : 0);
    const std::size_t tokensPerRow = tokensPerItem + 3;
    // The number of rows may come before them.
    const std::size_t first = tokens.size() > 1 && tokens[1].kind == Token::Kind::Number ? 3 : 2;
    // guard: table-rows
    if (tokens.size() < first + 1 + tokensPerRow || (tokens.size() - first - 1) % tokensPerRow != 0) {
        return std::nullopt;
    }
    std::optional<Item> before;
    double timeBefore = 0.0;
    for (std::size_t row = first; row + 1 < tokens.size(); row += tokensPerRow) {
        const Token& rowTime = tokens[row + 1];
        std::optional<Item> item = itemOf(tokens, row + 2, row + 2 + tokensPerItem);
        if (rowTime.kind != Token::Kind::Number || !item) {
            return std::nullopt;
        }
        if (rowTime.number >= time) {
            const double weight = before ? (time - timeBefore) / (rowTime.number - timeBefore) : 1.0;
            for (std::size_t k = 0; before && k < MOST_COMPONENTS; ++k) {
                (*item)[k] = (*before)[k] + weight * ((*item)[k] - (*before)[k]);
            }
            return item;
        }
        before = item;
        timeBefore = rowTime.number;
    }
    return before;
}

bool ExtendedFieldReader::read()
{
    if (!isOpen()) {
        return OFLogger::get().logError("OFFile",
                                        dvn::Str("Failed to open result file. File basename is %1").arg(m_path));
    }
    const foamdict::Content content = parse();
    if (m_isElsewhere) {
        return false;
    }
    if (!m_kind) {
        return OFLogger::get().logError("OFFile", dvn::Str("Unexpected class in result file %1").arg(m_path));
    }
    if (!takeInterior(content.entries)) {
        return OFLogger::get().logError(
            "OFFile", dvn::Str("The interior values of %1 are missing or do not fit the mesh.").arg(m_path));
    }
    const Dictionary* const patches = content.entries.block(PATCHES);
    if (m_kind->hasPatches && patches != nullptr) {
        readPatches(*patches);
    }
    addReferenceLevel(content.entries);
    return true;
}

/// Adds the entry "referenceLevel", if there is one, to all values: fields of small differences have it.
void ExtendedFieldReader::addReferenceLevel(const Dictionary& entries)
{
    const Entry* const entry = entries.find("referenceLevel");
    const std::optional<Item> item = entry == nullptr ? std::nullopt : itemOf(entry->tokens, 0, entry->tokens.size());
    if (!item) {
        return;
    }
    const HostItem level = hostItem(*item);
    const auto addTo = [&](std::vector<double>* values) {
        for (std::size_t i = 0; i < values->size(); ++i) {
            double& value = (*values)[i];
            value = value == dvn::UNDEFINED_DOUBLE ? value : value + level[i % width()];
        }
    };
    addTo(m_target.values);
    std::ranges::for_each(*m_target.patchValues, [&](std::vector<double>& values) { addTo(&values); });
}

bool ExtendedFieldReader::takeInterior(const Dictionary& entries)
{
    const Entry* interior = entries.find(INTERIOR);
    if (interior == nullptr) {
        interior = entries.find(INTERNAL_VALUES);
    }
    const bool isInTarget = interior != nullptr && std::ranges::any_of(interior->tokens, [](const Token& token) {
                                return token.kind == Token::Kind::List && token.list == IN_TARGET;
                            });
    if (isInTarget ? m_isInteriorInTarget : interior != nullptr && fill(interior->tokens, m_target.values)) {
        return true;
    }
    // A list that broke off has left values in the array.
    std::ranges::fill(*m_target.values, dvn::UNDEFINED_DOUBLE);
    return false;
}

void ExtendedFieldReader::readPatches(const Dictionary& patches)
{
    const std::size_t count = std::min(m_target.boundaries->size(), m_target.patchValues->size());
    for (std::size_t i = 0; i < count; ++i) {
        const OFBoundary& patch = (*m_target.boundaries)[i];
        const Dictionary* const block = blockOfPatch(patches, patch);
        const std::string meshType = patch.type().toUtf8();
        if (block != nullptr) {
            readPatch(*block, firstWord(*block, "type"), patch, &(*m_target.patchValues)[i]);
        } else if (PatchRules::isConstraint(meshType)) {
            readPatch(Dictionary(), meshType, patch, &(*m_target.patchValues)[i]);
        }
    }
}

void ExtendedFieldReader::readPatch(const Dictionary& block, const std::string& type, const OFBoundary& patch,
                                    std::vector<double>* values)
{
    using PatchRules::Source;
    if (isOnPoints()) {
        if (!readEntry(block, "value", patch, values)) {
            copyMeshValues(patch, values);
        }
        return;
    }
    Source source = PatchRules::sourceOfType(type);
    if (source == Source::Cyclic) {
        // OpenFOAM computes the values anew, so a `value` in the file does not matter.
        if (interpolateCyclic(patch, values)) {
            return;
        }
        source = Source::FileElseCell;
    }
    if (source != Source::File && source != Source::FileElseCell) {
        applySource(source, block, patch, values);
        return;
    }
    const std::string_view substitute = PatchRules::substituteOfType(type);
    if (readEntry(block, "value", patch, values) ||
        (!substitute.empty() && readEntry(block, substitute, patch, values))) {
        return;
    }
    if (source == Source::FileElseCell && block.find("value") == nullptr) {
        copyMeshValues(patch, values);
    }
}

/// @return false, with the values unchanged, if there is no such entry or it does not fit
bool ExtendedFieldReader::readEntry(const Dictionary& block, std::string_view keyword, const OFBoundary& patch,
                                    std::vector<double>* values)
{
    const Entry* const entry = block.find(keyword);
    if (entry == nullptr || (!fill(entry->tokens, values) && !fillFromFunction(entry->tokens, values))) {
        return false;
    }
    const bool isList = entry->tokens.front().text == "nonuniform";
    if (isOnPoints() && isList) {
        orderPoints(patch, width(), values);
    }
    return true;
}

void ExtendedFieldReader::copyMeshValues(const OFBoundary& patch, std::vector<double>* values) const
{
    FieldPatches::copyMeshItems(
        *m_target.values, isOnPoints() ? patch.faceNodeToNodeMapping() : patch.faceToCellMapping(), width(), values);
}

/// @return false, with the values unchanged, if it is not known what lies beyond the patch
bool ExtendedFieldReader::interpolateCyclic(const OFBoundary& patch, std::vector<double>* values) const
{
    if (patch.cyclicCoupling().cells.empty()) {
        return false;
    }
    std::vector<double> between(values->size(), dvn::UNDEFINED_DOUBLE);
    copyMeshValues(patch, &between);
    if (!PatchRules::interpolateCyclic(patch, *m_target.values, m_target.dimension, &between)) {
        return false;
    }
    *values = std::move(between);
    return true;
}

void ExtendedFieldReader::applySource(PatchRules::Source source, const Dictionary& block, const OFBoundary& patch,
                                      std::vector<double>* values)
{
    using PatchRules::Source;
    if (source == Source::Zero) {
        std::ranges::fill(*values, 0.0);
        return;
    }
    copyMeshValues(patch, values);
    if (source == Source::Wedge) {
        PatchRules::turnToWedge(patch, m_target.dimension, values);
    } else if (source == Source::Symmetry || source == Source::FixedNormal) {
        PatchRules::makeSymmetric(patch, m_target.dimension, values);
    }
    if (source == Source::FixedNormal && width() == VECTOR_COMPONENTS) {
        std::vector<double> fixed(values->size(), 0.0);
        if (readEntry(block, FIXED_VALUE, patch, &fixed)) {
            PatchRules::addNormalComponent(patch, fixed, values);
        }
    }
}
