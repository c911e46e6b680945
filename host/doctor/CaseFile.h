// SPDX-License-Identifier: MIT
#pragma once

#include "foamdict/Parse.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <zlib.h>

/// The characters of a case file, plain or gzip, with the line they are on.
///
/// Only a regular file is opened; a path without a plain file stands for that with ".gz", as for OpenFOAM. What is
/// taken character by character is kept as lines, up to a bound; what is skipped is not.
class CaseChars final : public foamdict::CharSource
{
public:
    /// What `skipList` saw.
    struct Skipped
    {
        std::size_t words = 0;          ///< runs of characters between blanks and brackets
        std::size_t brackets = 0;       ///< inside those of the list, without those inside them
        std::size_t longestBracket = 0; ///< the words in the longest of them
        bool isClosed = false;          ///< the last bracket was there
        std::string notANumber;         ///< the first word that has a letter which no number has
        std::size_t badLine = 0;        ///< its line
    };

    explicit CaseChars(const std::filesystem::path& path);
    ~CaseChars() override;

    bool isOpen() const { return m_file != nullptr; }
    bool isGzip() const { return m_isGzip; }
    /// True once the file could not be read to its end, such as a damaged gzip file.
    bool isBroken() const { return m_isBroken; }

    int peek() override;
    int take() override;
    std::size_t line() const override { return m_isLineKnown ? m_line : 0; }

    /// Skips a list of text through its last bracket; the next character is its first bracket.
    Skipped skipList();
    /// Skips so many raw bytes; lines cannot be counted from there on.
    /// @return false if the file ends before
    bool skipRaw(std::uint64_t bytes);

    /// The lines as they stand in the file, without the text that was skipped.
    std::map<std::size_t, std::string> takeLines() { return std::move(m_lines); }
    /// The file ends here, for a reader that has seen enough.
    void end() { m_isEnded = true; }

private:
    bool fill();
    void keep(int c);

    gzFile m_file = nullptr;
    bool m_isGzip = false;
    bool m_isBroken = false;
    bool m_isLineKnown = true;
    bool m_isEnded = false;
    std::array<char, 65536> m_buffer = {};
    std::size_t m_next = 0;
    std::size_t m_end = 0;
    std::size_t m_line = 1;
    std::size_t m_keptBytes = 0;
    std::map<std::size_t, std::string> m_lines;
};

/// A long list that was passed over.
struct SkippedList
{
    std::string type;      ///< "scalar", "vector", ...; empty if there is only a count
    std::size_t count = 0; ///< as the file states it
    bool isText = true;
    CaseChars::Skipped seen; ///< of a raw list only whether it was closed
};

/// A file of a case as OpenFOAM's grammar reads it, its long lists passed over.
///
/// The list of a token is its place in `lists`. Ascii lists of up to ten items are tokens, since macros may be in them.
struct CaseFile
{
    bool isOpen = false;
    bool isGzip = false;
    bool isBroken = false;
    foamdict::Content content;
    std::vector<SkippedList> lists;
    std::vector<std::string> reports; ///< problems that did not end the reading
    std::map<std::size_t, std::string> lines;

    /// The first word of an entry of the header; empty if there is none.
    std::string header(std::string_view key) const;
    /// Whether an entry is written with macros or directives, or is not in the file itself.
    bool isComposed(const foamdict::Entry& entry) const;
    /// The long list of a value; null if it has none.
    const SkippedList* listOf(const foamdict::Entry& entry) const;
    /// The text of a line, without blanks around it.
    std::string_view textOfLine(std::size_t line) const;
};

/// Reads a file of a case.
/// @param isOnlyHead true to end at the first long list
CaseFile readCaseFile(const std::filesystem::path& path, const std::filesystem::path& caseFolder, bool isOnlyHead);

/// True for a value that is a list, one item for each cell, face or point.
bool isNonuniform(const foamdict::Entry& entry);

/// The bytes of a raw value by the entry "arch" of its file, such as "LSB;label=32;scalar=64".
/// @param key "label=" or "scalar="
/// @param usual what it is if the entry does not say
std::size_t rawWidth(std::string_view arch, std::string_view key, std::size_t usual);

/// The text of the first token of an entry; empty if there is no such entry or it has no value.
std::string firstWordOf(const foamdict::Dictionary& dictionary, std::string_view keyword);
