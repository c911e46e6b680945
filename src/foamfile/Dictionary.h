// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/ListHeader.h"
#include "records/OFBoundary.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/// Small files of "key value;" lines: dictionaries such as `controlDict`, and the patches of a `boundary` file. They
/// are read line by line from the stream; nesting, comments and entries over several lines are skipped, not understood.
namespace Dictionary {

/// Reads the entries of a dictionary. See `OFFile::readDictionary`.
bool readFile(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, std::map<dvn::Str, dvn::Str>* entries);
/// Reads the patches of a `boundary` file. See `OFFile::readBoundary`.
bool readBoundary(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, std::vector<OFBoundary>& boundaries,
                  std::size_t partId);
/// Reads one name with its block of entries; the name comes under the key "patchName".
std::map<std::string, std::string> readBoundaryInfo(TextSource& text);

} // namespace Dictionary
