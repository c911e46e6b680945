// SPDX-License-Identifier: MIT
#include "LibCore/Limits.h"
#include "foamdict/DictionaryReader.h"

#include <utility>

namespace foamdict {
namespace {

/// The value of an entry as a keyword; the macro itself if the value is not one.
Lexeme keywordOf(const Entry* source, const Lexeme& macro)
{
    if (source == nullptr || source->tokens.size() != 1) {
        return {Lexeme::Kind::Word, macro.text};
    }
    const Token& token = source->tokens.front();
    switch (token.kind) {
    case Token::Kind::String:
        return {Lexeme::Kind::String, token.text};
    case Token::Kind::Word:
    case Token::Kind::Number:
        return {Lexeme::Kind::Word, token.text};
    default:
        return {Lexeme::Kind::Word, macro.text};
    }
}

} // namespace

/// Finds the entry that a macro names. A macro in braces may hold others: "${${name}}".
const Entry* DictionaryReader::lookUp(const Scope& scope, const std::string& macro, bool isStatement)
{
    std::string name = macro.substr(1);
    if (name.starts_with('{')) {
        const std::string_view inner = std::string_view(name).substr(1, name.size() - 2);
        name = m_macros.expand(scope, inner).value_or(std::string());
    }
    return isStatement ? m_macros.findStatement(scope, name) : m_macros.find(scope, name);
}

/// The same; reports a macro that names nothing.
const Entry* DictionaryReader::findMacro(File& file, const Scope& scope, const std::string& macro, bool isStatement)
{
    const Entry* const entry = lookUp(scope, macro, isStatement);
    if (m_macros.isExhausted()) {
        stop(file, "too much work to find macros");
        return nullptr;
    }
    if (entry == nullptr) {
        report(file, "nothing is named " + macro);
    }
    return entry;
}

bool DictionaryReader::countCopy(File& file, std::size_t bytes)
{
    m_copiedBytes += bytes;
    if (m_copiedBytes > dvf::limits::MACRO_BYTES + dvf::limits::MACRO_RATIO * m_readBytes) {
        stop(file, "macros copy too much");
    }
    return !m_isStopped;
}

/// Replaces a macro in a value.
void DictionaryReader::expandMacro(File& file, const Scope& scope, Lexeme macro, Value* value)
{
    const Entry* const source = findMacro(file, scope, macro.text, false);
    if (source == nullptr) {
        if (!m_isStopped) {
            keep(file, {Token::Kind::Unresolved, std::move(macro.text)}, value);
        }
        return;
    }
    if (source->block != nullptr) {
        expandBlock(file, *source->block, value);
        return;
    }
    for (const Token& token : source->tokens) {
        if (!countCopy(file, sizeof(Token) + token.text.size()) || !keep(file, token, value)) {
            return;
        }
    }
}

/// Writes a block out as the tokens of its entries, which is what it means among other tokens.
void DictionaryReader::expandBlock(File& file, const Dictionary& block, Value* value)
{
    const auto keepWord = [&](Token::Kind kind, const std::string& text) {
        return countCopy(file, sizeof(Token) + text.size()) && keep(file, {kind, text}, value);
    };
    for (const Entry& entry : block.entries()) {
        bool isKept = keepWord(entry.isPattern ? Token::Kind::String : Token::Kind::Word, entry.keyword);
        if (entry.block != nullptr) {
            isKept = isKept && keepWord(Token::Kind::Punctuation, "{");
            expandBlock(file, *entry.block, value);
        }
        for (const Token& token : entry.tokens) {
            isKept = isKept && countCopy(file, sizeof(Token) + token.text.size()) && keep(file, token, value);
        }
        if (!isKept || !keepWord(Token::Kind::Punctuation, entry.block != nullptr ? "}" : ";")) {
            return;
        }
    }
}

/// Copies a block so that it can be the entry of another one.
/// @param depth of the copy
/// @return null if a bound is reached; the reading has stopped then
std::unique_ptr<Dictionary> DictionaryReader::copyBlock(File& file, const Dictionary& block, std::size_t depth)
{
    if (depth >= dvf::limits::DICTIONARY_DEPTH) {
        stop(file, "blocks are nested too deep");
        return nullptr;
    }
    auto copy = std::make_unique<Dictionary>();
    for (const Entry& entry : block.entries()) {
        std::size_t bytes = sizeof(Entry) + sizeof(Dictionary) + entry.keyword.size();
        for (const Token& token : entry.tokens) {
            bytes += sizeof(Token) + token.text.size();
        }
        if (!countCopy(file, bytes) || !countEntry(file) || !countTokens(file, entry.tokens.size())) {
            return nullptr;
        }
        Entry same;
        same.keyword = entry.keyword;
        same.isPattern = entry.isPattern;
        same.pattern = entry.pattern;
        same.tokens = entry.tokens;
        if (entry.block != nullptr) {
            same.block = copyBlock(file, *entry.block, depth + 1);
            if (same.block == nullptr) {
                return nullptr;
            }
        }
        copy->append(std::move(same));
    }
    return copy;
}

/// Reads a macro where a keyword is expected: "$name;" adds the entries of a block, "$name { ... }" takes the value as
/// the keyword.
void DictionaryReader::readMacroStatement(File& file, const Scope& scope, const Lexeme& macro)
{
    const Entry* const source = findMacro(file, scope, macro.text, true);
    Lexeme after = next(file);
    if (after.is('{')) {
        file.lexer.putBack(std::move(after));
        readEntry(file, scope, keywordOf(source, macro), m_inputMode);
        return;
    }
    file.lexer.putBack(std::move(after));
    if (source == nullptr) {
        return;
    }
    if (source->block == nullptr) {
        report(file, "not a block: " + macro.text);
        return;
    }
    // A copy first: an entry of the block may replace the block itself.
    const std::unique_ptr<Dictionary> copy = copyBlock(file, *source->block, scope.depth);
    if (copy != nullptr) {
        for (Entry& entry : copy->takeEntries()) {
            add(file, scope, std::move(entry), m_inputMode);
        }
    }
}

} // namespace foamdict
