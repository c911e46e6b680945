// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/ListHeader.h"
#include "records/OFResult.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

/// The interior values of a field file: one value for all, a list on the line of `internalField`, or a list on the
/// lines after it.
///
/// Values are flat arrays, item after item, components of an item next to each other, in the size that the caller gave
/// them.
namespace FieldInterior {

/// What a reader looks for: a field of this class in this file. The path is the one that messages name.
struct Request
{
    const dvn::Str& path;
    const dvn::Str& resultClass;
};

/// Reads the interior values of a field file, or the list of a file without header. See `OFFile::readResult`.
/// @param[out] wasRead whether `values` are good; the function may return true even if they are not
bool readFile(FoamFile& file, const Request& request, const dvn::Str& objectName, std::vector<double>* values,
              bool* wasRead);
/// Reads the values of an `internalField` line that holds the whole list.
/// @throws std::invalid_argument if there is no count directly before the "("
bool readSingleLine(TextSource& text, const dvn::Str& line, const Request& request, std::vector<double>* values);
/// Reads the count and the list from the position on. An empty list empties `values`.
bool readMultipleLines(TextSource& text, const Request& request, std::vector<double>* values);

/// Converts the words of a line, as many as `values` holds; missing ones give 0.
void scalarsFromLine(const dvn::Str& line, std::vector<double>* values);
/// The same for words in threes, of which the first begins with "(" and the last ends with ")".
void vectorsFromLine(const dvn::Str& line, std::vector<double>* values);

/// The kind of value that a class holds, if it is supported.
std::optional<OFResultType> typeOfClass(const dvn::Str& resultClass);
/// Numbers of an array of so many items. See `OFFile::calculateNumberOfValues`.
int valueCount(const dvn::Str& resultClass, int itemCount);

} // namespace FieldInterior
