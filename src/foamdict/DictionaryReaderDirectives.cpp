// SPDX-License-Identifier: MIT
#include "LibCore/Limits.h"
#include "foamdict/DictionaryReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <utility>

namespace foamdict {
namespace {

/// True for the directives whose value is what a program computes.
bool isComputed(const std::string& directive)
{
    return directive == "#calc" || directive == "#eval" || directive == "#codeStream";
}

bool isInclude(const std::string& directive)
{
    return directive == "#include" || directive == "#includeIfPresent" || directive == "#sinclude";
}

/// What a switch of a dictionary says; nothing if it is not one.
std::optional<bool> switchValue(const Token& token)
{
    constexpr std::array<std::string_view, 6> YES = {"true", "on", "yes", "y", "t", "any"};
    constexpr std::array<std::string_view, 6> NO = {"false", "off", "no", "n", "f", "none"};
    if (token.kind == Token::Kind::Number) {
        return std::abs(token.number) >= 1;
    }
    if (token.kind == Token::Kind::Word && std::ranges::find(YES, token.text) != YES.end()) {
        return true;
    }
    if (token.kind == Token::Kind::Word && std::ranges::find(NO, token.text) != NO.end()) {
        return false;
    }
    return std::nullopt;
}

bool areEqual(const Token& a, const Token& b)
{
    return a.kind == b.kind && (a.kind == Token::Kind::Number ? a.number == b.number : a.text == b.text);
}

} // namespace

/// Reads a directive where a keyword is expected.
void DictionaryReader::readDirective(File& file, const Scope& scope, const Lexeme& directive)
{
    const std::string& name = directive.text;
    if (isInclude(name)) {
        include(file, scope, name != "#include", nullptr);
    } else if (name == "#if" || name == "#ifeq") {
        readCondition(file, scope, name == "#ifeq");
    } else if ((name == "#else" || name == "#endif") && file.openConditions > 0) {
        --file.openConditions;
        if (name == "#else") {
            skipBranch(file, false);
        }
    } else if (name == "#inputMode") {
        setInputMode(file, next(file).text);
    } else if (name == "#remove") {
        readRemove(file, scope);
    } else if (name == "#merge" || name == "#overwrite" || name == "#default" || name == "#warn" || name == "#error") {
        readEntryInMode(file, scope, name);
    } else if (name == "#includeEtc" || name == "#sincludeEtc" || name == "#includeFunc") {
        report(file, name + " " + next(file).text + " is left out");
    } else if (isComputed(name)) {
        report(file, name + " is left out");
        skipCode(file);
    } else {
        report(file, "unknown directive " + name);
        file.lexer.skipLine();
    }
}

/// Takes a directive in a value.
void DictionaryReader::takeDirectiveValue(File& file, const Scope& scope, Lexeme directive, Value* value)
{
    if (isInclude(directive.text)) {
        include(file, scope, directive.text != "#include", value);
        return;
    }
    report(file, "the value of " + directive.text + " is not known");
    if (isComputed(directive.text)) {
        skipCode(file);
    }
    keep(file, {Token::Kind::Unresolved, std::move(directive.text)}, value);
}

std::optional<DictionaryReader::InputMode> DictionaryReader::inputMode(std::string_view name)
{
    constexpr std::array<std::pair<std::string_view, InputMode>, 6> MODES = {{{"merge", InputMode::Merge},
                                                                              {"default", InputMode::Merge},
                                                                              {"overwrite", InputMode::Overwrite},
                                                                              {"protect", InputMode::Protect},
                                                                              {"warn", InputMode::Warn},
                                                                              {"error", InputMode::Error}}};
    for (const auto& [modeName, mode] : MODES) {
        if (name == modeName) {
            return mode;
        }
    }
    return std::nullopt;
}

void DictionaryReader::setInputMode(File& file, const std::string& name)
{
    if (const std::optional<InputMode> mode = inputMode(name); mode.has_value()) {
        m_inputMode = *mode;
    } else {
        report(file, "unknown input mode " + name);
    }
}

/// Reads the entry after a directive that says what happens to an entry of the same keyword.
void DictionaryReader::readEntryInMode(File& file, const Scope& scope, const std::string& directive)
{
    // Here, and only here, a default is what holds if there is no other entry.
    const InputMode mode = directive == "#default" ? InputMode::Protect : *inputMode(directive.substr(1));
    Lexeme keyword = next(file);
    if (isKeyword(keyword)) {
        readEntry(file, scope, keyword, mode);
    } else {
        file.lexer.putBack(std::move(keyword));
    }
}

/// Reads "#remove name" or "#remove (name "expression" ...)".
void DictionaryReader::readRemove(File& file, const Scope& scope)
{
    Lexeme lexeme = next(file);
    const bool isList = lexeme.is('(');
    lexeme = isList ? next(file) : std::move(lexeme);
    for (; isKeyword(lexeme); lexeme = next(file)) {
        if (lexeme.kind == Lexeme::Kind::String && hasPatternCharacters(lexeme.text)) {
            removeMatching(file, scope, lexeme.text);
        } else {
            scope.entries.remove(lexeme.text);
        }
        if (!isList || m_isStopped) {
            return;
        }
    }
    if (!isList || !lexeme.is(')')) {
        stop(file, "#remove without names");
    }
}

/// Removes the entries whose keywords match an expression.
void DictionaryReader::removeMatching(File& file, const Scope& scope, const std::string& expression)
{
    const Pattern pattern(expression);
    // One that is too long to compile takes as much time as the longest that is not.
    m_macros.addSteps(pattern.isValid() ? pattern.stateCount() : dvf::limits::PATTERN_STATES);
    scope.entries.removeIf([&](std::string_view name) {
        m_macros.addSteps(pattern.steps(name));
        return !m_macros.isExhausted() && pattern.matches(name);
    });
    if (m_macros.isExhausted()) {
        stop(file, "too much work to remove entries");
    }
}

/// A word of a condition, with its macros replaced; `Unresolved` if it is not plain.
Token DictionaryReader::readConditionWord(File& file, const Scope& scope)
{
    Lexeme lexeme = next(file);
    Token token{Token::Kind::Unresolved, lexeme.text};
    if (lexeme.kind == Lexeme::Kind::Macro) {
        const Entry* const entry = findMacro(file, scope, lexeme.text, false);
        return entry != nullptr && entry->tokens.size() == 1 ? entry->tokens.front() : token;
    }
    if (lexeme.kind == Lexeme::Kind::String) {
        const std::optional<std::string> expanded = m_macros.expand(scope, lexeme.text);
        return expanded.has_value() ? Token{Token::Kind::String, *expanded} : token;
    }
    if (isKeyword(lexeme)) {
        return tokenOf(std::move(lexeme));
    }
    file.lexer.putBack(std::move(lexeme));
    return token;
}

void DictionaryReader::readCondition(File& file, const Scope& scope, bool isComparison)
{
    const Token first = readConditionWord(file, scope);
    std::optional<bool> isTrue;
    if (isComparison) {
        const Token second = readConditionWord(file, scope);
        if (first.kind != Token::Kind::Unresolved && second.kind != Token::Kind::Unresolved) {
            isTrue = areEqual(first, second);
        }
    } else {
        isTrue = switchValue(first);
    }
    if (!isTrue.has_value()) {
        report(file, "a condition that cannot be decided counts as false");
    }
    if (isTrue.value_or(false)) {
        ++file.openConditions;
    } else {
        skipBranch(file, true);
    }
}

/// Skips to the "#endif" of the condition whose branch begins here, or to its "#else".
void DictionaryReader::skipBranch(File& file, bool stopsAtElse)
{
    std::size_t depth = 0;
    for (Lexeme lexeme = next(file); lexeme.kind != Lexeme::Kind::End; lexeme = next(file)) {
        if (lexeme.kind != Lexeme::Kind::Directive) {
            continue;
        }
        if (lexeme.text == "#if" || lexeme.text == "#ifeq") {
            ++depth;
        } else if (lexeme.text == "#else" && depth == 0 && stopsAtElse) {
            ++file.openConditions;
            return;
        } else if (lexeme.text == "#endif" && depth-- == 0) {
            return;
        }
    }
    stop(file, "an #endif is missing");
}

/// Skips what a program is to compute: a string, or a block with its brackets balanced.
void DictionaryReader::skipCode(File& file)
{
    Lexeme lexeme = next(file);
    if (!lexeme.is('{')) {
        if (lexeme.kind != Lexeme::Kind::String) {
            file.lexer.putBack(std::move(lexeme));
        }
        return;
    }
    for (std::size_t depth = 1; depth > 0;) {
        lexeme = next(file);
        if (lexeme.kind == Lexeme::Kind::End) {
            stop(file, "a block of code does not end");
            return;
        }
        depth += lexeme.is('{') ? 1 : 0;
        depth -= lexeme.is('}') ? 1 : 0;
    }
}

/// The path of an included file; empty if its name has a part that cannot be known.
std::string DictionaryReader::includePath(const File& file, const Scope& scope, std::string name)
{
    // What the folder of the case is called, and the folder in it.
    constexpr std::array<std::pair<std::string_view, std::string_view>, 5> FOLDERS = {{{"<case>", ""},
                                                                                       {"<system>", "system"},
                                                                                       {"<constant>", "constant"},
                                                                                       {"$FOAM_CASE/", ""},
                                                                                       {"${FOAM_CASE}", ""}}};
    std::filesystem::path folder = std::filesystem::path(file.path).parent_path();
    for (const auto& [tag, inner] : FOLDERS) {
        if (name.starts_with(tag)) {
            folder = std::filesystem::path(m_place.caseFolder) / inner;
            name.erase(0, name.find_first_not_of('/', tag.size()));
            break;
        }
    }
    const std::optional<std::string> expanded = m_macros.expand(scope, name);
    if (!expanded.has_value() || expanded->empty() || expanded->front() == '<' || expanded->front() == '~') {
        return {};
    }
    return (folder / *expanded).lexically_normal().string();
}

/// Reads an included file: its entries into the scope or, if there is a value, its words as part of that.
void DictionaryReader::include(File& file, const Scope& scope, bool isOptional, Value* value)
{
    Lexeme name = next(file);
    if (!isKeyword(name)) {
        file.lexer.putBack(std::move(name));
        report(file, "an include without a name");
        return;
    }
    const std::string path = includePath(file, scope, name.text);
    if (path.empty() || std::ranges::find(m_includes, path) != m_includes.end()) {
        report(file, (path.empty() ? "not a known path: " : "a file includes itself: ") + name.text);
        return;
    }
    if (m_includes.size() > dvf::limits::INCLUDE_DEPTH || ++m_includeCount > dvf::limits::INCLUDE_COUNT) {
        stop(file, "too many files are included");
        return;
    }
    const std::unique_ptr<CharSource> chars = m_client.openInclude(path);
    if (chars == nullptr) {
        if (!isOptional) {
            report(file, "cannot open " + path);
        }
        return;
    }
    File included{Lexer(*chars, dvf::limits::INCLUDE_BYTES - m_includedBytes), path, true};
    m_includes.push_back(path);
    if (value == nullptr) {
        readEntries(included, scope, Ending::File);
    } else {
        readTokens(included, scope, next(included), value);
        // Its ";" ends the included text only.
        value->isEnded = false;
    }
    m_includes.pop_back();
}

} // namespace foamdict
