// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/TextSource.h"
#include "records/OFBoundary.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/// The patches of a field file, `boundaryField`: their entries, their values, and the values that a patch takes over
/// from its cells.
///
/// Arrays are sized by the caller; a patch without values in the file keeps what its array holds.
namespace FieldPatches {

using Entries = std::map<std::string, std::string>;

/// Reads the patches named `names`, in this order, from the position on.
///
/// @param[out] isListOnKeyLine whether the list of the patch read last starts on the line of its key
/// @return for each name the entries of its block up to its values, with the name itself under "patchName"; empty for
///         a patch that was not found
std::vector<Entries> read(TextSource& text, const dvn::Str& resultClass, const std::vector<std::string>& names,
                          std::vector<std::vector<double>>& values, bool* isListOnKeyLine);
/// Fills `values` with the one value of tokens such as "uniform", "(1", "0", "0)". Anything that is not a number reads
/// as 0.
bool readUniform(const dvn::Str& resultClass, const std::vector<dvn::Str>& tokens, std::vector<double>* values);
/// Reads the list announced by tokens such as "nonuniform", "List<vector>".
void readNonUniform(TextSource& text, const std::vector<dvn::Str>& tokens, bool isListOnKeyLine,
                    std::vector<double>* values);

/// True for the patch types whose faces take the value of their cell.
bool continuesCellValues(const Entries& entries);
/// Gives the patches whose type says so the values of their cells, or of their points.
void applyCellValues(const dvn::Str& resultClass, const std::vector<double>& values,
                     const std::vector<OFBoundary>& boundaries, const std::vector<Entries>& entries,
                     std::vector<std::vector<double>>* patchValues);
/// Copies to each item of a patch the components of its item of the mesh; what is outside an array is left out.
void copyMeshItems(const std::vector<double>& meshValues, const std::vector<int>& meshItemIds,
                   std::size_t componentCount, std::vector<double>* patchValues);

} // namespace FieldPatches

/// Components of one item of a class in the patches of a field file: 9 for a tensor, 3 for a vector, else 1; an unknown
/// class is reported. Nine and not the six of an interior array: the items of a patch are nine apart.
int resultSizeFromName(const dvn::Str& resultClass);
