// SPDX-License-Identifier: MIT
#pragma once

#include "check/CheckRun.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// A compact record of what a library delivered: the name and hash of each array.
class DeliveryDigest
{
public:
    void addMetaData(const HostMetaData& metaData);
    void addGeometry(const HostMetaData& metaData, const HostGeometry& geometry);
    /// @param result null if the library does not have it
    void addResult(const HostResultInfo& info, const HostState& state, const HostResult* result);

    /// The name of the first difference; empty if the two are equal.
    std::string differenceTo(const DeliveryDigest& other) const;

private:
    template <typename Value>
    void add(const std::string& name, const std::vector<Value>& array);
    void add(const std::string& name, const void* bytes, std::size_t count);

    std::vector<std::pair<std::string, std::uint64_t>> m_entries;
};

/// Requests everything in the host's order (metadata, geometry, the results of a few states) and digests it.
DeliveryDigest digestOf(CheckedCase& open);
