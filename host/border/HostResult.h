// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"

#include "DataProviderInterface.h"

#include <cstdint>
#include <deque>
#include <limits>
#include <utility>
#include <vector>

/// What a library delivers for a missing value.
inline constexpr double UNDEFINED_VALUE = std::numeric_limits<double>::max();

/// One result of one state.
class HostResultSpec final : public DDPResultSpec
{
public:
    HostResultSpec(std::int32_t result, std::int32_t state) : m_resultId(result), m_stateId(state) {}

    void reserved0() override { BorderFaults::get().addReservedRow("DDPResultSpec"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPResultSpec"); }
    void reserved2() override { BorderFaults::get().addReservedRow("DDPResultSpec"); }
    std::int32_t resultId() const override { return m_resultId; }
    std::int32_t stateId() const override { return m_stateId; }

private:
    std::int32_t m_resultId;
    std::int32_t m_stateId;
};

/// Keeps the values of one group; the last of several calls wins.
class HostValueGroup final : public DDPResultValueGroup
{
public:
    std::vector<double> values;                                 ///< `dimension` values per item
    std::int32_t dimension = 0;                                 ///< components per item; 0 until values are set
    std::vector<std::pair<std::int32_t, std::uint64_t>> shapes; ///< components and items of each call
    HostCallRecord calls;

    /// Complete items set so far; 0 for a group that the library left empty.
    std::size_t itemCount() const { return dimension > 0 ? values.size() / static_cast<std::size_t>(dimension) : 0; }

    /// True if the values can replace the points: one position for each node, and none missing.
    bool canReplacePoints(std::size_t nodeCount) const;

    void reserved0() override { BorderFaults::get().addReservedRow("DDPResultValueGroup"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPResultValueGroup"); }
    void setValues(const double* array, std::int32_t componentCount, std::uint64_t items) override;
};

/// Keeps one result of one state. Groups are in the order in which the library made them.
class HostResult final : public DDPResult
{
public:
    std::deque<HostValueGroup> groups; ///< a deque, because the library holds pointers while more are made

    /// Bytes of all arrays kept.
    std::size_t byteCount() const;

    void reserved0() override { BorderFaults::get().addReservedRow("DDPResult"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPResult"); }
    DDPResultValueGroup* addValueGroup() override;

private:
    std::thread::id m_owner = std::this_thread::get_id();
};
