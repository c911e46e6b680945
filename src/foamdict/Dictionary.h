// SPDX-License-Identifier: MIT
#pragma once

#include "foamdict/Pattern.h"

#include <cassert>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace foamdict {

/// One item of a value.
struct Token
{
    enum class Kind
    {
        Word,        ///< `text` is the word
        String,      ///< `text` is what stands between the quotes, or between "#{" and "#}"
        Number,      ///< `text` as it is written, and its value in `number`
        Punctuation, ///< `text` is one character; brackets of lists are such tokens
        List,        ///< a list that the client has read: its `list`, with its type as `text` and its count as `number`
        Unresolved   ///< `text` is a macro or a directive that could not be replaced, such as "$x" or "#calc"
    };
    Kind kind = Kind::Word;
    std::string text;
    double number = 0;
    std::size_t list = 0;

    bool isPunctuation(char c) const { return kind == Kind::Punctuation && text.front() == c; }
    bool operator==(const Token&) const = default;
};

class Dictionary;

/// A keyword with its value: tokens, or a block of further entries.
struct Entry
{
    Entry();
    ~Entry();
    Entry(Entry&&) noexcept;
    Entry& operator=(Entry&&) noexcept;

    std::string keyword; ///< without quotes
    /// True if the keyword is a regular expression: it was quoted and is more than a name.
    bool isPattern = false;
    /// The expression; null if it cannot be compiled, so that it matches nothing.
    std::shared_ptr<const Pattern> pattern;
    std::vector<Token> tokens;
    std::unique_ptr<Dictionary> block; ///< null for an entry of tokens
    /// The line of the keyword as the source counts it; 0 for an entry of an included file or copied by a macro.
    std::size_t line = 0;
};

/// Entries in the order of the file.
///
/// An entry that replaces another takes its place. A removed entry is not found from then on, but leaves a gap that
/// `closeGaps` must close before the entries are handed out: closing it at once would move all entries after it for
/// each removal. Any number of threads may read a finished dictionary.
class Dictionary
{
public:
    const std::vector<Entry>& entries() const
    {
        assert(m_gaps.empty());
        return m_entries;
    }

    /// The entry of this keyword, which is not a pattern; the first one in a list that may hold equal names.
    const Entry* find(std::string_view keyword) const { return findEntry(keyword, false); }
    /// The last entry whose regular expression matches the whole name.
    const Entry* findPattern(std::string_view name) const;
    /// The block of the entry that `find` returns; null if there is none.
    const Dictionary* block(std::string_view keyword) const;
    /// The states of all patterns, to which the time of `findPattern` is in proportion.
    std::size_t patternStates() const;

    /// Appends an entry, even if there is another of this name.
    void append(Entry entry);
    /// Adds an entry. One of the same keyword is replaced, or merged with it if both are blocks.
    void merge(Entry entry);
    /// Adds an entry. One of the same keyword is replaced.
    void replace(Entry entry);
    bool contains(const Entry& entry) const { return findEntry(entry.keyword, entry.isPattern) != nullptr; }
    /// Removes all entries of this keyword, patterns as well.
    void remove(std::string_view keyword);
    /// Removes all entries for whose keywords `isUnwanted` holds, patterns as well.
    void removeIf(const std::function<bool(std::string_view)>& isUnwanted);
    /// To be called after the last removal.
    void closeGaps();
    /// Hands out all entries and is empty then.
    std::vector<Entry> takeEntries();

private:
    /// Entries of equal names are in the order of the file.
    using Places = std::multimap<std::string, std::size_t, std::less<>>;
    struct Index
    {
        Places names;
        Places patterns;
    };
    /// Short dictionaries, nearly all, are searched one by one.
    static constexpr std::size_t MOST_WITHOUT_INDEX = 8;

    const Entry* findEntry(std::string_view keyword, bool isPattern) const;
    Entry* findEntry(std::string_view keyword, bool isPattern);
    void addToIndex(std::size_t place);
    void leaveGap(std::size_t place);
    void rebuild();

    std::vector<Entry> m_entries;
    std::unique_ptr<Index> m_index;           ///< null for a short dictionary
    std::vector<std::size_t> m_patternPlaces; ///< of the entries that are patterns, and of gaps that were
    std::vector<std::size_t> m_gaps;          ///< places of removed entries; none without an index
};

} // namespace foamdict
