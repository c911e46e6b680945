// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/ListItems.h"
#include "foamfile/TextSource.h"

#include <cstddef>
#include <vector>

/// Reads a list whose count is known and whose bracket comes next, for readers of dictionaries: "(1 2 3)", or "{7}" for
/// equal items.
///
/// Ascii lists are read strictly, from what is pending in the source and then from the stream: as many items as the
/// count says, each of as many numbers as it has components, and the ")". White space, line ends and comments may be
/// anywhere between them. Long lists of reals are parsed in pieces by several threads. Raw lists are read from the
/// stream, in the raw form of the file; blanks and line ends may come before the bracket. An empty list may lack its
/// brackets, as it does in binary files.
///
/// All return false if the list is not of this form, if the file cannot hold so many items, or if it ends early. After
/// success the source is right after the ")" or "}": the rest of the chunk is pending, and of a binary file nothing is.
/// After a failure it is where reading stopped, and the values are meaningless.
///
/// A list is sized to the count. A count that no file of this size can hold is refused before that, unless the list
/// already has the size: then the caller knows better, as equal items may be more than the file has bytes.
namespace ListAt {

/// Reads labels. One that does not fit an int gives -1.
bool readLabels(TextSource& text, std::size_t count, std::vector<int>* labels);
/// Reads flags as 0 and 1; in a raw list they take one byte each.
bool readFlags(TextSource& text, std::size_t count, std::vector<int>* flags);
/// Reads reals, the components of an item next to each other.
bool readReals(TextSource& text, std::size_t count, const ListItems& items, std::vector<double>* values);

} // namespace ListAt
