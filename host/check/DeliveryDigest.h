// SPDX-License-Identifier: MIT
#pragma once

#include "check/CheckRun.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// What a library delivered, small enough to keep and to compare: a hash of each array, with its name.
class DeliveryDigest
{
public:
    void addMetaData(const HostMetaData& metaData);
    void addGeometry(const HostMetaData& metaData, const HostGeometry& geometry);
    /// @param result null for one that the library does not have
    void addResult(const HostResultInfo& info, const HostState& state, const HostResult* result);

    /// What differs first, in words; empty if the two are equal.
    std::string differenceTo(const DeliveryDigest& other) const;

private:
    template <typename Value>
    void add(const std::string& name, const std::vector<Value>& array);
    void add(const std::string& name, const void* bytes, std::size_t count);

    std::vector<std::pair<std::string, std::uint64_t>> m_entries;
};

/// Asks for everything in the host's order, metadata, geometry and the results of a few states, and digests it.
DeliveryDigest digestOf(CheckedCase& open);
