// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

/// What a list of numbers is made of.
struct ListItems
{
    std::size_t components = 1;
    bool isBracketed = false; ///< in ascii, as in "(1 0 0)"; a spherical tensor is one number in brackets

    static constexpr ListItems scalars() { return {1, false}; }
    static constexpr ListItems vectors() { return {3, true}; }
    static constexpr ListItems sphericalTensors() { return {1, true}; }
    static constexpr ListItems symmTensors() { return {6, true}; }
    static constexpr ListItems tensors() { return {9, true}; }

    bool operator==(const ListItems&) const = default;
};

/// The items of a list of reals such as "List<vector>"; none for another type.
inline std::optional<ListItems> listItemsOfType(std::string_view listType)
{
    constexpr std::array<std::pair<std::string_view, ListItems>, 5> LIST_TYPES = {
        {{"List<scalar>", ListItems::scalars()},
         {"List<vector>", ListItems::vectors()},
         {"List<sphericalTensor>", ListItems::sphericalTensors()},
         {"List<symmTensor>", ListItems::symmTensors()},
         {"List<tensor>", ListItems::tensors()}}};
    for (const auto& [name, items] : LIST_TYPES) {
        if (name == listType) {
            return items;
        }
    }
    return std::nullopt;
}
