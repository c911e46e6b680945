// SPDX-License-Identifier: MIT
#include "LibCore/Limits.h"
#include "foamdict/DictionaryReader.h"

#include <charconv>
#include <utility>

namespace foamdict {
namespace {

constexpr std::string_view LIST_START = "List<";

/// The type in "List<TYPE>" if that is the last token; empty if it is not.
std::string_view listType(const std::vector<Token>& tokens)
{
    if (tokens.empty() || tokens.back().kind != Token::Kind::Word) {
        return {};
    }
    const std::string_view word = tokens.back().text;
    if (!word.starts_with(LIST_START) || !word.ends_with('>')) {
        return {};
    }
    return word.substr(LIST_START.size(), word.size() - LIST_START.size() - 1);
}

} // namespace

Token tokenOf(Lexeme lexeme)
{
    Token::Kind kind = Token::Kind::Word;
    if (lexeme.kind == Lexeme::Kind::String) {
        kind = Token::Kind::String;
    } else if (lexeme.kind == Lexeme::Kind::Number) {
        kind = Token::Kind::Number;
    } else if (lexeme.kind == Lexeme::Kind::Punctuation) {
        kind = Token::Kind::Punctuation;
    }
    return {kind, std::move(lexeme.text), lexeme.number, 0};
}

/// Reads the value of an entry: its tokens and its ";", which may be missing at the end of a block or file.
/// @return false if the reading stopped in the value
bool DictionaryReader::readValue(File& file, const Scope& scope, Lexeme first, Entry* entry)
{
    if (first.kind == Lexeme::Kind::Macro) {
        const Entry* const source = lookUp(scope, first.text, false);
        Lexeme second = next(file);
        const bool isAlone = second.is(';') || second.is('}') || second.kind == Lexeme::Kind::End;
        file.lexer.putBack(std::move(second));
        if (isAlone && source != nullptr && source->block != nullptr) {
            entry->block = copyBlock(file, *source->block, scope.depth + 1);
            return entry->block != nullptr;
        }
    }
    Value value{entry->tokens, {}, scope.keepsEqualNames};
    readTokens(file, scope, std::move(first), &value);
    if (!value.brackets.empty()) {
        stop(file, "a bracket is not closed");
    }
    return !m_isStopped;
}

void DictionaryReader::readTokens(File& file, const Scope& scope, Lexeme first, Value* value)
{
    for (Lexeme lexeme = std::move(first); lexeme.kind != Lexeme::Kind::End; lexeme = next(file)) {
        takeToken(file, scope, std::move(lexeme), value);
        if (value->isEnded || m_isStopped) {
            return;
        }
    }
}

void DictionaryReader::takeToken(File& file, const Scope& scope, Lexeme lexeme, Value* value)
{
    if (lexeme.kind == Lexeme::Kind::Punctuation) {
        takePunctuation(file, std::move(lexeme), value);
    } else if (lexeme.kind == Lexeme::Kind::Macro) {
        expandMacro(file, scope, std::move(lexeme), value);
    } else if (lexeme.kind == Lexeme::Kind::Directive) {
        takeDirectiveValue(file, scope, std::move(lexeme), value);
    } else if (lexeme.kind != Lexeme::Kind::Number || !readList(file, lexeme, value)) {
        keep(file, tokenOf(std::move(lexeme)), value);
    }
}

void DictionaryReader::takePunctuation(File& file, Lexeme lexeme, Value* value)
{
    std::string& open = value->brackets;
    if (open.empty() && lexeme.is(';')) {
        value->isEnded = true;
        return;
    }
    if (open.empty() && (lexeme.is('}') || (lexeme.is(')') && value->isInItems))) {
        file.lexer.putBack(std::move(lexeme));
        value->isEnded = true;
        return;
    }
    if (lexeme.is('(') || lexeme.is('{')) {
        open += lexeme.text;
    } else if (lexeme.is(')') || lexeme.is('}')) {
        const char partner = lexeme.is(')') ? '(' : '{';
        if (open.empty() || open.back() != partner) {
            stop(file, "\"" + lexeme.text + "\" closes no bracket");
            return;
        }
        open.pop_back();
    }
    keep(file, tokenOf(std::move(lexeme)), value);
}

bool DictionaryReader::countTokens(File& file, std::size_t count)
{
    m_tokenCount += count;
    if (m_tokenCount > dvf::limits::DICTIONARY_TOKENS) {
        stop(file, "too many values");
    }
    return !m_isStopped;
}

bool DictionaryReader::keep(File& file, Token token, Value* value)
{
    if (!countTokens(file, 1)) {
        return false;
    }
    value->tokens.push_back(std::move(token));
    return true;
}

/// Offers the list that begins with this count to the client.
/// @return true if the client has read it, which ends the value
bool DictionaryReader::readList(File& file, const Lexeme& count, Value* value)
{
    std::size_t size = 0;
    const char* const end = count.text.data() + count.text.size();
    const std::from_chars_result result = std::from_chars(count.text.data(), end, size);
    if (!value->brackets.empty() || result.ec != std::errc() || result.ptr != end) {
        return false;
    }
    const int bracket = file.lexer.skipBlanks();
    if (bracket != '(' && bracket != '{') {
        return false;
    }
    const std::string type(listType(value->tokens));
    const std::optional<std::size_t> list =
        m_client.readList({type, size, static_cast<char>(bracket), m_path, file.lexer.chars()});
    if (!list.has_value()) {
        return false;
    }
    if (!type.empty()) {
        value->tokens.pop_back();
    }
    keep(file, {Token::Kind::List, type, static_cast<double>(size), *list}, value);
    Lexeme after = next(file);
    if (after.is(')') && !value->isInItems) {
        after = next(file);
    }
    // A ";" is skipped where the next keyword is expected.
    file.lexer.putBack(std::move(after));
    value->isEnded = true;
    return true;
}

} // namespace foamdict
