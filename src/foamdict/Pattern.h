// SPDX-License-Identifier: MIT
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace foamdict {

/// A regular expression as keywords have them: the extended form of POSIX in the "C" locale, and "(?i)" at the start
/// for names of any case.
///
/// Matching follows all ways through the expression at the same time, so it takes time in proportion to the length of
/// the name and to the number of states, whatever the expression. References to groups and word borders are not
/// supported. Any number of threads may match at the same time.
class Pattern
{
public:
    /// Compiles an expression; one that is wrong, or has more than `limits::PATTERN_STATES` states, matches nothing.
    explicit Pattern(std::string_view text);

    bool isValid() const { return !m_states.empty(); }
    std::size_t stateCount() const { return m_states.size(); }

    /// True if the whole name matches. Allocates nothing unless the expression has very many states.
    bool matches(std::string_view name) const;
    /// A bound of the time that `matches` takes, in states and characters.
    std::size_t steps(std::string_view name) const { return 1 + (mayMatch(name) ? name.size() * stateCount() : 0); }

    /// The characters that a state takes.
    using Chars = std::bitset<256>;
    struct State
    {
        enum class Kind : std::uint8_t
        {
            Take,      ///< takes a character of the set `a` and goes on to the next state
            Split,     ///< goes on to the states `a` and `b`
            NameStart, ///< goes on to the next state at the start of the name
            NameEnd,   ///< goes on to the next state at the end of the name
            Accept
        };
        Kind kind = Kind::Accept;
        std::uint32_t a = 0;
        std::uint32_t b = 0;
    };

private:
    /// False for most names that do not match, which is cheap to see.
    bool mayMatch(std::string_view name) const;
    void findEnds();

    std::vector<State> m_states; ///< the first one is the start; empty if the expression is not valid
    std::vector<Chars> m_sets;
    Chars m_firstChars;   ///< with which a name that matches may start
    std::string m_prefix; ///< with which every name that matches starts
    std::string m_suffix; ///< with which every name that matches ends
};

/// True if a text has a character that means something else than itself in an expression. A quoted keyword without one
/// is an ordinary name.
bool hasPatternCharacters(std::string_view text);

} // namespace foamdict
