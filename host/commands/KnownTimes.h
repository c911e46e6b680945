// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostMetaData.h"
#include "border/HostNotifications.h"

#include <set>
#include <string>
#include <vector>

/// The times of a case by the notices so far, to tell in a line what has happened.
class KnownTimes
{
public:
    explicit KnownTimes(const std::vector<HostState>& states);

    /// Takes in the notices of one poll.
    /// @return what changed, such as "+ 0.12" or "- 0.1", each on a line; empty if nothing did
    std::string apply(const std::vector<HostNotice>& notices);

private:
    std::set<double> m_times;
};
