// SPDX-License-Identifier: MIT
#include "commands/KnownTimes.h"

#include <fmt/format.h>

#include <utility>

namespace {

std::string difference(char sign, const std::set<double>& these, const std::set<double>& others)
{
    std::string text;
    for (const double time : these) {
        text += others.contains(time) ? std::string() : fmt::format("{} {}\n", sign, time);
    }
    return text;
}

} // namespace

KnownTimes::KnownTimes(const std::vector<HostState>& states)
{
    for (const HostState& state : states) {
        m_times.insert(state.referenceValue);
    }
}

std::string KnownTimes::apply(const std::vector<HostNotice>& notices)
{
    std::set<double> named;
    bool hasRemovals = false;
    for (const HostNotice& notice : notices) {
        hasRemovals = hasRemovals || notice.kind == HostNotice::Kind::Remove;
        if (notice.kind != HostNotice::Kind::Remove) {
            named.insert(notice.referenceValue);
        }
    }
    // Removals name positions only, but come with an update of every state that is left. Other notices may name only
    // the states that changed, and those that move up in the list are updated by the next poll.
    if (!hasRemovals) {
        named.insert(m_times.begin(), m_times.end());
    }
    std::string changes = difference('+', named, m_times) + difference('-', m_times, named);
    m_times = std::move(named);
    return changes;
}
