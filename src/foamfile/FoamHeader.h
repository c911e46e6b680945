// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamfile/TextSource.h"

#include <map>
#include <string>

/// The `FoamFile` block at the start of a file: its keys and their values.
///
/// A value is the text before the last ";" of its line, quotes included. The first value of a key wins, also over those
/// of a file read later, so use a new object for the header of a second file.
class FoamHeader
{
public:
    /// Reads on to the next `FoamFile` block and adds its entries.
    ///
    /// @return false if there is no block, it does not end, or an entry lacks its ";", which also closes the source
    bool read(TextSource& text);
    /// The same by the grammar of dictionaries, for a block at the start of a file in any layout.
    bool readByGrammar(TextSource& text);
    /// Reads on to the first line of the next `FoamFile` block.
    static bool skipToBlock(TextSource& text);

    const std::map<std::string, std::string>& entries() const { return m_entries; }
    /// The value of a key.
    /// @throws std::out_of_range if there is none
    const std::string& at(const char* key) const;
    /// Whether the key is there and has this value.
    bool has(const char* key, const dvn::Str& value) const;

private:
    bool readEntries(TextSource& text);

    std::map<std::string, std::string> m_entries;
};
