// SPDX-License-Identifier: MIT
#include "foamfile/ExtendedDescription.h"

#include "foamfile/DictionaryFile.h"
#include "foamfile/ListAt.h"
#include "foamfile/OFLogger.h"
#include "foamfile/PatchRules.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <utility>

namespace {

using foamdict::Dictionary;
using foamdict::Entry;
using foamdict::Token;

/// Lists of numbers are read by the fast readers and kept here; the token of a list is its place.
class ZoneClient final : public DictionaryClient
{
public:
    using DictionaryClient::DictionaryClient;

    std::optional<std::size_t> readList(const foamdict::ListPlace& place) override
    {
        // A list without a type is text in binary files too.
        const bool isText = place.type.empty() && !isBinary();
        const bool isFlags = place.type == "bool" || (isText && isOf(place, "flipMap"));
        const bool isLabels =
            place.type == "label" || (isText && (isOf(place, "cellLabels") || isOf(place, "faceLabels")));
        if (!isFlags && !isLabels) {
            return std::nullopt;
        }
        TextSource& text = sourceOf(place);
        std::vector<int> list;
        if (isFlags ? ListAt::readFlags(text, place.count, &list) : ListAt::readLabels(text, place.count, &list)) {
            m_lists.push_back(std::move(list));
            return m_lists.size() - 1;
        }
        text.reportError("Cannot read a list of a zone in %1.");
        m_lists.emplace_back();
        return m_lists.size() - 1;
    }

    /// Takes the numbers of a list, whoever read them: "List<label> 2 (0 1)", "2 (0 1)", "(0 1)" or "2 {0}".
    std::vector<int> takeNumbers(const Entry* entry)
    {
        static const std::vector<Token> NONE;
        const std::vector<Token>& tokens = entry == nullptr ? NONE : entry->tokens;
        const auto list = std::ranges::find(tokens, Token::Kind::List, &Token::kind);
        if (list != tokens.end()) {
            return std::move(m_lists[list->list]);
        }
        // What comes before the bracket is the count.
        const auto bracket = std::ranges::find(tokens, Token::Kind::Punctuation, &Token::kind);
        std::vector<int> numbers;
        for (auto token = bracket; token != tokens.end(); ++token) {
            if (token->kind == Token::Kind::Number) {
                numbers.push_back(labelOf(*token));
            }
        }
        return numbers;
    }

private:
    static bool isOf(const foamdict::ListPlace& place, std::string_view keyword)
    {
        return !place.path.empty() && place.path.back() == keyword;
    }

    /// A number that is no label gives -1, which every check of labels refuses.
    static int labelOf(const Token& token)
    {
        const bool isLabel = token.number >= 0 && token.number <= 2147483647.0;
        return isLabel ? static_cast<int>(token.number) : -1;
    }

    std::deque<std::vector<int>> m_lists;
};

int wholeNumber(const Dictionary& block, std::string_view keyword)
{
    const Entry* const entry = block.find(keyword);
    const bool isNumber = entry != nullptr && !entry->tokens.empty() &&
                          entry->tokens.front().kind == Token::Kind::Number &&
                          entry->tokens.front().number >= -2147483648.0 && entry->tokens.front().number <= 2147483647.0;
    return isNumber ? static_cast<int>(entry->tokens.front().number) : 0;
}

/// The groups of a patch: those in its entry "inGroups 1(wall);" and those that OpenFOAM itself puts it in, by its
/// type.
std::vector<dvn::Str> groupsOf(const Dictionary& block, const std::string& type)
{
    std::vector<dvn::Str> groups;
    if (const Entry* const entry = block.find("inGroups")) {
        for (const Token& token : entry->tokens) {
            const bool isName = token.kind == Token::Kind::String ||
                                (token.kind == Token::Kind::Word && !token.text.starts_with("List<"));
            if (isName) {
                groups.emplace_back(token.text);
            }
        }
    }
    const bool isMapped = type.starts_with("mapped");
    if (type == "wall" || PatchRules::isConstraint(type)) {
        groups.emplace_back(type);
    } else if (isMapped) {
        groups.emplace_back("mappedPatch");
    }
    if (isMapped && type.find("Wall") != std::string::npos) {
        groups.emplace_back("wall");
    }
    return groups;
}

/// The three numbers of an entry such as "rotationAxis (0 0 1);", else 0.
rotation::Vector vectorOf(const Dictionary& block, std::string_view keyword)
{
    rotation::Vector vector = {};
    std::size_t count = 0;
    if (const Entry* const entry = block.find(keyword)) {
        for (const Token& token : entry->tokens) {
            if (token.kind == Token::Kind::Number && count < vector.size()) {
                vector[count++] = token.number;
            }
        }
    }
    return count == vector.size() ? vector : rotation::Vector{};
}

/// Calls `add(name, block)` for each entry of a file that is a list of blocks.
template <typename Add>
bool readItems(DictionaryClient& client, const dvn::Str& path, const Add& add)
{
    if (!client.isOpen()) {
        return OFLogger::get().logError("OFFile", dvn::Str("Failed to open %1").arg(path));
    }
    const foamdict::Content content = client.parse();
    for (const Entry& entry : content.items ? content.items->entries() : content.entries.entries()) {
        if (entry.block != nullptr) {
            add(entry.keyword, *entry.block);
        }
    }
    return true;
}

} // namespace

bool ExtendedDescription::readDictionary(const dvn::Str& path, const dvn::Str& /*objectName*/,
                                         std::map<dvn::Str, dvn::Str>* entries)
{
    DictionaryClient client(path);
    if (!client.isOpen()) {
        return OFLogger::get().logError("OFFile",
                                        dvn::Str("Failed to open dictionary file. File basename is %1").arg(path));
    }
    const foamdict::Content content = client.parse();
    for (const Entry& entry : content.entries.entries()) {
        if (entry.block == nullptr && !entry.isPattern) {
            entries->insert_or_assign(entry.keyword, joinedTokens(entry.tokens));
        }
    }
    return true;
}

bool ExtendedDescription::readBoundary(const dvn::Str& path, std::vector<OFBoundary>& boundaries, std::size_t partId)
{
    boundaries.clear();
    DictionaryClient client(path);
    return readItems(client, path, [&](const std::string& name, const Dictionary& block) {
        const std::string type = firstWord(block, "type");
        OFBoundary boundary;
        boundary.setPartId(static_cast<int>(partId));
        boundary.setPatchName(name);
        boundary.setType(type);
        boundary.setGroups(groupsOf(block, type));
        boundary.setFaceCount(static_cast<std::size_t>(std::max(wholeNumber(block, "nFaces"), 0)));
        boundary.setStartFaceIndex(wholeNumber(block, "startFace"));
        boundary.setNeighbourPatch(firstWord(block, "neighbourPatch"));
        boundary.setCyclicTransform(firstWord(block, "transform"));
        boundary.setRotationAxis(vectorOf(block, "rotationAxis"));
        boundaries.push_back(std::move(boundary));
    });
}

bool ExtendedDescription::readFaceZones(const dvn::Str& path, std::vector<OFFaceZone>& zones, std::size_t partId)
{
    zones.clear();
    ZoneClient client(path);
    return readItems(client, path, [&](const std::string& name, const Dictionary& block) {
        OFFaceZone zone;
        zone.setPartId(static_cast<int>(partId));
        zone.setId(static_cast<int>(zones.size()) + 1);
        zone.setName(name);
        zone.faceIds() = client.takeNumbers(block.find("faceLabels"));
        zone.flipMap() = client.takeNumbers(block.find("flipMap"));
        zones.push_back(std::move(zone));
    });
}

bool ExtendedDescription::readCellZones(const dvn::Str& path, std::vector<OFCellZone>& zones, std::size_t partId)
{
    zones.clear();
    ZoneClient client(path);
    return readItems(client, path, [&](const std::string& name, const Dictionary& block) {
        OFCellZone zone;
        zone.cellIds() = client.takeNumbers(block.find("cellLabels"));
        if (zone.cellIds().empty()) {
            return;
        }
        zone.setPartId(static_cast<int>(partId));
        zone.setId(static_cast<int>(zones.size()) + 1);
        zone.setName(name);
        zones.push_back(std::move(zone));
    });
}
