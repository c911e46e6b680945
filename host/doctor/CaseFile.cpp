// SPDX-License-Identifier: MIT
#include "doctor/CaseFile.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <system_error>
#include <utility>

namespace {

/// More text than the entries of any file take.
constexpr std::size_t MOST_KEPT_BYTES = 4'000'000;
/// The same bound as in the library: from the next count on solvers write a list in lines of its own.
constexpr std::size_t SHORT_LIST = 10;
/// More characters of a word are not kept; they would not make it a number.
constexpr std::size_t LONGEST_NUMBER = 64;
constexpr unsigned GZ_BUFFER = 1U << 17U;

bool isRegular(const std::filesystem::path& path)
{
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// Whether a word may be a number; "nan" and "inf" are, since a run that diverged writes them.
bool mayBeNumber(std::string_view word)
{
    return word.find_first_not_of("0123456789+-.eEnaifNAIFtyTY") == std::string_view::npos;
}

/// The bytes of an item of a raw list; 0 for types that are text in binary files too.
std::size_t bytesOfItem(std::string_view type, std::size_t labelBytes, std::size_t scalarBytes)
{
    struct Type
    {
        std::string_view name;
        std::size_t scalars;
    };
    static constexpr std::array<Type, 6> TYPES = {
        {{"scalar", 1}, {"vector", 3}, {"sphericalTensor", 1}, {"symmTensor", 6}, {"tensor", 9}, {"vector2D", 2}}};
    if (type == "label") {
        return labelBytes;
    }
    if (type == "bool") {
        return 1;
    }
    const auto* const found = std::ranges::find(TYPES, type, &Type::name);
    return found == TYPES.end() ? 0 : found->scalars * scalarBytes;
}

class CaseClient final : public foamdict::Client
{
public:
    CaseClient(const std::filesystem::path& path, bool isOnlyHead) : m_chars(path), m_isOnlyHead(isOnlyHead) {}

    CaseChars& chars() { return m_chars; }
    std::vector<SkippedList> takeLists() { return std::move(m_lists); }
    std::vector<std::string> takeReports() { return std::move(m_reports); }

    void onHeader(const foamdict::Dictionary& header) override
    {
        const std::string arch = firstWordOf(header, "arch");
        m_isBinary = firstWordOf(header, "format") == "binary";
        m_labelBytes = rawWidth(arch, "label=", sizeof(int));
        m_scalarBytes = rawWidth(arch, "scalar=", sizeof(double));
    }

    std::optional<std::size_t> readList(const foamdict::ListPlace& place) override
    {
        const bool isText = !m_isBinary || bytesOfItem(place.type, m_labelBytes, m_scalarBytes) == 0;
        if (isText && (place.count <= SHORT_LIST || (m_isBinary && place.type.empty()))) {
            return std::nullopt;
        }
        SkippedList list;
        list.type = place.type;
        list.count = place.count;
        list.isText = isText || place.bracket == '{';
        if (!m_isOnlyHead) {
            skip(static_cast<CaseChars&>(place.chars), place, &list);
        } else {
            static_cast<CaseChars&>(place.chars).end();
        }
        m_lists.push_back(std::move(list));
        return m_lists.size() - 1;
    }

    std::unique_ptr<foamdict::CharSource> openInclude(const std::string& path) override
    {
        auto included = std::make_unique<CaseChars>(path);
        return included->isOpen() ? std::move(included) : nullptr;
    }

    void report(const std::string& problem) override { m_reports.push_back(problem); }

private:
    void skip(CaseChars& chars, const foamdict::ListPlace& place, SkippedList* list) const
    {
        if (list->isText) {
            list->seen = chars.skipList();
            return;
        }
        if (place.count == 0 && chars.peek() != '(') {
            list->seen.isClosed = true;
            return;
        }
        (void)chars.take();
        const std::size_t itemBytes = bytesOfItem(place.type, m_labelBytes, m_scalarBytes);
        list->seen.isClosed = chars.skipRaw(static_cast<std::uint64_t>(place.count) * itemBytes) && chars.take() == ')';
    }

    CaseChars m_chars;
    bool m_isOnlyHead;
    bool m_isBinary = false;
    std::size_t m_labelBytes = sizeof(int);
    std::size_t m_scalarBytes = sizeof(double);
    std::vector<SkippedList> m_lists;
    std::vector<std::string> m_reports;
};

} // namespace

CaseChars::CaseChars(const std::filesystem::path& path)
{
    std::filesystem::path file = path;
    if (!isRegular(file)) {
        file += ".gz";
        m_isGzip = true;
    }
    if (isRegular(file)) {
        // A file that is not compressed is read as it is.
        m_file = gzopen(file.c_str(), "rb");
    }
    if (m_file != nullptr) {
        (void)gzbuffer(m_file, GZ_BUFFER);
    }
}

CaseChars::~CaseChars()
{
    if (m_file != nullptr) {
        (void)gzclose(m_file);
    }
}

bool CaseChars::fill()
{
    if (m_file == nullptr) {
        return false;
    }
    const int got = gzread(m_file, m_buffer.data(), static_cast<unsigned>(m_buffer.size()));
    m_next = 0;
    m_end = got > 0 ? static_cast<std::size_t>(got) : 0;
    int code = Z_OK;
    (void)gzerror(m_file, &code);
    m_isBroken = m_isBroken || code < 0;
    return m_end > 0;
}

int CaseChars::peek()
{
    return m_isEnded || (m_next == m_end && !fill()) ? END : static_cast<unsigned char>(m_buffer[m_next]);
}

int CaseChars::take()
{
    const int c = peek();
    if (c != END) {
        ++m_next;
        keep(c);
        m_line += c == '\n' ? 1 : 0;
    }
    return c;
}

void CaseChars::keep(int c)
{
    if (m_keptBytes < MOST_KEPT_BYTES && c != '\n') {
        ++m_keptBytes;
        m_lines[m_line] += static_cast<char>(c);
    }
}

CaseChars::Skipped CaseChars::skipList()
{
    Skipped seen;
    int depth = 0;
    std::size_t wordsBefore = 0;
    std::string word;
    const auto endWord = [&] {
        seen.words += word.empty() ? 0 : 1;
        if (!word.empty() && seen.notANumber.empty() && !mayBeNumber(word)) {
            seen.notANumber = word;
            seen.badLine = line();
        }
        word.clear();
    };
    do {
        if (m_next == m_end && !fill()) {
            endWord();
            return seen;
        }
        const char c = m_buffer[m_next++];
        const bool opens = c == '(' || c == '{';
        const bool closes = c == ')' || c == '}';
        if (!opens && !closes && !isBlank(c)) {
            word += word.size() < LONGEST_NUMBER ? std::string_view(&c, 1) : std::string_view();
            continue;
        }
        endWord();
        depth += opens ? 1 : closes ? -1 : 0;
        m_line += c == '\n' ? 1 : 0;
        if (opens && depth == 2) {
            ++seen.brackets;
            wordsBefore = seen.words;
        } else if (closes && depth == 1) {
            seen.longestBracket = std::max(seen.longestBracket, seen.words - wordsBefore);
        }
    } while (depth > 0);
    seen.isClosed = true;
    return seen;
}

bool CaseChars::skipRaw(std::uint64_t bytes)
{
    m_isLineKnown = false;
    const std::uint64_t buffered = std::min<std::uint64_t>(bytes, m_end - m_next);
    m_next += static_cast<std::size_t>(buffered);
    bytes -= buffered;
    // Seeking passes over a plain file without reading it. Past its end it succeeds, and then nothing can be taken.
    return bytes == 0 || (m_file != nullptr && gzseek(m_file, static_cast<z_off_t>(bytes), SEEK_CUR) >= 0);
}

std::string CaseFile::header(std::string_view key) const
{
    return firstWordOf(content.header, key);
}

bool CaseFile::isComposed(const foamdict::Entry& entry) const
{
    return entry.line == 0 ? header("format") != "binary"
                           : textOfLine(entry.line).find_first_of("$#") != std::string_view::npos;
}

const SkippedList* CaseFile::listOf(const foamdict::Entry& entry) const
{
    const auto token = std::ranges::find(entry.tokens, foamdict::Token::Kind::List, &foamdict::Token::kind);
    return token == entry.tokens.end() || token->list >= lists.size() ? nullptr : &lists[token->list];
}

bool isNonuniform(const foamdict::Entry& entry)
{
    return !entry.tokens.empty() && entry.tokens.front().text == "nonuniform";
}

std::string_view CaseFile::textOfLine(std::size_t line) const
{
    const auto found = lines.find(line);
    if (found == lines.end()) {
        return {};
    }
    const std::string_view text = found->second;
    const std::size_t first = text.find_first_not_of(" \t\r");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(" \t\r") + 1 - first);
}

CaseFile readCaseFile(const std::filesystem::path& path, const std::filesystem::path& caseFolder, bool isOnlyHead)
{
    const auto client = std::make_unique<CaseClient>(path, isOnlyHead);
    CaseFile file;
    file.isOpen = client->chars().isOpen();
    file.isGzip = client->chars().isGzip();
    if (!file.isOpen) {
        return file;
    }
    file.content = foamdict::parse(client->chars(), {path.string(), caseFolder.string()}, *client);
    file.isBroken = client->chars().isBroken();
    file.lists = client->takeLists();
    file.reports = client->takeReports();
    file.lines = client->chars().takeLines();
    return file;
}

std::size_t rawWidth(std::string_view arch, std::string_view key, std::size_t usual)
{
    const std::size_t place = arch.find(key);
    return place == std::string_view::npos ? usual : arch.substr(place + key.size()).starts_with("64") ? 8 : 4;
}

std::string firstWordOf(const foamdict::Dictionary& dictionary, std::string_view keyword)
{
    const foamdict::Entry* const entry = dictionary.find(keyword);
    return entry == nullptr || entry->tokens.empty() ? std::string() : entry->tokens.front().text;
}
