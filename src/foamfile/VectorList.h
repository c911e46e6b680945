// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/ListHeader.h"

#include <cstddef>
#include <vector>

/// Lists of vectors as `points` holds them: "(x y z)" triples in ascii, 8-byte reals in binary.
///
/// The vectors of fields are read by `FieldList`, which is stricter about what comes between and after them.
namespace VectorList {

/// Components of a vector.
inline constexpr std::size_t COMPONENTS = 3;

/// Reads a whole `vectorField` file. See `OFFile::readVectorField`.
bool readFile(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, std::vector<double>* values);

/// Reads ascii triples at the position, four chunks at a time, until the target is full or the file ends.
///
/// Text between vectors is skipped. A vector that is not as it should be ends its chunk, and what came before it
/// counts.
/// @return how many doubles came
std::size_t readPar(TextSource& text, std::vector<double>* values);

} // namespace VectorList
