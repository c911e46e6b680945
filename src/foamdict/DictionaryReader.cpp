// SPDX-License-Identifier: MIT
#include "foamdict/DictionaryReader.h"

#include "LibCore/Limits.h"

#include <charconv>
#include <utility>

namespace foamdict {
namespace {

/// A text of a file as part of a message, cut to a length that a log can take.
std::string excerpt(const std::string& text)
{
    return text.substr(0, dvf::limits::LOG_EXCERPT);
}

/// The line of the next character; the source knows it also after a list that the client took.
std::size_t lineOf(const Lexer& lexer)
{
    const std::size_t line = lexer.chars().line();
    return line == 0 ? lexer.line() : line;
}

} // namespace

void DictionaryReader::report(const File& file, const std::string& problem)
{
    const std::string text = file.path + ", line " + std::to_string(lineOf(file.lexer)) + ": " + excerpt(problem);
    if (m_reports.size() < dvf::limits::DICTIONARY_REPORTS && m_reports.insert(text).second) {
        m_client.report(text);
    }
}

void DictionaryReader::stop(const File& file, const std::string& problem)
{
    if (!m_isStopped) {
        m_isStopped = true;
        m_content.isComplete = false;
        m_content.problem = file.path + ", line " + std::to_string(lineOf(file.lexer)) + ": " + excerpt(problem);
    }
}

Lexeme DictionaryReader::next(File& file)
{
    Lexeme lexeme = file.lexer.next();
    const std::size_t bytes = file.lexer.taken() - file.counted;
    file.counted += bytes;
    m_readBytes += bytes;
    m_includedBytes += file.isIncluded ? bytes : 0;
    if (m_includedBytes > dvf::limits::INCLUDE_BYTES) {
        stop(file, "too much text is included");
    } else if (lexeme.kind == Lexeme::Kind::Fault) {
        stop(file, lexeme.text);
    }
    return m_isStopped ? Lexeme{Lexeme::Kind::End, {}} : std::move(lexeme);
}

void DictionaryReader::read(CharSource& chars)
{
    File file{Lexer(chars), m_place.file};
    m_includes.push_back(file.path);
    const Scope top{m_content.entries};
    Lexeme first = next(file);
    // Some tools write the whole dictionary as a block.
    if (!first.is('{')) {
        file.lexer.putBack(std::move(first));
        readHeader(file, top);
        if (!readItems(file)) {
            readEntries(file, top, Ending::File);
        }
    } else {
        readEntries(file, top, Ending::Brace);
    }
    m_content.entries.closeGaps();
}

void DictionaryReader::readHeader(File& file, const Scope& top)
{
    Lexeme first = next(file);
    if (first.kind != Lexeme::Kind::Word || first.text != "FoamFile") {
        file.lexer.putBack(std::move(first));
        return;
    }
    readEntry(file, top, first, m_inputMode);
}

/// Reads the file as a list of entries, if it is one.
bool DictionaryReader::readItems(File& file)
{
    Lexeme first = next(file);
    while (first.is(';')) {
        first = next(file);
    }
    if (first.kind == Lexeme::Kind::Number && file.lexer.skipBlanks() == '(') {
        std::size_t count = 0;
        const char* const end = first.text.data() + first.text.size();
        const std::from_chars_result result = std::from_chars(first.text.data(), end, count);
        if (result.ec == std::errc() && result.ptr == end) {
            m_content.statedCount = count;
        }
        first = next(file);
    }
    if (!first.is('(')) {
        file.lexer.putBack(std::move(first));
        return false;
    }
    m_content.items.emplace();
    readEntries(file, Scope{*m_content.items, nullptr, true}, Ending::Parenthesis);
    m_content.items->closeGaps();
    return true;
}

/// True if the lexeme ends the entries, rightly or by a fault.
bool DictionaryReader::isEnd(File& file, const Lexeme& lexeme, Ending ending)
{
    if (lexeme.kind == Lexeme::Kind::End) {
        if (ending != Ending::File) {
            stop(file, ending == Ending::Brace ? "a \"}\" is missing" : "a \")\" is missing");
        } else if (file.openConditions > 0) {
            stop(file, "an #endif is missing");
        }
        return true;
    }
    if (lexeme.is(ending == Ending::Parenthesis ? ')' : '}') && ending != Ending::File) {
        return true;
    }
    if (lexeme.kind == Lexeme::Kind::Punctuation && !lexeme.is(';')) {
        stop(file, "\"" + lexeme.text + "\" where a keyword is expected");
        return true;
    }
    return false;
}

void DictionaryReader::readEntries(File& file, const Scope& scope, Ending ending)
{
    while (!m_isStopped) {
        Lexeme lexeme = next(file);
        if (isEnd(file, lexeme, ending)) {
            return;
        }
        if (scope.keepsEqualNames && lexeme.kind == Lexeme::Kind::Number) {
            stop(file, "a number in a list of entries");
        } else if (isKeyword(lexeme)) {
            readEntry(file, scope, lexeme, m_inputMode);
        } else if (lexeme.kind == Lexeme::Kind::Macro) {
            readMacroStatement(file, scope, lexeme);
        } else if (lexeme.kind == Lexeme::Kind::Directive) {
            readDirective(file, scope, lexeme);
        }
    }
}

void DictionaryReader::setKeyword(File& file, const Lexeme& keyword, Entry* entry)
{
    entry->keyword = keyword.text;
    entry->isPattern = keyword.kind == Lexeme::Kind::String && hasPatternCharacters(keyword.text);
    if (!entry->isPattern) {
        return;
    }
    // One that is too large counts too, so that nobody compiles a million of them.
    if (m_patternStates > dvf::limits::DICTIONARY_PATTERN_STATES) {
        report(file, "too many regular expressions: \"" + keyword.text + "\" is not used");
        return;
    }
    auto pattern = std::make_shared<const Pattern>(keyword.text);
    m_patternStates += pattern->isValid() ? pattern->stateCount() : dvf::limits::PATTERN_STATES;
    if (!pattern->isValid()) {
        report(file, "not a regular expression: \"" + keyword.text + "\"");
    } else if (m_patternStates > dvf::limits::DICTIONARY_PATTERN_STATES) {
        report(file, "too many regular expressions: \"" + keyword.text + "\" is not used");
    } else {
        entry->pattern = std::move(pattern);
    }
}

bool DictionaryReader::countEntry(File& file)
{
    if (++m_entryCount > dvf::limits::DICTIONARY_ENTRIES) {
        stop(file, "too many entries");
    }
    return !m_isStopped;
}

void DictionaryReader::readEntry(File& file, const Scope& scope, const Lexeme& keyword, InputMode mode)
{
    if (!countEntry(file)) {
        return;
    }
    Entry entry;
    entry.line = file.isIncluded ? 0 : file.lexer.chars().line();
    setKeyword(file, keyword, &entry);
    Lexeme first = next(file);
    // A name with blanks, which mesh tools write although OpenFOAM itself would not read it.
    while (first.kind == Lexeme::Kind::Word && (scope.keepsEqualNames || file.lexer.skipBlanks() == '{')) {
        entry.keyword += " " + first.text;
        first = next(file);
    }
    if (first.is('{')) {
        entry.block = readBlock(file, scope, entry.keyword);
        // An included file has a header of its own, which says nothing about this one.
        if (entry.keyword == "FoamFile" && (file.isIncluded || (scope.outer == nullptr && !scope.keepsEqualNames))) {
            takeHeader(file, std::move(entry.block));
        } else if (entry.block != nullptr) {
            add(file, scope, std::move(entry), mode);
        }
        return;
    }
    m_path.push_back(entry.keyword);
    const bool isWhole = readValue(file, scope, std::move(first), &entry);
    m_path.pop_back();
    if (isWhole) {
        add(file, scope, std::move(entry), mode);
    }
}

void DictionaryReader::takeHeader(const File& file, std::unique_ptr<Dictionary> header)
{
    if (file.isIncluded || header == nullptr || !m_content.header.entries().empty()) {
        return;
    }
    m_content.header = std::move(*header);
    if (!m_isStopped) {
        m_client.onHeader(m_content.header);
    }
}

std::unique_ptr<Dictionary> DictionaryReader::readBlock(File& file, const Scope& outer, const std::string& keyword)
{
    if (outer.depth + 1 >= dvf::limits::DICTIONARY_DEPTH) {
        stop(file, "blocks are nested too deep");
        return nullptr;
    }
    auto block = std::make_unique<Dictionary>();
    m_path.push_back(keyword);
    readEntries(file, Scope{*block, &outer, false, outer.depth + 1}, Ending::Brace);
    block->closeGaps();
    m_path.pop_back();
    return block;
}

void DictionaryReader::add(File& file, const Scope& scope, Entry entry, InputMode mode)
{
    if (scope.keepsEqualNames) {
        scope.entries.append(std::move(entry));
    } else if (mode == InputMode::Merge) {
        scope.entries.merge(std::move(entry));
    } else if (mode == InputMode::Overwrite || !scope.entries.contains(entry)) {
        scope.entries.replace(std::move(entry));
    } else if (mode == InputMode::Error) {
        stop(file, "a second entry \"" + entry.keyword + "\"");
    } else if (mode == InputMode::Warn) {
        report(file, "a second entry \"" + entry.keyword + "\" is left out");
    }
}

Content parse(CharSource& chars, const Place& place, Client& client)
{
    Content content;
    DictionaryReader(place, client, &content).read(chars);
    return content;
}

} // namespace foamdict
