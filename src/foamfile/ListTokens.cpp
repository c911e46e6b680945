// SPDX-License-Identifier: MIT
#include "foamfile/ListTokens.h"

#include "LibCore/Limits.h"
#include "LibCore/Numbers.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace {

/// The token at a place in a text that ends with a NUL; a token too long for a number is cut.
std::string_view tokenAt(const char* first)
{
    std::size_t length = 0;
    while (length <= dvf::limits::NUMBER_LENGTH && !ListTokens::endsToken(first[length])) {
        ++length;
    }
    return {first, length};
}

} // namespace

bool ListTokens::endsToken(char c)
{
    return c == '\0' || isBlank(c) || c == '(' || c == ')' || c == '{' || c == '}' || c == ';' || c == '/';
}

bool ListTokens::take(char sought)
{
    if (!skipBlanks() || *m_cursor != sought) {
        return false;
    }
    ++m_cursor;
    return true;
}

bool ListTokens::endsChunk()
{
    if (m_cursor == nullptr) {
        return true;
    }
    while (isBlank(*m_cursor)) {
        ++m_cursor;
    }
    return m_cursor == m_chunk.end;
}

bool ListTokens::nextChunk()
{
    if (m_text == nullptr || !m_text->nextChunk(&m_chunk)) {
        return false;
    }
    m_cursor = m_chunk.begin;
    return true;
}

void ListTokens::leave()
{
    if (m_text != nullptr && m_cursor != nullptr) {
        m_text->keepPending(m_chunk, m_cursor);
    }
}

/// Goes on to the next token; false at the end of the text and at a slash that begins no comment.
bool ListTokens::skipBlanks()
{
    for (;;) {
        if (endsChunk()) {
            if (!nextChunk()) {
                return false;
            }
        } else if (*m_cursor != '/') {
            // A NUL within the text is no token, and everybody who takes one sees that.
            return true;
        } else if (!skipComment()) {
            return false;
        }
    }
}

/// Skips a comment; false if there is none or it does not end.
bool ListTokens::skipComment()
{
    const char kind = m_cursor[1];
    if (kind == '/') {
        m_cursor += std::strcspn(m_cursor, "\n");
        return true;
    }
    if (kind != '*') {
        return false;
    }
    m_cursor += 2;
    for (;;) {
        const std::string_view rest(m_cursor, static_cast<std::size_t>(m_chunk.end - m_cursor));
        const std::size_t stop = rest.find("*/");
        if (stop != std::string_view::npos) {
            m_cursor += stop + 2;
            return true;
        }
        m_cursor = m_chunk.end;
        if (!nextChunk()) {
            return false;
        }
    }
}

bool ListTokens::takeReal(double* value)
{
    if (!skipBlanks()) {
        return false;
    }
    const char* const stop = TokenScanner::scanPlainReal(m_cursor, m_chunk.end, value);
    if (stop != nullptr && endsToken(*stop)) {
        m_cursor = stop;
        return true;
    }
    const std::string_view token = tokenAt(m_cursor);
    if (token.empty() || !dvf::tokenToDouble(token, value)) {
        return false;
    }
    m_cursor += token.size();
    return true;
}

bool ListTokens::takeLabel(int* label)
{
    if (!skipBlanks()) {
        return false;
    }
    constexpr std::int64_t TOO_LARGE = std::int64_t{std::numeric_limits<int>::max()} + 1;
    const bool isNegative = *m_cursor == '-';
    const char* const first = m_cursor + (isNegative || *m_cursor == '+' ? 1 : 0);
    const char* p = first;
    std::int64_t value = 0;
    for (; TokenScanner::isDigit(*p); ++p) {
        value = std::min(value * 10 + (*p - '0'), TOO_LARGE);
    }
    if (p == first || !endsToken(*p)) {
        return false;
    }
    *label = value == TOO_LARGE ? -1 : static_cast<int>(isNegative ? -value : value);
    m_cursor = p;
    return true;
}

bool ListTokens::takeFlag(int* flag)
{
    static constexpr std::array<std::pair<std::string_view, int>, 12> FLAGS = {{{"0", 0},
                                                                                {"1", 1},
                                                                                {"false", 0},
                                                                                {"true", 1},
                                                                                {"no", 0},
                                                                                {"yes", 1},
                                                                                {"off", 0},
                                                                                {"on", 1},
                                                                                {"f", 0},
                                                                                {"t", 1},
                                                                                {"n", 0},
                                                                                {"y", 1}}};
    if (!skipBlanks()) {
        return false;
    }
    const std::string_view token = tokenAt(m_cursor);
    const auto found = std::ranges::find(FLAGS, token, [](const auto& entry) { return entry.first; });
    if (found == FLAGS.end()) {
        return false;
    }
    *flag = found->second;
    m_cursor += token.size();
    return true;
}
