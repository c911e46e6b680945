// SPDX-License-Identifier: MIT
#include "foamdict/Dictionary.h"

#include <algorithm>
#include <utility>

namespace foamdict {

Entry::Entry() = default;
Entry::~Entry() = default;
Entry::Entry(Entry&&) noexcept = default;
Entry& Entry::operator=(Entry&&) noexcept = default;

const Entry* Dictionary::findEntry(std::string_view keyword, bool isPattern) const
{
    if (m_index == nullptr) {
        const auto place = std::ranges::find_if(m_entries, [keyword, isPattern](const Entry& entry) {
            return entry.isPattern == isPattern && entry.keyword == keyword;
        });
        return place == m_entries.end() ? nullptr : &*place;
    }
    const Places& places = isPattern ? m_index->patterns : m_index->names;
    const auto place = places.find(keyword);
    return place == places.end() ? nullptr : &m_entries[place->second];
}

Entry* Dictionary::findEntry(std::string_view keyword, bool isPattern)
{
    return const_cast<Entry*>(std::as_const(*this).findEntry(keyword, isPattern));
}

const Entry* Dictionary::findPattern(std::string_view name) const
{
    for (std::size_t i = m_patternPlaces.size(); i-- > 0;) {
        const Entry& entry = m_entries[m_patternPlaces[i]];
        if (entry.pattern != nullptr && entry.pattern->matches(name)) {
            return &entry;
        }
    }
    return nullptr;
}

const Dictionary* Dictionary::block(std::string_view keyword) const
{
    const Entry* const entry = find(keyword);
    return entry == nullptr ? nullptr : entry->block.get();
}

std::size_t Dictionary::patternStates() const
{
    std::size_t states = 0;
    for (const std::size_t place : m_patternPlaces) {
        const Entry& entry = m_entries[place];
        states += entry.pattern == nullptr ? 1 : entry.pattern->stateCount();
    }
    return states;
}

void Dictionary::append(Entry entry)
{
    const bool isPattern = entry.isPattern;
    m_entries.push_back(std::move(entry));
    if (isPattern) {
        m_patternPlaces.push_back(m_entries.size() - 1);
    }
    if (m_index != nullptr) {
        addToIndex(m_entries.size() - 1);
    } else if (m_entries.size() > MOST_WITHOUT_INDEX) {
        rebuild();
    }
}

void Dictionary::replace(Entry entry)
{
    Entry* const existing = findEntry(entry.keyword, entry.isPattern);
    if (existing == nullptr) {
        append(std::move(entry));
    } else {
        *existing = std::move(entry);
    }
}

void Dictionary::merge(Entry entry)
{
    Entry* const existing = findEntry(entry.keyword, entry.isPattern);
    if (existing == nullptr) {
        append(std::move(entry));
        return;
    }
    if (existing->block == nullptr || entry.block == nullptr) {
        *existing = std::move(entry);
        return;
    }
    for (Entry& inner : entry.block->m_entries) {
        existing->block->merge(std::move(inner));
    }
}

void Dictionary::remove(const std::function<bool(const Entry&)>& isWanted)
{
    if (std::erase_if(m_entries, isWanted) > 0) {
        rebuild();
    }
}

std::vector<Entry> Dictionary::takeEntries()
{
    std::vector<Entry> entries = std::exchange(m_entries, {});
    rebuild();
    return entries;
}

void Dictionary::addToIndex(std::size_t place)
{
    const Entry& entry = m_entries[place];
    (entry.isPattern ? m_index->patterns : m_index->names).emplace(entry.keyword, place);
}

void Dictionary::rebuild()
{
    m_index = m_entries.size() > MOST_WITHOUT_INDEX ? std::make_unique<Index>() : nullptr;
    m_patternPlaces.clear();
    for (std::size_t place = 0; place < m_entries.size(); ++place) {
        if (m_entries[place].isPattern) {
            m_patternPlaces.push_back(place);
        }
        if (m_index != nullptr) {
            addToIndex(place);
        }
    }
}

} // namespace foamdict
