// SPDX-License-Identifier: MIT
#include "foamdict/DictionaryText.h"

#include <gtest/gtest.h>

using foamdict::Content;
using foamdict::Dictionary;
using foamdict::Entry;
using foamdict::Token;

namespace {

std::string inQuotes(std::string_view text)
{
    std::string result = "\"";
    for (const char c : text) {
        result += c == '"' ? "\\\"" : std::string(1, c);
    }
    return result + "\"";
}

/// True for a text such as "-1!a", of which only the number is read unless it is in quotes: no name goes on like that.
bool isCutAfterNumber(const std::string& text)
{
    const std::size_t end = text.find_first_not_of("0123456789.+-eE");
    if (end == 0 || end == std::string::npos || std::string_view("eE").find(text.front()) != std::string_view::npos) {
        return false;
    }
    const auto c = static_cast<unsigned char>(text[end]);
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    return !isLetter && c <= 127 && std::string_view("_<%@").find(text[end]) == std::string_view::npos;
}

std::string keywordText(const Entry& entry)
{
    // Quoted names that are no words stay in quotes.
    const bool isWord = !entry.keyword.empty() && entry.keyword != "-" && entry.keyword != "+" &&
                        !isCutAfterNumber(entry.keyword) &&
                        entry.keyword.find_first_of(" \t\n\v\f\r;{}\"'/") == std::string::npos &&
                        std::string_view("#$()[]:,=*").find(entry.keyword.front()) == std::string_view::npos;
    return entry.isPattern || !isWord ? inQuotes(entry.keyword) : entry.keyword;
}

std::string textOf(const Token& token)
{
    if (token.kind == Token::Kind::List) {
        return "<list " + std::to_string(token.list) + ">";
    }
    return token.kind == Token::Kind::String ? inQuotes(token.text) : token.text;
}

} // namespace

std::string textOf(const std::vector<Token>& tokens)
{
    std::string text;
    for (const Token& token : tokens) {
        text += (text.empty() ? "" : " ") + textOf(token);
    }
    return text;
}

std::string textOf(const Dictionary& dictionary)
{
    std::string text;
    for (const Entry& entry : dictionary.entries()) {
        text += (text.empty() ? "" : " ") + keywordText(entry);
        if (entry.block != nullptr) {
            const std::string inner = textOf(*entry.block);
            text += inner.empty() ? " { }" : " { " + inner + " }";
        } else {
            text += (entry.tokens.empty() ? "" : " ") + textOf(entry.tokens) + ";";
        }
    }
    return text;
}

std::unique_ptr<foamdict::CharSource> TextClient::openInclude(const std::string& path)
{
    opened.push_back(path);
    const auto file = files.find(path);
    return file == files.end() ? nullptr : std::make_unique<foamdict::TextChars>(file->second);
}

Content parseText(std::string_view text, foamdict::Client& client)
{
    foamdict::TextChars chars(text);
    return foamdict::parse(chars, {"case/system/dict", "case"}, client);
}

std::string reread(std::string_view text)
{
    TextClient client;
    const Content content = parseText(text, client);
    const std::string result =
        content.items.has_value() ? "( " + textOf(*content.items) + " )" : textOf(content.entries);
    return result + (content.problem.empty() ? "" : " -> " + content.problem);
}

void expectRead(const std::vector<TextCase>& cases)
{
    for (const TextCase& row : cases) {
        EXPECT_EQ(reread(row.text), row.expected) << row.text;
    }
}
