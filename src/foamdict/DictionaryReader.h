// SPDX-License-Identifier: MIT
#pragma once

#include "foamdict/Lexer.h"
#include "foamdict/Macros.h"
#include "foamdict/Parse.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace foamdict {

/// True for what may be a keyword.
inline bool isKeyword(const Lexeme& lexeme)
{
    return lexeme.kind == Lexeme::Kind::Word || lexeme.kind == Lexeme::Kind::String ||
           lexeme.kind == Lexeme::Kind::Number;
}

/// A word, string, number or punctuation as the token of a value.
Token tokenOf(Lexeme lexeme);

/// One reading of a dictionary: `parse` as an object.
///
/// It stops at the first fault. The blocks that are open then are closed, so that all their whole entries are kept; a
/// value that is cut off is not.
class DictionaryReader
{
public:
    DictionaryReader(const Place& place, Client& client, Content* content)
        : m_place(place), m_client(client), m_content(*content)
    {}

    /// Reads the file of the place.
    void read(CharSource& chars);

private:
    /// A file that is being read.
    struct File
    {
        Lexer lexer;
        std::string path;
        bool isIncluded = false;
        std::size_t openConditions = 0; ///< of `#if` whose entries are being read
        std::size_t counted = 0;        ///< characters that are in `m_readBytes`
    };
    /// What ends a run of entries.
    enum class Ending
    {
        File,
        Brace,      ///< "}"
        Parenthesis ///< ")"
    };
    /// What happens to an entry whose keyword is there already.
    enum class InputMode
    {
        Merge,
        Overwrite,
        Protect,
        Warn,
        Error
    };
    /// A value that is being read.
    struct Value
    {
        std::vector<Token>& tokens;
        std::string brackets; ///< those that are open
        bool isInItems;       ///< true directly in a list of entries, whose ")" may end the value
        bool isEnded = false;
    };

    // Entries (DictionaryReader.cpp)
    void readHeader(File& file, const Scope& top);
    bool readItems(File& file);
    void readEntries(File& file, const Scope& scope, Ending ending);
    bool isEnd(File& file, const Lexeme& lexeme, Ending ending);
    void readEntry(File& file, const Scope& scope, const Lexeme& keyword, InputMode mode);
    std::unique_ptr<Dictionary> readBlock(File& file, const Scope& outer, const std::string& keyword);
    void takeHeader(const File& file, std::unique_ptr<Dictionary> header);
    void setKeyword(File& file, const Lexeme& keyword, Entry* entry);
    void add(File& file, const Scope& scope, Entry entry, InputMode mode);
    bool countEntry(File& file);

    // Values (DictionaryReaderValues.cpp)
    bool readValue(File& file, const Scope& scope, Lexeme first, Entry* entry);
    void readTokens(File& file, const Scope& scope, Lexeme first, Value* value);
    void takeToken(File& file, const Scope& scope, Lexeme lexeme, Value* value);
    void takePunctuation(File& file, Lexeme lexeme, Value* value);
    bool readList(File& file, const Lexeme& count, Value* value);
    bool countTokens(File& file, std::size_t count);
    bool keep(File& file, Token token, Value* value);

    // Macros (DictionaryReaderMacros.cpp)
    const Entry* lookUp(const Scope& scope, const std::string& macro, bool isStatement);
    const Entry* findMacro(File& file, const Scope& scope, const std::string& macro, bool isStatement);
    void expandMacro(File& file, const Scope& scope, Lexeme macro, Value* value);
    void expandBlock(File& file, const Dictionary& block, Value* value);
    void readMacroStatement(File& file, const Scope& scope, const Lexeme& macro);
    std::unique_ptr<Dictionary> copyBlock(File& file, const Dictionary& block, std::size_t depth);
    bool countCopy(File& file, std::size_t bytes);

    // Directives (DictionaryReaderDirectives.cpp)
    void readDirective(File& file, const Scope& scope, const Lexeme& directive);
    void takeDirectiveValue(File& file, const Scope& scope, Lexeme directive, Value* value);
    static std::optional<InputMode> inputMode(std::string_view name);
    void setInputMode(File& file, const std::string& name);
    void readEntryInMode(File& file, const Scope& scope, const std::string& directive);
    void readRemove(File& file, const Scope& scope);
    void removeMatching(File& file, const Scope& scope, const std::string& expression);
    void readCondition(File& file, const Scope& scope, bool isComparison);
    Token readConditionWord(File& file, const Scope& scope);
    void skipBranch(File& file, bool stopsAtElse);
    void skipCode(File& file);
    void include(File& file, const Scope& scope, bool isOptional, Value* value);
    std::string includePath(const File& file, const Scope& scope, std::string name);

    void report(const File& file, const std::string& problem);
    /// Stops the reading; only the first problem counts.
    void stop(const File& file, const std::string& problem);
    /// The next word. Stops at faults of the text.
    Lexeme next(File& file);

    const Place& m_place;
    Client& m_client;
    Content& m_content;
    MacroSearch m_macros;
    InputMode m_inputMode = InputMode::Merge;
    std::vector<std::string> m_path;     ///< keywords of the open blocks and of the current entry
    std::vector<std::string> m_includes; ///< the files that are being read, from the outermost
    std::set<std::string> m_reports;
    bool m_isStopped = false;
    std::size_t m_tokenCount = 0;
    std::size_t m_entryCount = 0;
    std::size_t m_copiedBytes = 0;
    std::size_t m_readBytes = 0;
    std::size_t m_includeCount = 0;
    std::size_t m_includedBytes = 0;
    std::size_t m_patternStates = 0;
};

} // namespace foamdict
