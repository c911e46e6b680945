// SPDX-License-Identifier: MIT
//
// The arrays that reach the host, and the small operations shared by the code that fills them.
#pragma once

#include "interface/DataProviderInterface.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// The elements of a group of mixed types. All arrays but `connectivities` have one entry per element.
struct ElementArrays
{
    std::vector<DDPElementType> types;
    std::vector<int> connectivities; ///< 0-based nodes of all elements, element after element
    std::vector<int> ids;
    std::vector<std::uint8_t> nodeCounts; ///< entries of each element in `connectivities`
};

/// The general elements of a group in element order. Counts are bytes because the host takes bytes.
struct PolyhedronArrays
{
    std::vector<std::uint8_t> nodeCounts;       ///< distinct nodes of each polyhedron
    std::vector<std::uint8_t> faceCounts;       ///< faces of each polyhedron
    std::vector<std::uint8_t> nodeCountPerFace; ///< size of each face, polyhedron after polyhedron
    std::vector<int> faceNodes;                 ///< 0-based nodes of each face
};

/// Sends elements to the host by `setMixedElements`.
void sendElements(const ElementArrays& elements, DDPElementGroup* group);
/// Sends general elements to the host by `setPolyhedra`.
void sendPolyhedra(const PolyhedronArrays& polyhedra, DDPElementGroup* group);

/// `count` consecutive numbers from `first` on.
std::vector<int> numbersFrom(int first, std::size_t count);

/// Sorts ascending, in parallel where that pays.
void dvn_sort(std::vector<int>& values);

/// Sorts ascending and removes duplicates.
void sortUnique(std::vector<int>* values);

/// Starts of slots of the given sizes: `out[i]` is `start` plus the sum of the values before i.
/// @return `start` plus the sum of all values
std::size_t dvn_exclusive_partial_sum(const unsigned char* values, std::size_t count, int start, int* out);

/// Empties a container and frees its storage.
template <typename Container>
void release(Container* container)
{
    *container = Container();
}
