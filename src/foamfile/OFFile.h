// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamfile/FacesData.h"
#include "foamfile/FieldPatches.h" // resultSizeFromName
#include "foamfile/TextSource.h"
#include "records/OFBoundary.h"
#include "records/OFCellZone.h"
#include "records/OFFaceZone.h"

#include <tbb/concurrent_vector.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct FoamFile;

/// The one reader of OpenFOAM's file formats: ascii and binary, plain and gzip.
///
/// An object reads one file at a time, belongs to one thread at a time and lives on the stack of its user. Every
/// operation calls the functions for its kind of list: LabelList, VectorList, FaceList, Dictionary, Zones,
/// FieldInterior, FieldPatches. Operations are const where they change nothing but the reading position. Whatever bytes
/// a file holds, nothing is read or written outside its containers; a damaged or truncated gzip stream reads as one
/// that ends there.
///
/// A list that holds fewer items than its count says keeps what was read, and one info line names the file, what was
/// promised and what was found. A count that no file of this size can hold is refused before anything is sized by it.
class OFFile
{
public:
    static constexpr std::size_t CHUNK_SIZE = TextSource::CHUNK_SIZE;
    static constexpr std::size_t LINE_BUFFER_SIZE = TextSource::LINE_BUFFER_SIZE;
    /// Size of a buffer that a caller hands to `getNextChunkOfLines`.
    static constexpr std::size_t CHUNK_BUFFER_SIZE = TextSource::CHUNK_BUFFER_SIZE;

    /// @param hasHeader true for files with a `FoamFile` block, false for the values of sampled surfaces
    /// @param reading   in extended reading, a header entry that is missing is not an exception but a file of another
    ///                  kind
    explicit OFFile(bool hasHeader, Reading reading = Reading::Plain);
    ~OFFile();
    OFFile(const OFFile&) = delete;
    OFFile& operator=(const OFFile&) = delete;

    /// True if the file, or its ".gz", can be read and one of its lines opens a `FoamFile` block. Logs nothing.
    ///
    /// Sampled surfaces come with and without the block, depending on who wrote them, so their reader asks first and
    /// hands the answer to the constructor.
    static bool hasFoamBlock(const dvn::Str& path);

    /// Opens `path` + ".gz" if that exists, else `path`, and reads the header.
    ///
    /// Only a regular file is opened. The header entries of an earlier file stay, and the first value of a key wins:
    /// use a new object for the header of a second file.
    /// @return false, with the file closed, if there is no such file or no valid header
    bool open(const dvn::Str& path);
    /// Ends the stream and frees the buffers; header entries stay.
    void close();
    /// Keys and values of the `FoamFile` block. A value is the text before the last ";", quotes included.
    const std::map<std::string, std::string>& headerMap() const;

    // --- mesh lists

    /// Reads a whole `owner` or `neighbour` file.
    ///
    /// @param[out] labels    one 0-based cell label for each face, in file order
    /// @param[out] cellCount `nCells` of the header's `note`; the labels are not counted. In extended reading,
    ///                       `LabelList::UNKNOWN_CELL_COUNT` if there is no such note.
    /// @return false if the file cannot be read; `labels` then holds what was read so far
    /// @throws std::out_of_range when the header lacks `object`, `class` or `note`
    bool readLabelList(const dvn::Str& path, const dvn::Str& objectName, std::vector<int>* labels, int* cellCount);
    /// Reads a whole `vectorField` file into x, y, z of each vector in turn.
    ///
    /// Without a header neither object nor class are tested. An ascii list that is too short gives true all the same,
    /// with zeros at its end and the info line as the only trace.
    /// @throws std::out_of_range when the header lacks `object` or `class`
    bool readVectorField(const dvn::Str& path, const dvn::Str& objectName, std::vector<double>* values);
    /// Reads a whole `faceList` (ascii) or `faceCompactList` (ascii or binary) file; without a header it is a faceList.
    ///
    /// Faces that the file lacks have no nodes and the offset 0. A faceList that is too short gives true, with the info
    /// line as the only trace; a binary faceList is refused without a message.
    /// @throws std::out_of_range when the header lacks `object` or `class`
    bool readFaceList(const dvn::Str& path, const dvn::Str& objectName, FacesData* faces);

    // --- dictionaries, patches, zones

    /// Reads the "key value;" lines of a dictionary such as `controlDict`; the first value of a key wins.
    /// @throws std::out_of_range when the header lacks `object` or `class`
    bool readDictionary(const dvn::Str& path, const dvn::Str& objectName, std::map<dvn::Str, dvn::Str>* entries);
    /// Reads the patches of a `boundary` file.
    ///
    /// @param partId the part that the patches belong to
    /// @return false if the file cannot be read; `boundaries` may then have been sized, without content
    /// @throws std::out_of_range when the header lacks `object`, or a patch its name, `type`, `nFaces` or `startFace`
    bool readBoundary(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFBoundary>& boundaries,
                      std::size_t partId);
    /// Reads the zones of a `cellZones` file that have cells, and numbers them from 1.
    /// @return false if the file cannot be read; `zones` then holds those before the place where it breaks off
    bool readCellZones(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFCellZone>& zones,
                       std::size_t partId);
    /// The same for all zones of a `faceZones` file. The count of a zone must be on a line of its own.
    bool readFaceZones(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFFaceZone>& zones,
                       std::size_t partId);

    // --- fields
    //
    // Values are flat arrays, item after item, components of an item next to each other, in the size that the caller
    // gave them. A tensor takes six values in such an array but nine in the patches of a file; hosts rely on both.

    /// Reads the interior values of a field file, or the one list of a file without header.
    ///
    /// A file of another class than `resultClass` fills `values` with `UNDEFINED_DOUBLE` and counts as read. Without
    /// header the answer is always true once the file is open; see `interiorWasRead`.
    /// @return false if the values could not be read; `values` is then meaningless
    /// @throws std::out_of_range when the header lacks `object` or `class`
    /// @throws std::invalid_argument when no count is directly before the "(" of a list on one line
    bool readResult(const dvn::Str& path, const dvn::Str& objectName, const dvn::Str& resultClass,
                    std::vector<double>* values);
    /// Reads the interior and then the patches of a field file.
    ///
    /// Patches are looked for in the order of `boundaries`, their names compared byte by byte. A patch without values
    /// in the file keeps what its array holds, unless its type continues the value of the cell: then each face takes
    /// the value of its cell, or each node that of its point.
    /// @param[in,out] boundaryValues one array per patch, sized by the caller
    /// @return false if the interior could not be read, and also if the file ends right after it: then the interior
    ///         counts and `interiorWasRead` gives true
    bool readValuesOfCellAndBoundaries(const dvn::Str& path, const dvn::Str& objectName, const dvn::Str& resultClass,
                                       std::vector<double>* values, const std::vector<OFBoundary>& boundaries,
                                       std::vector<std::vector<double>>& boundaryValues);
    /// True if the last of the two calls above filled `values`, whether or not the patches could be read.
    bool interiorWasRead() const { return m_interiorWasRead; }

    // --- single steps (OFFileSteps.cpp)
    //
    // The steps of the readers above, for callers that read a file in their own way. The library itself uses none of
    // them. They work at the position: the pending rest of the chunk read last, or the stream when that is used up.
    // Those named after a list do what the function of that name in the list's header says.

    bool readHeader();
    /// Splits the next line that starts with "dimensions" at blanks; true if that gives exactly eight tokens.
    bool readDimensions(std::vector<dvn::Str>* tokens);
    /// Copies the next line to `LINE_BUFFER_SIZE` bytes at `*line`. See `TextSource::takeLine`.
    bool getNextLine(char** line) const;
    /// The same, but first makes a chunk pending, unless the file is binary.
    bool getNextLineUsingChunk(char** line) const;
    /// The next line of the pending chunk only; false, with an empty text, if there is none.
    bool getNonTreatedLine(char** line) const;
    /// Hands out the pending rest, or else reads a chunk into the `CHUNK_BUFFER_SIZE` bytes at `*chunk`.
    ///
    /// `*chunk` then points to the text, in a buffer of this object for a pending rest or an overlong line.
    /// Compatibility (docs/compatibility.md, "one past the last index"): `lastIndex` may be null.
    bool getNextChunkOfLines(char** chunk, std::size_t* lastIndex) const;
    bool getNonTreatedChunk(char** chunk, std::size_t* lastIndex) const;
    bool getNextLineStartingWith(const std::string& prefix, std::string& line);
    bool skipAfterNext(char c) const;
    bool skipEmptyLines() const;
    /// Always true: the readers find names by themselves.
    bool findName(const std::string& name) const;

    bool readNextInt(int* value, char delimiter) const;
    bool readNextIntLine(int* value) const;
    bool readNextIntLineFromCurrentChunk(int* value) const;
    /// Reads the text up to `delimiter` from the stream; false if that is not one number, or the file ends first.
    bool readNextDouble(double* value, char delimiter) const;
    /// Reads digits that a NUL, a line feed, a blank or `delimiter` ends and advances `*cursor` past that, never past
    /// the NUL. A line feed in place of `delimiter` makes it advance past the next `delimiter`, unless `stopAtLineEnd`
    /// is set.
    bool readNextBufInt(char** cursor, int* value, char delimiter, bool stopAtLineEnd) const;
    /// The same for a real number, which ")" may end as well; a line feed always goes on to the next `delimiter`.
    bool readNextBufDouble(char** cursor, double* value, char delimiter) const;

    bool readNextLabelList(std::vector<int>* labels);
    bool readNextLabelListAscii(std::vector<int>* labels);
    bool readNextLabelListBinary(std::vector<int>* labels);
    bool readNextVectorFieldAscii(std::vector<double>* values) const;
    bool readNextVectorFieldAsciiPar(std::vector<double>* values) const;
    bool readNextVectorFieldBinary(std::vector<double>* values) const;
    bool readNextFaceList(FacesData* faces);
    bool readNextFaceListAsciiPar(FacesData* faces);
    bool readNextFaceListAscii(FacesData* faces);
    bool readNextFaceListBinary(FacesData* faces);
    bool readNextFaceCompactList(FacesData* faces);
    bool readNextFaceCompactListAscii(FacesData* faces);
    bool readNextFaceCompactListBinary(FacesData* faces);
    std::map<std::string, std::string> readBoundaryInfo();

    /// Opens a field file of this object and class and stops after the "{" of its boundaryField.
    bool checkResultFile(const dvn::Str& path, const dvn::Str& objectName, const dvn::Str& resultClass);
    bool readResultInSingleLineFormat(const dvn::Str& line, const dvn::Str& path, const dvn::Str& resultClass,
                                      std::vector<double>* values);
    bool readResultInMultipleLineFormat(const dvn::Str& path, const dvn::Str& resultClass, std::vector<double>* values);
    std::vector<std::map<std::string, std::string>>
    readBoundariesResult(const dvn::Str& resultClass, const std::vector<std::string>& names,
                         std::vector<std::vector<double>>& boundaryValues);
    bool readUniformValues(const dvn::Str& resultClass, std::vector<dvn::Str>& tokens, std::vector<double>* values);
    void readNonUniformValues(std::vector<dvn::Str>& tokens, std::vector<double>* values);
    bool readNextVolScalarField(std::vector<double>* values);
    bool readNextVolVectorField(std::vector<double>* values);
    bool readNextVolScalarFieldAscii(std::vector<double>* values);
    bool readNextVolScalarFieldBinary(std::vector<double>* values);
    /// Lists of tensors are not read: false. This one advances to the list.
    bool readNextVolTensorField(std::vector<double>* values) const;
    bool readNextVolTensorFieldAscii(std::vector<double>* values);
    bool readNextVolTensorFieldBinary(std::vector<double>* values);
    bool getVolTensorFieldFromLine(std::vector<double>* values, const dvn::Str& line) const;
    bool getVolScalarFieldFromLine(std::vector<double>* values, const dvn::Str& line) const;
    bool getVolVectorFieldFromLine(std::vector<double>* values, const dvn::Str& line) const;
    bool shouldApplyCellValueInBoundaryFace(const std::map<std::string, std::string>& boundaryEntries) const;
    /// The value of the first key, in the order of the map, that carries result values; empty if there is none.
    dvn::Str findValueKeys(const std::map<std::string, std::string>& boundaryEntries) const;
    bool applyMeshItemValueInBoundaryItem(std::vector<double>* boundaryItemValues, const std::size_t& componentCount,
                                          const std::vector<double>* meshItemValues,
                                          const std::vector<int>& meshItemIds) const;
    /// Numbers of an array of so many items: 1, 3 or, for a tensor, 6 each; 0 and an error line for an unknown class,
    /// -1 if the number is too large.
    int calculateNumberOfValues(const dvn::Str& resultClass, int itemCount) const;

    /// Reads a list of one number or one vector per line in two parallel passes over each chunk. See ChunkTranslator.
    /// @param componentsPerLine 1 or 3
    bool markChunkThenReadChunkStrategy(std::vector<double>* values, int componentsPerLine);

private:
    TextSource& text() const;

    std::unique_ptr<FoamFile> m_file;
    bool m_interiorWasRead = false;
    /// Whether the list of a patch's values starts on the line of its key.
    bool m_listOnKeyLine = false;
    /// Starts of the lines of one chunk.
    tbb::concurrent_vector<int> m_lineOffsets;
};
