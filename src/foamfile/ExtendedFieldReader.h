// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/DictionaryFile.h"
#include "foamfile/ExtendedField.h"
#include "foamfile/PatchRules.h"
#include "records/Components.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Reads one field file. Lists of values are read where they are met, the interior straight into the caller's array;
/// the values of the patches are looked up when the whole file is known, since any entry may still be replaced.
class ExtendedFieldReader final : public DictionaryClient
{
public:
    ExtendedFieldReader(const dvn::Str& path, const ExtendedField::Target& target);

    /// See `ExtendedField::read`. Once for each object.
    bool read();

    void onHeader(const foamdict::Dictionary& header) override;
    std::optional<std::size_t> readList(const foamdict::ListPlace& place) override;

private:
    /// The most numbers of an item in a file, those of a tensor.
    static constexpr std::size_t MOST_COMPONENTS = 9;
    using Item = std::array<double, MOST_COMPONENTS>;
    using HostItem = std::array<double, TENSOR_COMPONENTS>;
    using Tokens = std::vector<foamdict::Token>;

    /// A list that was read: items as the host takes them. Not good if it did not come in full.
    struct List
    {
        std::vector<double> values;
        bool isGood = false;
    };
    /// The place of the list that went straight into the caller's array.
    static constexpr std::size_t IN_TARGET = static_cast<std::size_t>(-1);
    /// The place of lists that nobody needs.
    static constexpr std::size_t DROPPED = static_cast<std::size_t>(-2);

    bool isOnPoints() const { return m_kind->mapping == OFResultOnNode; }
    std::size_t width() const { return static_cast<std::size_t>(m_target.dimension); }

    bool canReadInPlace(std::size_t count) const;
    bool readReals(const foamdict::ListPlace& place, std::vector<double>* values) const;
    std::size_t keepList(const foamdict::ListPlace& place);
    void dropList(const foamdict::ListPlace& place, const std::string& listType);

    std::optional<Item> itemOf(const Tokens& tokens, std::size_t first, std::size_t end) const;
    HostItem hostItem(const Item& item) const;
    void fillUniform(const Item& item, std::vector<double>* values) const;
    bool fill(const Tokens& tokens, std::vector<double>* values);
    bool fillFromList(const Tokens& tokens, std::vector<double>* values);
    bool fillFromItems(const Tokens& tokens, std::vector<double>* values);

    bool fillFromFunction(const Tokens& tokens, std::vector<double>* values) const;
    std::optional<Item> itemOfTable(const Tokens& tokens, double time) const;

    void addReferenceLevel(const foamdict::Dictionary& entries);
    bool takeInterior(const foamdict::Dictionary& entries);
    void readPatches(const foamdict::Dictionary& patches);
    void readPatch(const foamdict::Dictionary& block, const std::string& type, const OFBoundary& patch,
                   std::vector<double>* values);
    bool readEntry(const foamdict::Dictionary& block, std::string_view keyword, const OFBoundary& patch,
                   std::vector<double>* values);
    void copyMeshValues(const OFBoundary& patch, std::vector<double>* values) const;
    void applySource(PatchRules::Source source, const foamdict::Dictionary& block, const OFBoundary& patch,
                     std::vector<double>* values);

    dvn::Str m_path;
    ExtendedField::Target m_target;
    std::optional<double> m_time;
    std::optional<ExtendedField::Kind> m_kind;
    std::vector<List> m_lists;
    bool m_isInteriorInTarget = false;
};
