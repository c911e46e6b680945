// SPDX-License-Identifier: MIT
#include "foamfile/ExtendedDescription.h"

#include "foamfile/DictionaryFile.h"
#include "foamfile/ListAt.h"
#include "foamfile/OFLogger.h"

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
        const bool isFlags = place.type == "bool";
        if (!isFlags && place.type != "label") {
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

    /// Takes the numbers of a value, whoever read them. None if the value is not a list of whole numbers.
    std::vector<int> takeNumbers(const Entry* entry)
    {
        std::vector<int> numbers;
        for (const Token& token : entry == nullptr ? std::vector<Token>() : entry->tokens) {
            if (token.kind == Token::Kind::List) {
                return std::move(m_lists[token.list]);
            }
            if (token.kind == Token::Kind::Number) {
                numbers.push_back(labelOf(token));
            }
        }
        return numbers;
    }

private:
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

/// The groups of a patch: those in its entry "inGroups 1(wall);" and, as OpenFOAM has it, its type.
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
    groups.emplace_back(type);
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
