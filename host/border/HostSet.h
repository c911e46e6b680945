// SPDX-License-Identifier: MIT
#pragma once

#include "border/BorderGuard.h"

#include "DataProviderInterface.h"

#include <cstdint>
#include <vector>

/// Keeps the items of one set, one entry per call.
class HostSet final : public DDPSet
{
public:
    /// The items of one call.
    struct Items
    {
        std::int32_t kind;
        std::uint64_t partIndex;
        std::vector<std::int32_t> ids;
    };

    std::vector<Items> items;

    void reserved0() override { BorderFaults::get().addReservedRow("DDPSet"); }
    void reserved1() override { BorderFaults::get().addReservedRow("DDPSet"); }
    void reserved2() override { BorderFaults::get().addReservedRow("DDPSet"); }

    void addSetItems(std::int32_t kind, std::uint64_t partIndex, const std::int32_t* ids, std::uint64_t count) override
    {
        if (ids == nullptr && count != 0) {
            BorderFaults::get().add("a set without an array");
            return;
        }
        items.push_back(
            {kind, partIndex, count == 0 ? std::vector<std::int32_t>() : std::vector<std::int32_t>(ids, ids + count)});
    }
};
