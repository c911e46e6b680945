// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

/// Every bound that exists because a case folder may hold anything: how much of a file is believed, and how much memory
/// and time one of its claims may cost. No honest case comes near one of them.
namespace dvf::limits {

// --- numbers and counts

/// The longest text that is taken for one number; a longer token is not a number. It is the size of the line buffer of
/// a case file less its terminator.
inline constexpr std::size_t NUMBER_LENGTH = 4095;
/// The largest count that every list may have. The next number is what a digit run that overflows can come out as.
inline constexpr int LIST_COUNT = 2147483646;
/// All that a mesh can have of node labels: offsets of faces are 32 bits.
inline constexpr std::size_t FACE_NODES = std::numeric_limits<int>::max();

// --- what an item takes of its file at the least, in bytes; a count that the file cannot hold is refused before
//     anything is sized by it

/// A number is at least one digit. The separator is left out, because binary files have none.
inline constexpr std::uint64_t BYTES_PER_NUMBER = 1;
/// A patch has a name, braces and three entries.
inline constexpr std::uint64_t BYTES_PER_PATCH = 16;
/// A zone has a name, braces, a type and a list.
inline constexpr std::uint64_t BYTES_PER_ZONE = 8;

// --- compressed files

/// What deflate can do at best: 258 bytes for two bits.
inline constexpr std::uint64_t INFLATE_RATIO = 1032;
/// Room for headers and blocks of files that are nearly empty.
inline constexpr std::uint64_t INFLATE_EXTRA = 65536;
/// Ratio up to which a claim is believed without inflating the file to see; text of numbers reaches a third of it.
inline constexpr std::uint64_t USUAL_INFLATE_RATIO = 8;

// --- meshes

/// How many times the faces and labels of a mesh its patches get together. In a sound mesh a face lies in one patch at
/// most; once more leaves room for a patch that overlaps the others, so that they keep their faces.
inline constexpr std::size_t SHARE_OF_PATCHES = 2;
/// Places that a set of nodes looks at for one label before it leaves the rest to a sort. Labels can be chosen that all
/// hash to one place; in a table that is at most half full, honest ones are found after a few.
inline constexpr std::size_t NODE_SET_PROBES = 256;

// --- text

/// Words of a line that are looked at where values are expected, which take a dozen.
inline constexpr std::size_t WORDS_OF_LINE = 4096;
/// Bytes of a text from a file that one log line repeats: some texts appear several times in one line.
inline constexpr std::size_t LOG_EXCERPT = 256;

} // namespace dvf::limits
