// SPDX-License-Identifier: MIT
#pragma once

#include "foamdict/CharSource.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace foamdict {

/// A word of the grammar.
struct Lexeme
{
    enum class Kind
    {
        Word,
        String,
        Number,
        Punctuation,
        Macro,     ///< "$name", "${name}", "$..name", ...
        Directive, ///< "#name"
        End,       ///< of the file
        Fault      ///< the text cannot be read on: `text` says why
    };
    Kind kind = Kind::End;
    std::string text;
    double number = 0;

    bool is(char c) const { return kind == Kind::Punctuation && text.front() == c; }
};

/// Takes a file apart into words; blanks and comments only separate them.
///
/// A word that begins like a number and goes on with letters is one word, where OpenFOAM makes it two: names such as
/// "2nd" and "0.orig" are common.
class Lexer
{
public:
    /// @param chars must outlive this object
    /// @param limit of the characters to be taken; the file seems to end one later
    explicit Lexer(CharSource& chars, std::size_t limit = std::numeric_limits<std::size_t>::max() - 1)
        : m_chars(chars), m_limit(limit)
    {}

    /// The next word, or the one that was put back.
    Lexeme next();
    /// Makes this the next word. There is room for one.
    void putBack(Lexeme lexeme) { m_putBack = std::move(lexeme); }

    /// Skips blanks and comments, so that the next character of the file begins a word.
    ///
    /// @return that character, `CharSource::END` at the end of the file, or '/' with the character after it next
    int skipBlanks();
    /// Skips the rest of the line, also what was put back.
    void skipLine();

    CharSource& chars() const { return m_chars; }
    /// The line of the next character, 1-based.
    std::size_t line() const { return m_line; }
    /// How many characters were taken.
    std::size_t taken() const { return m_taken; }

private:
    int peek() { return m_taken > m_limit ? CharSource::END : m_chars.peek(); }
    int take();
    bool skipComment();
    Lexeme readString();
    Lexeme readVerbatim();
    Lexeme readMacro();
    Lexeme readNumber();
    /// Appends the characters of a word and, with `withSlashes`, "/" among them; ends before a ")" or `stop` that is
    /// not part of it.
    void readWord(std::string* text, bool withSlashes, int stop);
    bool isTooLong(const std::string& text);
    Lexeme finished(Lexeme::Kind kind, std::string text);

    CharSource& m_chars;
    std::size_t m_limit;
    std::optional<Lexeme> m_putBack;
    const char* m_fault = nullptr;
    std::size_t m_line = 1;
    std::size_t m_taken = 0;
    bool m_hasSlash = false; ///< a '/' was taken that begins no comment
};

} // namespace foamdict
