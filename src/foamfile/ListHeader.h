// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/FoamHeader.h"
#include "foamfile/TextSource.h"

#include <cstdint>
#include <string>

/// A file as the readers of lists use it: its text and its header.
struct FoamFile
{
    TextSource text;
    FoamHeader header;
    /// False for files without a `FoamFile` block, such as those of some sampled surfaces.
    bool hasHeader = true;

    /// Which forms are read. Set it before `open`.
    Reading reading = Reading::Plain;

    /// Opens the file and reads its header. Entries of an earlier file stay in the header.
    /// @return false, with the file closed, if there is no such file or no valid header
    bool open(const dvn::Str& path);
    /// The header's value of a key. In extended reading one that is missing is empty.
    /// @throws std::out_of_range if it is missing in plain reading
    const std::string& entry(const char* key) const;
    /// True if one of the lines to come opens a `FoamFile` block. A file without one is read to its end.
    bool hasBlock() { return FoamHeader::skipToBlock(text); }
};

/// Opens a file that holds a list and checks its object, class and count, which is the same for every kind of list.
namespace ListHeader {

/// The messages of one reader; %1 is the path as given.
struct Messages
{
    const char* openFailed;
    const char* wrongObject;
    const char* wrongClass = nullptr;
    const char* noCount = nullptr;
    const char* badCount = nullptr;
};

/// Opens a file and compares the object of its header.
/// @throws std::out_of_range when the header lacks `object`, in plain reading
bool open(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, const Messages& messages);
/// The same for a file that may have no header; then only opening it can fail.
bool openWithOrWithoutHeader(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName,
                             const Messages& messages);
/// Whether the header has this class; reports it if not.
/// @throws std::out_of_range when the header lacks `class`, in plain reading
bool checkClass(const FoamFile& file, const char* className, const Messages& messages);
/// Reads the count of a list and refuses one that is out of range or that a file of this size cannot hold.
///
/// @param bytesPerItem the fewest bytes that an item takes in the file
/// @param otherEnd     see `TextSource::readCount`
bool readCount(FoamFile& file, std::uint64_t bytesPerItem, int largest, const Messages& messages, int* count,
               char otherEnd = '\0');

} // namespace ListHeader
