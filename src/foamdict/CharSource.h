// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace foamdict {

/// The characters of a file, one at a time.
class CharSource
{
public:
    /// What `peek` and `take` return at the end of the file.
    static constexpr int END = -1;

    CharSource() = default;
    virtual ~CharSource() = default;
    CharSource(const CharSource&) = delete;
    CharSource& operator=(const CharSource&) = delete;

    /// The next character as a number from 0 to 255, which stays the next one, or `END`.
    virtual int peek() = 0;
    /// The same, and goes on past it.
    virtual int take() = 0;
    /// The line of the next character, 1-based; 0 from a source that does not count lines.
    virtual std::size_t line() const { return 0; }
};

/// The characters of a text, which must outlive the source.
class TextChars final : public CharSource
{
public:
    explicit TextChars(std::string_view text) : m_text(text) {}

    int peek() override { return m_next < m_text.size() ? static_cast<unsigned char>(m_text[m_next]) : END; }
    int take() override
    {
        const int c = peek();
        m_next += c == END ? 0 : 1;
        return c;
    }

private:
    std::string_view m_text;
    std::size_t m_next = 0;
};

} // namespace foamdict
