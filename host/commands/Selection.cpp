// SPDX-License-Identifier: MIT
#include "commands/Selection.h"

#include "border/HostError.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <regex>

namespace {

constexpr double TIME_TOLERANCE = 1e-6;

template <typename Number>
bool readWhole(const std::string& text, Number* value)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value);
    return error == std::errc() && end == text.data() + text.size();
}

/// Compiles a pattern from the command line; an error names the option, since the mistake is the user's.
std::regex compiled(const std::string& pattern, const char* option)
{
    try {
        return std::regex(pattern);
    } catch (const std::regex_error& error) {
        throw HostError(ExitCode::Usage, fmt::format("{}: '{}' is not a regular expression", option, pattern));
    }
}

/// The state closest to a time, or null if none is close enough.
const HostState* stateNearest(const HostMetaData& metaData, double time)
{
    const HostState* nearest = nullptr;
    double longest = 0;
    for (const HostState& state : metaData.states) {
        longest = std::max(longest, std::abs(state.referenceValue));
        if (nearest == nullptr || std::abs(state.referenceValue - time) < std::abs(nearest->referenceValue - time)) {
            nearest = &state;
        }
    }
    const bool near = nearest != nullptr && std::abs(nearest->referenceValue - time) <= TIME_TOLERANCE * longest;
    return near ? nearest : nullptr;
}

/// Reads "#ID" or a time. Numbers are independent of the locale and must fill the whole text.
const HostState* stateNamed(const HostMetaData& metaData, const std::string& text)
{
    std::int32_t id = 0;
    if (text.starts_with('#') && readWhole(text.substr(1), &id)) {
        const auto found = std::ranges::find(metaData.states, id, &HostState::id);
        return found == metaData.states.end() ? nullptr : &*found;
    }
    double time = 0;
    return readWhole(text, &time) ? stateNearest(metaData, time) : nullptr;
}

} // namespace

std::vector<const HostState*> selectStates(const HostMetaData& metaData, const std::string& text)
{
    std::vector<const HostState*> all;
    for (const HostState& state : metaData.states) {
        all.push_back(&state);
    }
    if (text == "all" || all.empty()) {
        return all;
    }
    if (text == "last") {
        // By time and not by position, because the interface does not promise an order.
        return {*std::ranges::max_element(all, {}, [](const HostState* state) { return state->referenceValue; })};
    }
    const HostState* const state = stateNamed(metaData, text);
    if (state == nullptr) {
        throw HostError(ExitCode::Usage, fmt::format("--state: the case has no state '{}'", text));
    }
    return {state};
}

std::vector<const HostResultInfo*> selectResults(const HostMetaData& metaData, const std::string& pattern)
{
    const std::regex expression = compiled(pattern, "--result");
    std::vector<const HostResultInfo*> selected;
    for (const HostResultInfo& result : metaData.results) {
        if (std::regex_search(result.name, expression) || std::regex_search(result.key, expression)) {
            selected.push_back(&result);
        }
    }
    if (selected.empty() && !pattern.empty()) {
        throw HostError(ExitCode::Usage, fmt::format("--result: no result matches '{}'", pattern));
    }
    return selected;
}

std::vector<std::size_t> selectGroups(const HostMetaData& metaData, const std::string& pattern)
{
    const std::regex expression = compiled(pattern, "--part");
    const std::vector<const HostGroup*> declared = metaData.geometryGroups();
    std::vector<std::size_t> selected;
    for (std::size_t i = 0; i < declared.size(); ++i) {
        if (std::regex_search(declared[i]->name, expression)) {
            selected.push_back(i);
        }
    }
    if (selected.empty() && !pattern.empty()) {
        throw HostError(ExitCode::Usage, fmt::format("--part: no part or group matches '{}'", pattern));
    }
    return selected;
}
