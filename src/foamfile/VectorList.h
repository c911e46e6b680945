// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/ListHeader.h"

#include <cstddef>
#include <vector>

/// Lists of vectors as `points` holds them: "(x y z)" triples in ascii, reals of the file's raw form in binary.
///
/// The vectors of fields are read by `FieldList`, which is stricter about what comes between and after them.
namespace VectorList {

/// Reads a whole `vectorField` file. See `OFFile::readVectorField`.
bool readFile(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, std::vector<double>* values);

/// Reads ascii triples at the position, four chunks at a time, until the target is full or the file ends.
///
/// Text between vectors is skipped. A malformed vector ends its chunk; the vectors before it count.
/// @return how many doubles were read
std::size_t readPar(TextSource& text, std::vector<double>* values);

} // namespace VectorList
