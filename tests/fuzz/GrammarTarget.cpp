// SPDX-License-Identifier: MIT
//
// The grammar of dictionaries: whatever a text holds, what is read of it must read the same again.
#include "foamdict/DictionaryText.h"
#include "foamdict/Pattern.h"
#include "fuzz/FuzzHarness.h"

#include <algorithm>
#include <regex.h>

namespace {

using foamdict::Content;
using foamdict::Dictionary;
using foamdict::Entry;
using foamdict::Token;

/// Reads each list that is asked for, up to the first bracket of its kind that closes.
class ListClient : public TextClient
{
public:
    explicit ListClient(bool readsLists) : m_readsLists(readsLists) {}

    std::optional<std::size_t> readList(const foamdict::ListPlace& place) override
    {
        expect(!place.path.empty() && place.chars.peek() == place.bracket, "a list without a place");
        if (!m_readsLists || place.count % 2 == 0) {
            return std::nullopt;
        }
        const auto close = static_cast<unsigned char>(place.bracket == '(' ? ')' : '}');
        for (int c = place.chars.take(); c != close && c != foamdict::CharSource::END;) {
            c = place.chars.take();
        }
        return place.count;
    }

private:
    bool m_readsLists;
};

/// True if the value is the same after writing and reading it: tokens that were read apart or could not be resolved are
/// not, nor backslashes in a block of code, nor the ";" of a block that a macro put among other tokens.
bool isWritable(const Token& token)
{
    return token.kind != Token::Kind::List && token.kind != Token::Kind::Unresolved &&
           !(token.kind == Token::Kind::Punctuation && token.text == ";") &&
           (token.kind != Token::Kind::String || token.text.find('\\') == std::string::npos);
}

bool isWritable(const Dictionary& dictionary)
{
    return std::ranges::all_of(dictionary.entries(), [](const Entry& entry) {
        // "a b {" is a block with a name of two words, unless it came together from several files.
        const auto first =
            std::ranges::find_if(entry.tokens, [](const Token& token) { return token.kind != Token::Kind::Word; });
        const bool looksLikeBlock = first != entry.tokens.end() && first->isPunctuation('{');
        return !looksLikeBlock && entry.keyword.find('\\') == std::string::npos &&
               std::ranges::all_of(entry.tokens, [](const Token& token) { return isWritable(token); }) &&
               (entry.block == nullptr || isWritable(*entry.block));
    });
}

/// Each entry must be found by its name, so there may be only one of each.
void checkIndex(const Dictionary& dictionary)
{
    for (const Entry& entry : dictionary.entries()) {
        expect(entry.isPattern || dictionary.find(entry.keyword) == &entry, "an entry is not found");
        expect(entry.block == nullptr || entry.tokens.empty(), "an entry has a block and tokens");
        if (entry.pattern != nullptr) {
            const Entry* const found = dictionary.findPattern(entry.keyword);
            expect(!entry.pattern->matches(entry.keyword) || found >= &entry, "an expression is not found");
        }
        if (entry.block != nullptr) {
            checkIndex(*entry.block);
        }
    }
}

void checkReread(const Content& content)
{
    const bool isList = content.items.has_value();
    const Dictionary& entries = isList ? *content.items : content.entries;
    // A number is no name in a list, but a directive may have put one there.
    const bool hasNumber = std::ranges::any_of(
        entries.entries(), [](const Entry& entry) { return entry.keyword.find_first_of("0123456789+-.") == 0; });
    if (!content.isComplete || !isWritable(entries) || (isList && hasNumber)) {
        return;
    }
    // The entry in front keeps a number that is the first keyword from being read as a count.
    const std::string text = isList ? "( " + textOf(entries) + " )" : "first; #remove first\n" + textOf(entries);
    TextClient client;
    const Content again = parseText(text, client);
    expect(again.problem.empty(), "what was read is not read again: " + again.problem + "\n" + text);
    expect(again.items.has_value() == isList, "a list is not read as one again");
    Outcome before;
    before.add(textOf(entries));
    Outcome after;
    after.add(textOf(isList ? *again.items : again.entries));
    expectEqual(before, after, "a dictionary changes when it is read again");
}

void runDictionary(std::string_view text, bool readsLists)
{
    ListClient client(readsLists);
    std::string main;
    std::string* file = &main;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        const std::string_view line = text.substr(0, end);
        if (line.starts_with('@')) {
            file = &client.files["case/system/" + std::string(line.substr(1, line.find_last_not_of("\r\n")))];
        } else {
            *file += line;
        }
        text.remove_prefix(end);
    }
    const Content content = parseText(main, client);
    expect(content.isComplete == content.problem.empty(), "a problem without a stop, or a stop without a problem");
    checkIndex(content.entries);
    checkReread(content);
}

/// True for expressions that the system's library takes in another way: escapes beyond POSIX, larger counts, and any
/// case. POSIX leaves repetitions of repetitions open, such as "a++", of which that library can take minutes.
bool isExtension(const std::string& text)
{
    constexpr std::ptrdiff_t MOST_REPETITIONS = 10;
    const auto isRepetition = [](char c) { return c == '+' || c == '*' || c == '?' || c == '{'; };
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (isRepetition(text[i]) && (isRepetition(text[i - 1]) || text[i - 1] == '}')) {
            return true;
        }
    }
    if (std::ranges::count_if(text, isRepetition) > MOST_REPETITIONS) {
        return true;
    }
    // That library lets "(a$b|)+" match "ab".
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '$' || (text[i] == '^' && (i == 0 || text[i - 1] != '['))) {
            return true;
        }
    }
    for (std::size_t i = text.find('\\'); i != std::string::npos; i = text.find('\\', i + 2)) {
        const char next = i + 1 < text.size() ? text[i + 1] : 'a';
        if (std::string_view("(){}[].*+?^$|\\").find(next) == std::string_view::npos) {
            return true;
        }
    }
    return text.starts_with("(?i)") || text.find("[.") != std::string::npos || text.find("[=") != std::string::npos;
}

/// Compares with the expressions of the system's library, in the "C" locale that a program starts with.
void runPattern(std::string_view input)
{
    constexpr std::size_t LONGEST = 64;
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string text(input.substr(0, std::min(end, LONGEST)));
    input.remove_prefix(std::min(end + 1, input.size()));
    const foamdict::Pattern pattern(text);
    if (!pattern.isValid() || text.find('\0') != std::string::npos || isExtension(text)) {
        static_cast<void>(pattern.matches(input));
        return;
    }
    regex_t reference{};
    const std::string whole = std::string("^(").append(text).append(")$");
    if (regcomp(&reference, whole.c_str(), REG_EXTENDED | REG_NOSUB) != 0) {
        // POSIX leaves some forms open, such as a range that begins where another ended, "[a-m-z]".
        static_cast<void>(pattern.matches(input));
        return;
    }
    for (int i = 0; i < 8 && !input.empty(); ++i) {
        const std::size_t length = std::min(input.find('\n'), input.size());
        const std::string name(input.substr(0, std::min(length, LONGEST)));
        input.remove_prefix(std::min(length + 1, input.size()));
        const bool isMatch =
            name.find('\0') == std::string::npos && regexec(&reference, name.c_str(), 0, nullptr, 0) == 0;
        expect(name.find('\0') != std::string::npos || pattern.matches(name) == isMatch,
               "\"" + text + "\" on \"" + name + "\"");
    }
    regfree(&reference);
}

void runGrammar(FuzzInput input)
{
    const std::uint8_t flags = input.byte();
    if ((flags & 1U) != 0) {
        runPattern(input.rest());
    } else {
        runDictionary(input.rest(), (flags & 2U) != 0);
    }
}

} // namespace

std::vector<FuzzTarget> grammarTargets()
{
    return {{"grammar", runGrammar}};
}
