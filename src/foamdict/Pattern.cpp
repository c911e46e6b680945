// SPDX-License-Identifier: MIT
#include "foamdict/Pattern.h"

#include "LibCore/Limits.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <limits>
#include <memory>
#include <memory_resource>
#include <optional>
#include <utility>

namespace foamdict {
namespace {

using Chars = Pattern::Chars;
using State = Pattern::State;

constexpr std::size_t MOST_NESTED_GROUPS = 64;
/// POSIX asks for at least this many repetitions; more would only make states.
constexpr std::size_t MOST_REPETITIONS = 255;
/// Room for the two state sets of an expression of 256 states, which is more than nearly all have.
constexpr std::size_t STACK_BYTES = std::size_t{256} * 2 * (sizeof(std::size_t) + 2 * sizeof(std::uint32_t)) + 64;
/// How much of what names that match have in common is compared first. More would hardly refuse more names.
constexpr std::size_t MOST_COMMON_CHARS = 32;
constexpr std::size_t UNBOUNDED = std::numeric_limits<std::size_t>::max();

bool isBetween(char c, char first, char last)
{
    return c >= first && c <= last;
}

bool isDigit(char c)
{
    return isBetween(c, '0', '9');
}

bool isLower(char c)
{
    return isBetween(c, 'a', 'z');
}

bool isUpper(char c)
{
    return isBetween(c, 'A', 'Z');
}

bool isAlpha(char c)
{
    return isLower(c) || isUpper(c);
}

bool isAlnum(char c)
{
    return isAlpha(c) || isDigit(c);
}

bool isWord(char c)
{
    return isAlnum(c) || c == '_';
}

bool isSpace(char c)
{
    return c == ' ' || isBetween(c, '\t', '\r');
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool isGraph(char c)
{
    return isBetween(c, '!', '~');
}

bool isPrint(char c)
{
    return isBetween(c, ' ', '~');
}

bool isPunct(char c)
{
    return isGraph(c) && !isAlnum(c);
}

bool isCntrl(char c)
{
    return isBetween(c, '\0', '\x1f') || c == '\x7f';
}

bool isXdigit(char c)
{
    return isDigit(c) || isBetween(c, 'a', 'f') || isBetween(c, 'A', 'F');
}

struct NamedClass
{
    std::string_view name;
    bool (*holds)(char);
};

constexpr std::array CLASSES = {
    NamedClass{"alnum", isAlnum}, NamedClass{"alpha", isAlpha}, NamedClass{"blank", isBlank},
    NamedClass{"cntrl", isCntrl}, NamedClass{"digit", isDigit}, NamedClass{"graph", isGraph},
    NamedClass{"lower", isLower}, NamedClass{"print", isPrint}, NamedClass{"punct", isPunct},
    NamedClass{"space", isSpace}, NamedClass{"upper", isUpper}, NamedClass{"xdigit", isXdigit},
    NamedClass{"w", isWord},      NamedClass{"d", isDigit},     NamedClass{"s", isSpace}};

std::size_t indexOf(char c)
{
    return static_cast<unsigned char>(c);
}

Chars charsWhere(bool (*holds)(char))
{
    Chars chars;
    for (std::size_t i = 0; i < chars.size(); ++i) {
        chars[i] = holds(static_cast<char>(i));
    }
    return chars;
}

Chars only(char c)
{
    Chars chars;
    chars.set(indexOf(c));
    return chars;
}

/// The character of a set of one.
std::optional<char> onlyChar(const Chars& chars)
{
    if (chars.count() != 1) {
        return std::nullopt;
    }
    std::size_t c = 0;
    while (!chars[c]) {
        ++c;
    }
    return static_cast<char>(c);
}

/// A part of an expression.
struct Node
{
    enum class Kind
    {
        Set,
        Sequence,     ///< all children one after the other
        Alternatives, ///< one of the children
        Repeat,       ///< the one child `least` to `most` times
        NameStart,
        NameEnd
    };
    Kind kind = Kind::Sequence;
    std::vector<std::unique_ptr<Node>> children;
    std::uint32_t set = 0;
    std::size_t least = 0;
    std::size_t most = 0;
};

using NodePtr = std::unique_ptr<Node>;

NodePtr makeNode(Node::Kind kind)
{
    auto node = std::make_unique<Node>();
    node->kind = kind;
    return node;
}

/// Reads the text of an expression. All operations return null or false if it is wrong.
class PatternReader
{
public:
    PatternReader(std::string_view text, bool ignoresCase, std::vector<Chars>* sets)
        : m_text(text), m_ignoresCase(ignoresCase), m_sets(*sets)
    {}

    NodePtr read()
    {
        NodePtr node = readAlternatives(0);
        return m_next == m_text.size() ? std::move(node) : nullptr;
    }

private:
    bool isAtEnd() const { return m_next == m_text.size(); }
    bool has(char c) const { return !isAtEnd() && m_text[m_next] == c; }
    bool skip(char c)
    {
        const bool isThere = has(c);
        m_next += isThere ? 1 : 0;
        return isThere;
    }

    NodePtr readAlternatives(std::size_t depth);
    NodePtr readSequence(std::size_t depth);
    NodePtr readItem(std::size_t depth);
    NodePtr readEscape();
    NodePtr readClass();
    bool readClassItem(Chars* chars);
    bool readRepetition(Node* node);
    bool readCount(std::size_t* count);
    NodePtr makeSet(Chars chars);

    std::string_view m_text;
    std::size_t m_next = 0;
    bool m_ignoresCase;
    std::vector<Chars>& m_sets;
};

NodePtr PatternReader::makeSet(Chars chars)
{
    for (char c = 'a'; m_ignoresCase && c <= 'z'; ++c) {
        const std::size_t upper = indexOf(static_cast<char>(c - 'a' + 'A'));
        const bool isEither = chars[indexOf(c)] || chars[upper];
        chars[indexOf(c)] = isEither;
        chars[upper] = isEither;
    }
    NodePtr node = makeNode(Node::Kind::Set);
    const auto known = std::ranges::find(m_sets, chars);
    node->set = static_cast<std::uint32_t>(known - m_sets.begin());
    if (known == m_sets.end()) {
        m_sets.push_back(chars);
    }
    return node;
}

NodePtr PatternReader::readAlternatives(std::size_t depth)
{
    NodePtr node = makeNode(Node::Kind::Alternatives);
    do {
        node->children.push_back(readSequence(depth));
        if (node->children.back() == nullptr) {
            return nullptr;
        }
    } while (skip('|'));
    return node;
}

NodePtr PatternReader::readSequence(std::size_t depth)
{
    NodePtr node = makeNode(Node::Kind::Sequence);
    while (!isAtEnd() && !has('|') && !has(')')) {
        NodePtr item = readItem(depth);
        while (item != nullptr && (has('*') || has('+') || has('?') || has('{'))) {
            // A start or end of the name cannot be repeated.
            const bool isRepeatable = item->kind != Node::Kind::NameStart && item->kind != Node::Kind::NameEnd;
            NodePtr repeat = makeNode(Node::Kind::Repeat);
            repeat->children.push_back(std::move(item));
            item = isRepeatable && readRepetition(repeat.get()) ? std::move(repeat) : nullptr;
        }
        if (item == nullptr) {
            return nullptr;
        }
        node->children.push_back(std::move(item));
    }
    return node;
}

NodePtr PatternReader::readItem(std::size_t depth)
{
    const char c = m_text[m_next++];
    switch (c) {
    case '(': {
        NodePtr group = depth < MOST_NESTED_GROUPS ? readAlternatives(depth + 1) : nullptr;
        return group != nullptr && skip(')') ? std::move(group) : nullptr;
    }
    case '[':
        return readClass();
    case '\\':
        return readEscape();
    case '.':
        return makeSet(Chars().set());
    case '^':
        return makeNode(Node::Kind::NameStart);
    case '$':
        return makeNode(Node::Kind::NameEnd);
    case '*':
    case '+':
    case '?':
    case '{':
        return nullptr;
    default:
        return makeSet(only(c));
    }
}

NodePtr PatternReader::readEscape()
{
    if (isAtEnd()) {
        return nullptr;
    }
    const char c = m_text[m_next++];
    for (const NamedClass& named : CLASSES) {
        if (named.name.size() == 1 && named.name.front() == (isUpper(c) ? c - 'A' + 'a' : c)) {
            const Chars chars = charsWhere(named.holds);
            return makeSet(isUpper(c) ? ~chars : chars);
        }
    }
    // Other letters and digits stand for what is not supported: word borders and references to groups.
    if (isAlnum(c) || c == '<' || c == '>') {
        return NodePtr();
    }
    return makeSet(only(c));
}

NodePtr PatternReader::readClass()
{
    const bool isInverted = skip('^');
    Chars chars;
    bool isFirst = true;
    // A "]" right after the start is one of the characters.
    while (isFirst || !has(']')) {
        if (isAtEnd() || !readClassItem(&chars)) {
            return nullptr;
        }
        isFirst = false;
    }
    skip(']');
    if (m_ignoresCase && isInverted) {
        // What is left out is left out in both cases.
        const std::uint32_t set = makeSet(chars)->set;
        return makeSet(~m_sets[set]);
    }
    return makeSet(isInverted ? ~chars : chars);
}

/// Reads a character, a range or "[:name:]" in a class. A backslash is an ordinary character there.
bool PatternReader::readClassItem(Chars* chars)
{
    const std::string_view rest = m_text.substr(m_next);
    if (rest.starts_with("[:")) {
        const std::size_t end = rest.find(":]");
        const auto named = std::ranges::find(CLASSES, rest.substr(2, end - 2), &NamedClass::name);
        if (end == std::string_view::npos || named == CLASSES.end()) {
            return false;
        }
        *chars |= charsWhere(named->holds);
        m_next += end + 2;
        return true;
    }
    if (rest.starts_with("[.") || rest.starts_with("[=")) {
        return false;
    }
    const std::size_t first = indexOf(m_text[m_next++]);
    std::size_t last = first;
    if (has('-') && m_next + 1 < m_text.size() && m_text[m_next + 1] != ']') {
        last = indexOf(m_text[m_next + 1]);
        m_next += 2;
    }
    for (std::size_t c = first; c <= last; ++c) {
        chars->set(c);
    }
    return first <= last;
}

bool PatternReader::readCount(std::size_t* count)
{
    const std::size_t first = m_next;
    *count = 0;
    while (!isAtEnd() && isDigit(m_text[m_next]) && *count <= MOST_REPETITIONS) {
        *count = *count * 10 + (indexOf(m_text[m_next++]) - indexOf('0'));
    }
    return m_next > first && *count <= MOST_REPETITIONS;
}

bool PatternReader::readRepetition(Node* node)
{
    const char c = m_text[m_next++];
    node->least = c == '+' ? 1 : 0;
    node->most = c == '?' ? 1 : UNBOUNDED;
    if (c != '{') {
        return true;
    }
    if (!readCount(&node->least)) {
        return false;
    }
    node->most = node->least;
    if (skip(',')) {
        node->most = UNBOUNDED;
        if (!has('}') && !readCount(&node->most)) {
            return false;
        }
    }
    return skip('}') && node->least <= node->most;
}

/// Turns the parts of an expression into states.
class StateWriter
{
public:
    explicit StateWriter(std::vector<State>* states) : m_states(*states) {}

    /// @return false if there would be too many states
    bool emit(const Node& node);
    bool add(State state)
    {
        m_states.push_back(state);
        return m_states.size() <= dvf::limits::PATTERN_STATES;
    }

private:
    std::uint32_t place() const { return static_cast<std::uint32_t>(m_states.size()); }
    bool emitAlternatives(const Node& node);
    bool emitRepeat(const Node& node);

    std::vector<State>& m_states;
    std::size_t m_visits = 0;
};

bool StateWriter::emit(const Node& node)
{
    // Visits count as well as states: repetitions of nothing make no state.
    if (++m_visits > dvf::limits::PATTERN_STATES) {
        return false;
    }
    switch (node.kind) {
    case Node::Kind::Set:
        return add({State::Kind::Take, node.set, 0});
    case Node::Kind::NameStart:
        return add({State::Kind::NameStart, 0, 0});
    case Node::Kind::NameEnd:
        return add({State::Kind::NameEnd, 0, 0});
    case Node::Kind::Alternatives:
        return emitAlternatives(node);
    case Node::Kind::Repeat:
        return emitRepeat(node);
    case Node::Kind::Sequence:
        break;
    }
    return std::ranges::all_of(node.children, [this](const NodePtr& child) { return emit(*child); });
}

/// For each child but the last: a split to it and past it, and a jump from its end to the end of all.
bool StateWriter::emitAlternatives(const Node& node)
{
    std::vector<std::uint32_t> jumps;
    for (std::size_t i = 0; i + 1 < node.children.size(); ++i) {
        const std::uint32_t split = place();
        if (!add({State::Kind::Split, split + 1, 0}) || !emit(*node.children[i])) {
            return false;
        }
        jumps.push_back(place());
        if (!add({State::Kind::Split, 0, 0})) {
            return false;
        }
        m_states[split].b = place();
    }
    if (!emit(*node.children.back())) {
        return false;
    }
    for (const std::uint32_t jump : jumps) {
        m_states[jump].a = place();
        m_states[jump].b = place();
    }
    return true;
}

bool StateWriter::emitRepeat(const Node& node)
{
    const Node& child = *node.children.front();
    for (std::size_t i = 0; i < node.least; ++i) {
        if (!emit(child)) {
            return false;
        }
    }
    if (node.most == UNBOUNDED) {
        const std::uint32_t split = place();
        if (!add({State::Kind::Split, split + 1, 0}) || !emit(child) || !add({State::Kind::Split, split, split})) {
            return false;
        }
        m_states[split].b = place();
        return true;
    }
    std::vector<std::uint32_t> splits;
    for (std::size_t i = node.least; i < node.most; ++i) {
        splits.push_back(place());
        if (!add({State::Kind::Split, place() + 1, 0}) || !emit(child)) {
            return false;
        }
    }
    for (const std::uint32_t split : splits) {
        m_states[split].b = place();
    }
    return true;
}

/// The states that a name can be in.
class StateSet
{
public:
    StateSet(std::size_t stateCount, std::pmr::memory_resource* memory)
        : m_members(memory), m_pending(memory), m_lastStep(stateCount, 0, memory)
    {
        m_members.reserve(stateCount);
        // Each state is taken up once and leaves at most one state more than it takes.
        m_pending.reserve(stateCount + 1);
    }

    /// Starts over, for the place in the name before character `place`.
    void clear(std::size_t place)
    {
        m_members.clear();
        m_step = place + 1;
    }

    /// Adds a state and all that it goes on to without a character.
    void add(const std::vector<State>& states, std::uint32_t state, std::size_t length)
    {
        m_pending.push_back(state);
        while (!m_pending.empty()) {
            const std::uint32_t next = m_pending.back();
            m_pending.pop_back();
            if (m_lastStep[next] == m_step) {
                continue;
            }
            m_lastStep[next] = m_step;
            const State& s = states[next];
            if (s.kind == State::Kind::Split) {
                m_pending.push_back(s.a);
                m_pending.push_back(s.b);
            } else if ((s.kind == State::Kind::NameStart && m_step == 1) ||
                       (s.kind == State::Kind::NameEnd && m_step == length + 1)) {
                m_pending.push_back(next + 1);
            } else {
                m_members.push_back(next);
            }
        }
    }

    const std::pmr::vector<std::uint32_t>& members() const { return m_members; }

private:
    std::pmr::vector<std::uint32_t> m_members;
    std::pmr::vector<std::uint32_t> m_pending;
    std::pmr::vector<std::size_t> m_lastStep; ///< the step in which each state was added
    std::size_t m_step = 0;
};

} // namespace

Pattern::Pattern(std::string_view text)
{
    constexpr std::string_view ANY_CASE = "(?i)";
    const bool ignoresCase = text.starts_with(ANY_CASE);
    if (text.size() > dvf::limits::PATTERN_LENGTH) {
        return;
    }
    const NodePtr root = PatternReader(text.substr(ignoresCase ? ANY_CASE.size() : 0), ignoresCase, &m_sets).read();
    StateWriter writer(&m_states);
    if (root == nullptr || !writer.emit(*root) || !writer.add({State::Kind::Accept, 0, 0})) {
        m_states.clear();
        return;
    }
    findEnds();
}

/// Finds what all names that match have in common.
void Pattern::findEnds()
{
    // Any place in the name but its end will do for its first character.
    constexpr std::size_t ANY_LENGTH = 1;
    StateSet first(m_states.size(), std::pmr::get_default_resource());
    first.clear(0);
    first.add(m_states, 0, ANY_LENGTH);
    for (const std::uint32_t state : first.members()) {
        m_firstChars |= m_states[state].kind == State::Kind::Take ? m_sets[m_states[state].a] : Chars();
    }

    std::vector<std::optional<char>> onlyChars;
    std::ranges::transform(m_sets, std::back_inserter(onlyChars), onlyChar);
    const auto charOf = [&onlyChars](const State& state) {
        return state.kind == State::Kind::Take ? onlyChars[state.a] : std::nullopt;
    };
    // Up to the first split, and from the last state that one goes on to, there is only one way.
    for (std::size_t i = 0; i < MOST_COMMON_CHARS; ++i) {
        const std::optional<char> c = charOf(m_states[i]);
        if (!c.has_value()) {
            break;
        }
        m_prefix += *c;
    }
    std::size_t begin = 0;
    for (const State& state : m_states) {
        begin = state.kind == State::Kind::Split ? std::max<std::size_t>({begin, state.a, state.b}) : begin;
    }
    for (std::size_t i = m_states.size() - 1; i > begin && m_suffix.size() < MOST_COMMON_CHARS; --i) {
        const std::optional<char> c = charOf(m_states[i - 1]);
        if (!c.has_value()) {
            break;
        }
        m_suffix.insert(m_suffix.begin(), *c);
    }
}

bool Pattern::mayMatch(std::string_view name) const
{
    return isValid() && (name.empty() || m_firstChars[indexOf(name.front())]) && name.starts_with(m_prefix) &&
           name.ends_with(m_suffix);
}

bool Pattern::matches(std::string_view name) const
{
    if (!mayMatch(name)) {
        return false;
    }
    std::array<std::byte, STACK_BYTES> stack;
    std::pmr::monotonic_buffer_resource memory(stack.data(), stack.size());
    StateSet current(m_states.size(), &memory);
    StateSet following(m_states.size(), &memory);
    current.clear(0);
    current.add(m_states, 0, name.size());
    for (std::size_t i = 0; i < name.size() && !current.members().empty(); ++i) {
        following.clear(i + 1);
        for (const std::uint32_t state : current.members()) {
            if (m_states[state].kind == State::Kind::Take && m_sets[m_states[state].a][indexOf(name[i])]) {
                following.add(m_states, state + 1, name.size());
            }
        }
        std::swap(current, following);
    }
    return std::ranges::any_of(current.members(),
                               [this](std::uint32_t state) { return m_states[state].kind == State::Kind::Accept; });
}

bool hasPatternCharacters(std::string_view text)
{
    return text.find_first_of(".*+?()[]{}^$|\\") != std::string_view::npos;
}

} // namespace foamdict
