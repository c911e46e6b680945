// SPDX-License-Identifier: MIT
#include "foamdict/Lexer.h"

#include "LibCore/Limits.h"
#include "LibCore/Numbers.h"

#include <string_view>
#include <utility>

namespace foamdict {
namespace {

constexpr int END = CharSource::END;

bool isBlank(int c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(int c)
{
    return c >= '0' && c <= '9';
}

/// True for what a word may hold. Brackets count: `div(phi,U)` is one word.
bool isWordChar(int c)
{
    return c != END && !isBlank(c) && c != '"' && c != '\'' && c != '/' && c != ';' && c != '{' && c != '}';
}

bool isNumberChar(int c)
{
    return isDigit(c) || c == '.' || c == '+' || c == '-' || c == 'e' || c == 'E';
}

/// True for what makes a number a word when it follows without a blank.
bool isNameChar(int c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '<' || c == '%' || c == '@' ||
           c > 127 || isNumberChar(c);
}

bool isPunctuation(int c)
{
    return c > 0 && std::string_view(";(){}[]:,=*/'").find(static_cast<char>(c)) != std::string_view::npos;
}

} // namespace

int Lexer::take()
{
    const int c = m_taken > m_limit ? END : m_chars.take();
    m_taken += c == END ? 0 : 1;
    m_line += c == '\n' ? 1 : 0;
    return c;
}

/// Skips the rest of a comment.
/// @return false if the "/" that was just taken does not begin one
bool Lexer::skipComment()
{
    const int kind = peek();
    if (kind == '/') {
        while (peek() != END && peek() != '\n') {
            take();
        }
        return true;
    }
    if (kind != '*') {
        return false;
    }
    take();
    int last = 0;
    for (int c = take(); c != END; c = take()) {
        if (last == '*' && c == '/') {
            return true;
        }
        last = c;
    }
    m_fault = "a comment does not end";
    return true;
}

int Lexer::skipBlanks()
{
    while (!m_hasSlash) {
        const int c = peek();
        if (c == '/') {
            take();
            m_hasSlash = !skipComment();
        } else if (isBlank(c)) {
            take();
        } else {
            return c;
        }
    }
    return '/';
}

void Lexer::skipLine()
{
    m_putBack.reset();
    m_hasSlash = false;
    while (peek() != END && peek() != '\n') {
        take();
    }
}

bool Lexer::isTooLong(const std::string& text)
{
    if (text.size() < dvf::limits::TOKEN_LENGTH) {
        return false;
    }
    m_fault = "a word is too long";
    return true;
}

Lexeme Lexer::finished(Lexeme::Kind kind, std::string text)
{
    if (m_fault != nullptr) {
        return {Lexeme::Kind::Fault, m_fault};
    }
    return {kind, std::move(text)};
}

Lexeme Lexer::readString()
{
    take();
    std::string text;
    for (int c = take(); c != '"'; c = take()) {
        if (c == END) {
            m_fault = "a string does not end";
            break;
        }
        // A backslash hides a quote and a line end. Any other stays: it is part of a regular expression.
        if (c == '\\') {
            const int hidden = peek();
            if (hidden == '\\') {
                text += '\\';
            }
            if (hidden == '"' || hidden == '\n' || hidden == '\\') {
                c = take();
            }
        }
        if (isTooLong(text)) {
            break;
        }
        text += static_cast<char>(c);
    }
    return finished(Lexeme::Kind::String, std::move(text));
}

/// Reads what follows "#{" up to "#}".
Lexeme Lexer::readVerbatim()
{
    take();
    std::string text;
    while (true) {
        const int c = take();
        if (c == END) {
            m_fault = "a block of code does not end";
            break;
        }
        if (c == '#' && peek() == '}') {
            take();
            break;
        }
        if (isTooLong(text)) {
            break;
        }
        text += static_cast<char>(c);
    }
    return finished(Lexeme::Kind::String, std::move(text));
}

void Lexer::readWord(std::string* text, bool withSlashes, int stop)
{
    std::size_t depth = 0;
    for (int c = peek(); isWordChar(c) || (withSlashes && c == '/'); c = peek()) {
        if (c == stop || (c == ')' && depth == 0) || isTooLong(*text)) {
            break;
        }
        depth += c == '(' ? 1 : 0;
        depth -= c == ')' ? 1 : 0;
        *text += static_cast<char>(take());
    }
}

Lexeme Lexer::readMacro()
{
    std::string text(1, static_cast<char>(take()));
    if (peek() != '{') {
        readWord(&text, true, ']');
        return finished(text.size() == 1 ? Lexeme::Kind::Punctuation : Lexeme::Kind::Macro, std::move(text));
    }
    std::size_t depth = 0;
    do {
        const int c = take();
        if (c == END) {
            m_fault = "a macro does not end";
            break;
        }
        depth += c == '{' ? 1 : 0;
        depth -= c == '}' ? 1 : 0;
        text += static_cast<char>(c);
    } while (depth > 0 && !isTooLong(text));
    return finished(Lexeme::Kind::Macro, std::move(text));
}

/// Reads a number, a word that begins like one, or a sign that stands alone.
Lexeme Lexer::readNumber()
{
    std::string text;
    for (int c = peek(); isNumberChar(c) && !isTooLong(text); c = peek()) {
        text += static_cast<char>(take());
    }
    if (isNameChar(peek())) {
        readWord(&text, false, ']');
    }
    Lexeme lexeme = finished(Lexeme::Kind::Word, std::move(text));
    if (lexeme.kind == Lexeme::Kind::Word && dvf::tokenToDouble(lexeme.text, &lexeme.number)) {
        lexeme.kind = Lexeme::Kind::Number;
    } else if (lexeme.text == "-" || lexeme.text == "+") {
        lexeme.kind = Lexeme::Kind::Punctuation;
    }
    return lexeme;
}

Lexeme Lexer::next()
{
    if (m_putBack.has_value()) {
        Lexeme lexeme = std::move(*m_putBack);
        m_putBack.reset();
        return lexeme;
    }
    const int c = skipBlanks();
    if (m_hasSlash) {
        m_hasSlash = false;
        return finished(Lexeme::Kind::Punctuation, "/");
    }
    if (c == END) {
        return finished(Lexeme::Kind::End, {});
    }
    if (c == '"') {
        return readString();
    }
    if (c == '$') {
        return readMacro();
    }
    if (isPunctuation(c)) {
        return finished(Lexeme::Kind::Punctuation, std::string(1, static_cast<char>(take())));
    }
    if (isDigit(c) || c == '.' || c == '+' || c == '-') {
        return readNumber();
    }
    std::string text(1, static_cast<char>(take()));
    if (c == '#' && peek() == '{') {
        return readVerbatim();
    }
    readWord(&text, false, END);
    return finished(c == '#' ? Lexeme::Kind::Directive : Lexeme::Kind::Word, std::move(text));
}

} // namespace foamdict
