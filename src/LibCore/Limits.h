// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

/// Every bound that exists because a case folder may hold anything: how much of a file is believed, and how much memory
/// and time one of its claims may cost. No honest case comes near one of them.
namespace dvf::limits {

// --- numbers and counts

/// The longest text that is read as one number; a longer token is not a number. It is the size of the line buffer of a
/// case file less the terminator.
inline constexpr std::size_t NUMBER_LENGTH = 4095;
/// The largest count that any list may have. The next number can be the result of a digit run that overflowed.
inline constexpr int LIST_COUNT = 2147483646;
/// The most node labels that a mesh can have: offsets of faces are 32 bits.
inline constexpr std::size_t FACE_NODES = std::numeric_limits<int>::max();

// --- the fewest bytes that an item takes in its file; a count that the file cannot hold is refused before anything is
//     sized by it

/// A number is at least one digit. The separator is left out, because binary files have none.
inline constexpr std::uint64_t BYTES_PER_NUMBER = 1;
/// A patch has a name, braces and three entries.
inline constexpr std::uint64_t BYTES_PER_PATCH = 16;
/// A zone has a name, braces, a type and a list.
inline constexpr std::uint64_t BYTES_PER_ZONE = 8;

// --- compressed files

/// The best that deflate can do: 258 bytes for two bits.
inline constexpr std::uint64_t INFLATE_RATIO = 1032;
/// Room for headers and blocks of files that are nearly empty.
inline constexpr std::uint64_t INFLATE_EXTRA = 65536;
/// Ratio up to which a claim is believed without inflating the file to see; text of numbers reaches a third of it.
inline constexpr std::uint64_t USUAL_INFLATE_RATIO = 8;

// --- meshes

/// The most faces and labels that all patches of a mesh get together, as a multiple of those of the mesh. In a sound
/// mesh a face is in at most one patch; the second share leaves room for a patch that overlaps the others, so that they
/// keep their faces.
inline constexpr std::size_t SHARE_OF_PATCHES = 2;
/// How many places a set of nodes probes for one label before it leaves the rest to a sort. Labels can be chosen so
/// that all hash to one place; in a table that is at most half full, honest ones are found after a few probes.
inline constexpr std::size_t NODE_SET_PROBES = 256;

// --- dictionaries; a dictionary that reaches one of these is read up to there

/// How far into a file its header and dimensions are looked for. Any file may lie in a time folder.
inline constexpr std::size_t HEADER_BYTES = std::size_t{256} << 10U;
/// How deep blocks may be nested, copies of blocks included. It also bounds the recursion over blocks.
inline constexpr std::size_t DICTIONARY_DEPTH = 64;
/// The most values and brackets that are kept of one dictionary; lists that are read apart do not count.
inline constexpr std::size_t DICTIONARY_TOKENS = 4000000;
/// The most entries, blocks included.
inline constexpr std::size_t DICTIONARY_ENTRIES = 1000000;
/// The longest word, string or block of code.
inline constexpr std::size_t TOKEN_LENGTH = 1U << 20U;
/// How deep files may include one another.
inline constexpr std::size_t INCLUDE_DEPTH = 16;
/// How many files a dictionary may include in all; files that include two others each soon include thousands.
inline constexpr std::size_t INCLUDE_COUNT = 1024;
/// How many bytes of included files are read as text.
inline constexpr std::size_t INCLUDE_BYTES = std::size_t{64} << 20U;
/// How many bytes macros may copy, and how many more for each byte that was read: blocks that copy the one before twice
/// double with each line. In an honest file each of very many patches copies one block.
inline constexpr std::size_t MACRO_BYTES = std::size_t{16} << 20U;
inline constexpr std::size_t MACRO_RATIO = 256;
/// How many steps may be taken to find what macros and removals name: a name that is looked up or refused, each of its
/// characters, and each state of an expression that a character is compared with.
inline constexpr std::size_t MACRO_STEPS = 100000000;
/// The longest name of a macro.
inline constexpr std::size_t MACRO_NAME = 1024;
/// The longest regular expression.
inline constexpr std::size_t PATTERN_LENGTH = 1024;
/// The most states of one regular expression, and of all that one dictionary holds: matching a name takes time in
/// proportion to its length and to the states.
inline constexpr std::size_t PATTERN_STATES = 4096;
inline constexpr std::size_t DICTIONARY_PATTERN_STATES = 16384;
/// How many different problems of one dictionary are reported.
inline constexpr std::size_t DICTIONARY_REPORTS = 100;

// --- text

/// How many words of a line are looked at where values are expected; values take a dozen.
inline constexpr std::size_t WORDS_OF_LINE = 4096;
/// How many bytes of a text from a file one log line shows: some texts appear several times in one line.
inline constexpr std::size_t LOG_EXCERPT = 256;

} // namespace dvf::limits
