// SPDX-License-Identifier: MIT
#include "foamdict/Dictionary.h"

#include <algorithm>
#include <cassert>
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
    const auto place = places.lower_bound(keyword);
    return place == places.end() || place->first != keyword ? nullptr : &m_entries[place->second];
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
    assert(entry.block->m_gaps.empty());
    for (Entry& inner : entry.block->m_entries) {
        existing->block->merge(std::move(inner));
    }
}

void Dictionary::remove(std::string_view keyword)
{
    if (m_index == nullptr) {
        removeIf([keyword](std::string_view name) { return name == keyword; });
        return;
    }
    for (Places* const places : {&m_index->names, &m_index->patterns}) {
        const auto [first, end] = places->equal_range(keyword);
        std::for_each(first, end, [this](const Places::value_type& place) { leaveGap(place.second); });
        places->erase(first, end);
    }
}

void Dictionary::removeIf(const std::function<bool(std::string_view)>& isUnwanted)
{
    if (m_index == nullptr) {
        std::erase_if(m_entries, [&isUnwanted](const Entry& entry) { return isUnwanted(entry.keyword); });
        rebuild();
        return;
    }
    for (Places* const places : {&m_index->names, &m_index->patterns}) {
        std::erase_if(*places, [&](const Places::value_type& place) {
            const bool isGap = isUnwanted(place.first);
            if (isGap) {
                leaveGap(place.second);
            }
            return isGap;
        });
    }
}

/// Frees a removed entry.
void Dictionary::leaveGap(std::size_t place)
{
    m_entries[place] = Entry();
    m_gaps.push_back(place);
}

void Dictionary::closeGaps()
{
    if (m_gaps.empty()) {
        return;
    }
    std::ranges::sort(m_gaps);
    auto gap = m_gaps.begin();
    std::size_t end = 0;
    for (std::size_t place = 0; place < m_entries.size(); ++place) {
        if (gap != m_gaps.end() && *gap == place) {
            ++gap;
        } else if (end++ != place) {
            m_entries[end - 1] = std::move(m_entries[place]);
        }
    }
    m_entries.erase(m_entries.begin() + static_cast<std::ptrdiff_t>(end), m_entries.end());
    m_gaps.clear();
    rebuild();
}

std::vector<Entry> Dictionary::takeEntries()
{
    assert(m_gaps.empty());
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
