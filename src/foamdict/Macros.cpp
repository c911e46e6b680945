// SPDX-License-Identifier: MIT
#include "foamdict/Macros.h"

#include "LibCore/Limits.h"

#include <algorithm>
#include <vector>

namespace foamdict {
namespace {

const Scope& outermost(const Scope& scope)
{
    const Scope* top = &scope;
    while (top->outer != nullptr) {
        top = top->outer;
    }
    return *top;
}

bool isVariableChar(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '.' ||
           c == ':';
}

/// The end of the macro whose "$" is at `start`.
std::size_t macroEnd(std::string_view text, std::size_t start)
{
    const std::size_t first = start + 1;
    if (first < text.size() && text[first] == '{') {
        const std::size_t brace = text.find('}', first);
        return brace == std::string_view::npos ? text.size() : brace + 1;
    }
    const auto* const end =
        std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(first), text.end(), isVariableChar);
    return static_cast<std::size_t>(end - text.begin());
}

std::string_view withoutBraces(std::string_view name)
{
    const bool hasBraces = name.size() > 1 && name.front() == '{' && name.back() == '}';
    return hasBraces ? name.substr(1, name.size() - 2) : name;
}

} // namespace

bool MacroSearch::isExhausted() const
{
    return m_steps > dvf::limits::MACRO_STEPS;
}

const Entry* MacroSearch::findIn(const Dictionary& entries, std::string_view name, bool usePatterns)
{
    m_steps += name.size() + 1;
    const Entry* const entry = entries.find(name);
    if (entry != nullptr || !usePatterns) {
        return entry;
    }
    m_steps += name.size() * entries.patternStates();
    return isExhausted() ? nullptr : entries.findPattern(name);
}

/// Finds "a.b.c": in the block of the shortest part before a dot that names one, or as a whole. If "a" is an entry but
/// not a block, it is what is found, as in OpenFOAM.
const Entry* MacroSearch::findDotted(const Dictionary& entries, std::string_view name, bool usePatterns)
{
    const Dictionary* block = &entries;
    std::size_t begin = 0;
    const Entry* entry = nullptr;
    for (std::size_t dot = name.find('.'); begin < name.size() && !isExhausted(); dot = name.find('.', dot + 1)) {
        entry = findIn(*block, name.substr(begin, dot - begin), usePatterns);
        if (dot == std::string_view::npos) {
            return entry;
        }
        const bool isFirstPart = name.find('.', begin) == dot;
        if (entry != nullptr && entry->block != nullptr) {
            block = entry->block.get();
            begin = dot + 1;
        } else if (entry != nullptr && isFirstPart) {
            return entry;
        }
    }
    return nullptr;
}

const Entry* MacroSearch::findPath(const Scope& scope, std::string_view path)
{
    // The blocks from the outermost to the current one.
    std::vector<const Dictionary*> blocks;
    for (const Scope* s = path.front() == '/' ? &outermost(scope) : &scope; s != nullptr; s = s->outer) {
        blocks.push_back(&s->entries);
    }
    std::ranges::reverse(blocks);
    while (!path.empty() && !isExhausted()) {
        const std::size_t slash = std::min(path.find('/'), path.size());
        const std::string_view step = path.substr(0, slash);
        path.remove_prefix(std::min(slash + 1, path.size()));
        if (step == "..") {
            blocks.pop_back();
            if (blocks.empty()) {
                return nullptr;
            }
        } else if (!step.empty() && step != ".") {
            const Entry* const entry = findIn(*blocks.back(), step, false);
            if (path.empty() || entry == nullptr || entry->block == nullptr) {
                return path.empty() ? entry : nullptr;
            }
            blocks.push_back(entry->block.get());
        }
    }
    return nullptr;
}

const Entry* MacroSearch::findScoped(const Scope& scope, std::string_view name, bool usePatterns)
{
    if (name.empty() || name.size() > dvf::limits::MACRO_NAME || isExhausted()) {
        return nullptr;
    }
    if (name.find('/') != std::string_view::npos) {
        return findPath(scope, name);
    }
    if (name.front() == ':' || name.front() == '^') {
        return findDotted(outermost(scope).entries, name.substr(1), usePatterns);
    }
    if (name.front() == '.') {
        const std::size_t dots = std::min(name.find_first_not_of('.'), name.size());
        const Scope* start = &scope;
        for (std::size_t i = 1; i < dots && start != nullptr; ++i) {
            start = start->outer;
        }
        return start == nullptr ? nullptr : findDotted(start->entries, name.substr(dots), usePatterns);
    }
    if (name.find('.') != std::string_view::npos) {
        return findDotted(scope.entries, name, usePatterns);
    }
    for (const Scope* s = &scope; s != nullptr; s = s->outer) {
        const Entry* const entry = findIn(s->entries, name, usePatterns);
        if (entry != nullptr) {
            return entry;
        }
    }
    return nullptr;
}

std::optional<std::string> MacroSearch::expand(const Scope& scope, std::string_view text)
{
    if (text.size() > dvf::limits::MACRO_NAME) {
        return std::nullopt;
    }
    std::string result(text);
    // From the end, so that an inner macro is replaced before the one around it.
    for (std::size_t start = result.rfind('$'); start != std::string::npos; start = result.rfind('$', start - 1)) {
        const std::size_t end = macroEnd(result, start);
        const std::string name(withoutBraces(std::string_view(result).substr(start + 1, end - start - 1)));
        const Entry* const entry = find(scope, name);
        if (entry == nullptr || entry->tokens.size() != 1 ||
            result.size() + entry->tokens.front().text.size() > dvf::limits::MACRO_NAME) {
            return std::nullopt;
        }
        result.replace(start, end - start, entry->tokens.front().text);
        if (start == 0) {
            break;
        }
    }
    return result;
}

} // namespace foamdict
