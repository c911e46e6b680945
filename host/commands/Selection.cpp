// SPDX-License-Identifier: MIT
#include "commands/Selection.h"

#include "border/HostError.h"
#include "border/TextForms.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <regex>
#include <set>

namespace {

constexpr double TIME_TOLERANCE = 1e-6;

// More do not help to find the right one.
constexpr std::size_t MOST_LISTED = 30;
constexpr std::size_t NEAREST_LISTED = 3;

template <typename Number>
std::optional<Number> numberFromText(std::string_view text)
{
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

[[noreturn]] void refuse(const std::string& message)
{
    throw HostError(ExitCode::Usage, message);
}

/// "a, b, c and 7 more".
std::string listed(const std::vector<std::string>& names)
{
    const std::size_t shown = std::min(names.size(), MOST_LISTED);
    const std::string list =
        fmt::format("{}", fmt::join(names.begin(), names.begin() + static_cast<long>(shown), ", "));
    return shown == names.size() ? list : fmt::format("{} and {} more", list, names.size() - shown);
}

/// Selects the states of one case.
class StateSelector
{
public:
    explicit StateSelector(OpenedCase& opened) : m_states(opened.metaData().states), m_names(opened.names()) {}

    /// The states of a list with commas.
    std::vector<const HostState*> select(std::string_view text) const
    {
        std::set<const HostState*> selected;
        while (true) {
            const std::size_t comma = text.find(',');
            for (const HostState* const state : selectItem(std::string(text.substr(0, comma)))) {
                selected.insert(state);
            }
            if (comma == std::string_view::npos) {
                break;
            }
            text.remove_prefix(comma + 1);
        }
        return statesWhere([&](const HostState& state) { return selected.contains(&state); });
    }

private:
    template <typename Condition>
    std::vector<const HostState*> statesWhere(Condition condition) const
    {
        std::vector<const HostState*> states;
        for (const HostState& state : m_states) {
            if (condition(state)) {
                states.push_back(&state);
            }
        }
        return states;
    }

    std::vector<const HostState*> selectItem(const std::string& text) const
    {
        auto named = statesWhere([&](const HostState& state) { return m_names.folderOf(state) == text; });
        if (!named.empty()) {
            return named;
        }
        const std::string word = lowerCase(text);
        if (word == "all") {
            return statesWhere([](const HostState&) { return true; });
        }
        if (word == "nozero") {
            auto states = statesWhere([](const HostState& state) { return state.referenceValue != 0; });
            if (states.empty() && !m_states.empty()) {
                refuse("--state: the case has no time but 0");
            }
            return states;
        }
        // By time and not by position, because the interface does not promise an order.
        if (word == "last" || word == "latest") {
            const auto latest = std::ranges::max_element(m_states, {}, &HostState::referenceValue);
            return statesWhere([&](const HostState& state) { return &state == &*latest; });
        }
        if (word == "first") {
            const auto first = std::ranges::min_element(m_states, {}, &HostState::referenceValue);
            return statesWhere([&](const HostState& state) { return &state == &*first; });
        }
        if (text.find(':') != std::string::npos) {
            return selectRange(text);
        }
        return {selectOne(text)};
    }

    std::vector<const HostState*> selectRange(const std::string& text) const
    {
        const std::size_t colon = text.find(':');
        const auto bound = [&](const std::string& part, double otherwise) {
            const std::optional<double> value = part.empty() ? otherwise : numberFromText<double>(part);
            if (!value || std::isnan(*value)) {
                refuse(fmt::format("--state: '{}' in '{}' is not a time", part, text));
            }
            return *value;
        };
        const double from = bound(text.substr(0, colon), -HUGE_VAL);
        const double to = bound(text.substr(colon + 1), HUGE_VAL);
        auto states = statesWhere(
            [&](const HostState& state) { return state.referenceValue >= from && state.referenceValue <= to; });
        if (states.empty()) {
            refuse(fmt::format("--state: the case has no time in {}; {}", text, extent()));
        }
        return states;
    }

    /// The state of an id or of a time that is not the name of a folder.
    const HostState* selectOne(const std::string& text) const
    {
        if (text.starts_with('#')) {
            const std::optional<std::int32_t> id = numberFromText<std::int32_t>(std::string_view(text).substr(1));
            const auto found = std::ranges::find_if(m_states, [&](const HostState& one) { return id == one.id; });
            if (found == m_states.end()) {
                refuse(fmt::format("--state: the case has no state with the id '{}'; {}", text.substr(1), extent()));
            }
            return &*found;
        }
        const std::optional<double> time = numberFromText<double>(text);
        if (!time || std::isnan(*time)) {
            refuse(fmt::format("--state: '{}' is no time folder of the case and no time; {}", text, extent()));
        }
        const auto near = statesWhere([&](const HostState& state) {
            return std::abs(state.referenceValue - *time) <= TIME_TOLERANCE * std::abs(*time);
        });
        const auto equal = statesWhere([&](const HostState& state) { return state.referenceValue == *time; });
        if (!equal.empty()) {
            return equal.front();
        }
        if (m_states.empty()) {
            refuse(fmt::format("--state: the case has no time {}; it has no times at all", text));
        }
        if (near.size() != 1) {
            refuse(fmt::format("--state: the case has no time {}; the nearest are {}", text, nearestTo(*time)));
        }
        return near.front();
    }

    std::string extent() const
    {
        if (m_states.empty()) {
            return "it has none at all";
        }
        const auto [first, last] = std::ranges::minmax_element(m_states, {}, &HostState::referenceValue);
        return fmt::format("it has {} from {} to {}", m_states.size(), m_names.timeTextOf(*first),
                           m_names.timeTextOf(*last));
    }

    std::string nearestTo(double time) const
    {
        std::vector<const HostState*> states = statesWhere([](const HostState&) { return true; });
        const auto distance = [&](const HostState* state) { return std::abs(state->referenceValue - time); };
        std::ranges::stable_sort(states, {}, distance);
        states.resize(std::min(states.size(), NEAREST_LISTED));
        std::ranges::sort(states, {}, &HostState::referenceValue);
        std::vector<std::string> names;
        names.reserve(states.size());
        for (const HostState* const state : states) {
            names.push_back(m_names.timeTextOf(*state));
        }
        return listed(names);
    }

    const std::vector<HostState>& m_states;
    const FoamNames& m_names;
};

/// Positions of the items whose names satisfy a condition.
template <typename Condition>
std::vector<std::size_t> itemsWhere(const std::vector<std::vector<std::string>>& items, Condition condition)
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (std::ranges::any_of(items[i], condition)) {
            found.push_back(i);
        }
    }
    return found;
}

/// Only the first name of each item: the others say where it is, and a piece of them would select everything there.
std::vector<std::vector<std::string>> firstNames(const std::vector<std::vector<std::string>>& items)
{
    std::vector<std::vector<std::string>> names;
    names.reserve(items.size());
    for (const std::vector<std::string>& item : items) {
        names.push_back({item.front()});
    }
    return names;
}

/// Positions of the items that a text selects; empty if there are none.
/// @param searched the names in which a piece may match
///
/// Literal text comes first: names such as mag(U) and alpha.water would mean something else as expressions.
std::vector<std::size_t> selectByName(const std::vector<std::vector<std::string>>& items,
                                      const std::vector<std::vector<std::string>>& searched, const std::string& text,
                                      const char* option)
{
    const std::string wanted = lowerCase(text);
    auto found = itemsWhere(items, [&](const std::string& name) { return lowerCase(name) == wanted; });
    if (found.empty()) {
        found = itemsWhere(searched,
                           [&](const std::string& name) { return lowerCase(name).find(wanted) != std::string::npos; });
    }
    if (!found.empty()) {
        return found;
    }
    try {
        const std::regex expression(text, std::regex::ECMAScript | std::regex::icase);
        found = itemsWhere(items, [&](const std::string& name) { return std::regex_match(name, expression); });
        if (found.empty()) {
            found = itemsWhere(searched, [&](const std::string& name) { return std::regex_search(name, expression); });
        }
    } catch (const std::regex_error&) {
        refuse(fmt::format("{}: nothing is named '{}', and as a regular expression it is wrong", option, text));
    }
    return found;
}

} // namespace

std::vector<const HostState*> selectStates(OpenedCase& opened, const std::string& text)
{
    return StateSelector(opened).select(text);
}

std::vector<const HostResultInfo*> selectResults(OpenedCase& opened, const std::string& text)
{
    std::vector<std::vector<std::string>> names;
    std::vector<std::string> known;
    for (const HostResultInfo& result : opened.metaData().results) {
        const std::string field = opened.names().fieldOf(result);
        names.push_back({field, result.name, result.key});
        // Averages have the names of their fields.
        if (opened.metaData().sourceOfAverage(result) == nullptr) {
            known.push_back(field == result.name ? field : fmt::format("{} ({})", field, result.name));
        }
    }
    std::vector<const HostResultInfo*> selected;
    std::vector<std::vector<std::string>> withIds = names;
    for (std::size_t i = 0; i < withIds.size(); ++i) {
        const std::int32_t id = opened.metaData().results[i].id;
        withIds[i].insert(withIds[i].end(), {fmt::format("{}", id), fmt::format("#{}", id)});
    }
    for (const std::size_t i : selectByName(withIds, names, text, "--result")) {
        selected.push_back(&opened.metaData().results[i]);
    }
    if (selected.empty() && !text.empty()) {
        refuse(known.empty() ? "--result: the case has no results"
                             : fmt::format("--result: no result matches '{}'; the case has {}", text, listed(known)));
    }
    return selected;
}

std::vector<std::size_t> selectGroups(OpenedCase& opened, const std::string& text)
{
    const HostMetaData& metaData = opened.metaData();
    std::vector<std::vector<std::string>> names;
    std::vector<std::string> known;
    for (const HostGroup* const group : metaData.geometryGroups()) {
        const HostGroup* const part = group->parentId ? metaData.findGroup(*group->parentId) : nullptr;
        names.push_back({group->name});
        if (part != nullptr) {
            names.back().push_back(part->name + "/" + group->name);
        }
        known.push_back(names.back().back());
    }
    std::vector<std::size_t> selected =
        selectByName(names, text.find('/') == std::string::npos ? firstNames(names) : names, text, "--part");
    if (selected.empty() && !text.empty()) {
        refuse(fmt::format("--part: no part or group matches '{}'; the case has {}", text, listed(known)));
    }
    return selected;
}
