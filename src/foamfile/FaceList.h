// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/FacesData.h"
#include "foamfile/ListHeader.h"

#include <cstddef>

/// Lists of faces: `faceList` (ascii) and `faceCompactList` (ascii or binary).
///
/// Targets come with `nodeCounts` and `nodeOffsets` sized to the number of faces. Workers get whole faces: a face of
/// many nodes takes several lines, so chunks are cut after a ")" and not after a line.
namespace FaceList {

/// Reads a whole file of faces. See `OFFile::readFaceList`.
bool readFile(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, FacesData* faces);

/// Advances to the list and reads it. A binary `faceList` is refused: OpenFOAM does not write one.
///
/// @param[out] found whole faces read, if the list was reached
bool readNext(TextSource& text, bool isCompact, FacesData* faces, std::size_t* found);

/// Reads ascii faces at the position, six chunks at a time. `nodes` is cut to what they hold.
/// @return how many faces were read
std::size_t readPar(TextSource& text, FacesData* faces);
/// Reads ascii faces one after the other; false at the first text that is not a face. `nodes` is cut.
bool readSeq(TextSource& text, FacesData* faces);
/// Reads an ascii compact list, faces written one by one as in a plain list, and then on to the end of the file.
/// `nodes` keeps its slack.
bool readCompactAscii(TextSource& text, FacesData* faces, std::size_t* found);
/// Reads the offsets, one more than faces, and then the labels of all faces. `nodes` keeps its slack.
/// @return false if an offset is smaller than the one before it or the file holds fewer labels; the whole faces before
///         that place count
bool readCompactBinary(TextSource& text, FacesData* faces, std::size_t* found);

} // namespace FaceList
