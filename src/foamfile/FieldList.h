// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/TextSource.h"

#include <cstddef>
#include <vector>

/// The lists of values of a field, interior and patches: scalars separated by one blank or by line feeds, vectors as
/// "(x y z)". Long lists are parsed in pieces by several threads while the next text is read.
///
/// Targets are sized by the caller. After a list that was read, the text after its ";" is pending, if its last chunk
/// holds it; where a list fails, the rest of the chunk is, so that later patches are found.
namespace FieldList {

/// Advances past the next "(" and reads values, ascii or binary.
bool readNext(TextSource& text, bool isVector, std::vector<double>* values);
/// Reads values at the position, ascii or binary.
/// @param[out] found how many values were read
bool read(TextSource& text, bool isVector, std::vector<double>* values, std::size_t* found);
/// Reads ascii scalars to the end of the target or to the first text that is not a number.
///
/// An empty target is reported as an error, which callers ignore.
bool walkScalars(TextSource& text, std::vector<double>* values, std::size_t* found);
/// Reads ascii vectors to the end of the target or to the first text that is not one; text between vectors is skipped.
/// @return false, with one error line if the file ended, if there are fewer than the target holds
bool walkVectors(TextSource& text, std::vector<double>* values, std::size_t* found);

} // namespace FieldList
