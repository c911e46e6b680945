// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamfile/FacesData.h"
#include "foamfile/GrowingBuffer.h"
#include "records/OFBoundary.h"
#include "records/OFCellZone.h"
#include "records/OFFaceZone.h"

#include <tbb/concurrent_vector.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class GzStream;

/// The one reader of OpenFOAM's file formats: ascii and binary, plain and gzip.
///
/// An object reads one file at a time, belongs to one thread at a time and lives on the stack of its user. Reading
/// functions are const where they change nothing but the reading position. Text is taken either from the pending chunk,
/// the unread rest of the chunk read last, or, where none is pending, from the stream. Whatever bytes a file holds,
/// nothing is read or written outside its containers; a damaged or truncated gzip stream reads as one that ends there.
///
/// A list that holds fewer items than its count says keeps what was read, and one info line names the file, what was
/// promised and what was found. A count that no file of this size can hold is refused before anything is sized by it.
class OFFile
{
public:
    /// Bytes that one read of a chunk asks for.
    static constexpr std::size_t CHUNK_SIZE = 262144;
    /// Size of the line buffer; also what a chunk may grow by to finish its last line before its buffer must grow.
    static constexpr std::size_t LINE_BUFFER_SIZE = 4096;
    /// What a buffer must hold that is handed to `getNextChunkOfLines`.
    static constexpr std::size_t CHUNK_BUFFER_SIZE = CHUNK_SIZE + LINE_BUFFER_SIZE;

    /// @param hasHeader true for files with a `FoamFile` block, false for the values of sampled surfaces
    explicit OFFile(bool hasHeader);
    ~OFFile();
    OFFile(const OFFile&) = delete;
    OFFile& operator=(const OFFile&) = delete;

    // --- opening (OFFile.cpp)

    /// True if the file, or its ".gz", can be read and one of its lines opens a `FoamFile` block. Logs nothing.
    ///
    /// Sampled surfaces come with and without the block, depending on who wrote them, so their reader asks first and
    /// hands the answer to the constructor. A missing file answers false and is then reported by the list reader in the
    /// same words as with a header. A file without a block is read to its end to know.
    static bool hasFoamBlock(const dvn::Str& path);

    /// Opens `path` + ".gz" if that exists, else `path`, and reads the header.
    ///
    /// Only a regular file is opened, so that a pipe or a device in its place cannot block. The header entries of an
    /// earlier file stay, and the first value of a key wins: for the header of a second file use a fresh object.
    /// @return false, with the stream closed, if there is no such file or no valid header
    bool open(const dvn::Str& path);
    /// Ends the stream and frees the buffers; header entries stay.
    void close();
    /// Keys and values of the `FoamFile` block. Values are what stands before the last ";", quotes included.
    const std::map<std::string, std::string>& headerMap() const;
    /// Reads on to the next `FoamFile` block and adds its entries to the map.
    /// @return false if there is no block, it does not end, or an entry lacks its ";", which also closes the stream
    bool readHeader();
    /// Splits the next line that starts with "dimensions" at blanks; true if that gives exactly eight tokens.
    ///
    /// @param[out] tokens the pieces, whatever their number; untouched if there is no such line
    bool readDimensions(std::vector<dvn::Str>* tokens);

    // --- lines and chunks (OFFileLines.cpp)

    /// Copies the next line to the `LINE_BUFFER_SIZE` bytes at `*line`; a longer line comes in pieces.
    ///
    /// Lines of the pending chunk come without line end, empty ones not at all; when it is used up, lines come from the
    /// stream and keep their line feed. A chunk ends at a line end, so text behind the last line feed of a chunk is
    /// dropped, and with it the last line of a file that ends without one.
    /// @return false at the end of the file
    bool getNextLine(char** line) const;
    /// The same, but first reads a chunk if none is pending. Binary files have no chunks: their lines are the stream's.
    bool getNextLineUsingChunk(char** line) const;
    /// The next line of the pending chunk alone; false, with an empty text, where there is none.
    bool getNonTreatedLine(char** line) const;
    /// Hands out the pending rest, or else reads a chunk that ends at a line end into `*chunk`.
    ///
    /// @param[in,out] chunk     a buffer of `CHUNK_BUFFER_SIZE` bytes; comes back pointing to the text, which ends with
    ///                          a NUL. It points into a buffer of this object where that holds the text: for a pending
    ///                          rest and for a line longer than the given buffer can finish.
    /// @param[in,out] lastIndex if not null, grows by the length of a pending rest, or is set to the index of the last
    ///                          byte of a chunk read: the first lands on the NUL, the second in front of it
    /// @return false at the end of the file, with an empty text
    bool getNextChunkOfLines(char** chunk, std::size_t* lastIndex) const;
    /// Hands out the pending rest and leaves nothing pending; the text is empty where there was none.
    bool getNonTreatedChunk(char** chunk, std::size_t* lastIndex) const;
    /// Reads lines, of any length, up to one that begins with `prefix`.
    bool getNextLineStartingWith(const std::string& prefix, std::string& line);
    /// Moves behind the next `c`; false at the end of the file.
    bool skipAfterNext(char c) const;
    /// Moves behind the line feeds that stand here, in binary data as well; false if the file ends behind one.
    bool skipEmptyLines() const;
    /// Always true: names are found by the readers of the lists themselves.
    bool findName(const std::string& name) const;

    // --- numbers (OFFileNumbers.cpp)

    /// Reads unsigned digits from the stream up to `delimiter`, a carriage return or "(", which stays to be read.
    ///
    /// Digits are added up without a test, so a count too large comes out wrapped. A byte that fits nowhere ends the
    /// attempt and is used up, and so is a "(" with no digit in front.
    bool readNextInt(int* value, char delimiter) const;
    /// Reads the first run of digits that a line feed, a carriage return or "(" ends, passing over all else.
    bool readNextIntLine(int* value) const;
    /// Reads the first line that begins with digits, up to a blank or its end, from the pending chunk or the stream.
    bool readNextIntLineFromCurrentChunk(int* value) const;
    /// Reads the text up to `delimiter` from the stream; false if that is not one number, or the file ends first.
    bool readNextDouble(double* value, char delimiter) const;
    /// Reads digits up to a NUL, a line feed, a blank or `delimiter` and moves `*cursor` behind that, but never behind
    /// the NUL.
    ///
    /// A line feed in place of `delimiter` makes it move behind the next `delimiter`, unless `stopAtLineEnd` is set.
    /// @return false, with `*cursor` where it was, if there are no digits, or anything else ends them
    bool readNextBufInt(char** cursor, int* value, char delimiter, bool stopAtLineEnd) const;
    /// The same for a real number, which ")" may end as well; a line feed always goes on to the next `delimiter`.
    /// @return false if the token is not one number; `*cursor` has moved then, unless the token is empty
    bool readNextBufDouble(char** cursor, double* value, char delimiter) const;

    // --- mesh lists (OFFileLists.cpp, OFFileVectors.cpp, OFFileFaces.cpp)

    /// Reads a whole `owner` or `neighbour` file, ascii or binary, plain or gzip.
    ///
    /// @param[out] labels    one 0-based cell label for each face, in file order
    /// @param[out] cellCount `nCells` of the header's `note`; the labels are not counted
    /// @return false if the file cannot be read; `labels` then holds what was read so far
    /// @throws std::out_of_range when the header lacks `object`, `class` or `note`
    bool readLabelList(const dvn::Str& path, const dvn::Str& objectName, std::vector<int>* labels, int* cellCount);
    /// Reads a whole `vectorField` file into x, y, z of each vector in turn.
    ///
    /// Without a header neither object nor class are tested. An ascii list that is too short answers true all the same,
    /// with zeros at its end and the info line as the only trace.
    /// @throws std::out_of_range when the header lacks `object` or `class`
    bool readVectorField(const dvn::Str& path, const dvn::Str& objectName, std::vector<double>* values);
    /// Reads a whole `faceList` (ascii) or `faceCompactList` (ascii or binary) file; without a header it is a faceList.
    ///
    /// Faces that the file lacks have no nodes and the offset 0. A faceList that is too short answers true, with the
    /// info line as the only trace; a binary faceList is refused without a message.
    /// @throws std::out_of_range when the header lacks `object` or `class`
    bool readFaceList(const dvn::Str& path, const dvn::Str& objectName, FacesData* faces);

    /// Moves behind the next "(" and reads as many labels as the target has. The ")" stays to be read.
    bool readNextLabelList(std::vector<int>* labels);
    /// Reads labels separated by one blank or by line feeds; the rest of the last chunk stays pending.
    bool readNextLabelListAscii(std::vector<int>* labels);
    /// Reads 4-byte labels in the byte order of the machine.
    bool readNextLabelListBinary(std::vector<int>* labels);
    /// Reads "(x y z)" triples one after the other, up to the ";" behind the list; what follows stays pending.
    /// @return false, and one error line where the file ended, if there are fewer than the target holds
    bool readNextVectorFieldAscii(std::vector<double>* values) const;
    /// Reads "(x y z)" triples, four chunks at a time, until the target is full or the file ends; always true.
    bool readNextVectorFieldAsciiPar(std::vector<double>* values) const;
    /// Reads 8-byte reals in the byte order of the machine.
    bool readNextVectorFieldBinary(std::vector<double>* values) const;
    /// Moves behind the next "(" and reads faces in parallel; false for a binary file.
    bool readNextFaceList(FacesData* faces);
    /// Reads as many faces as `nodeCounts` has entries, six chunks at a time, and cuts `nodes` to what came; always
    /// true.
    bool readNextFaceListAsciiPar(FacesData* faces);
    /// The same, one face after the other, and stricter: false at the first text that is no face.
    bool readNextFaceListAscii(FacesData* faces);
    /// Always false: OpenFOAM writes binary faces as a compact list.
    bool readNextFaceListBinary(FacesData* faces);
    /// Moves behind the next "(" and reads a compact list, ascii or binary.
    bool readNextFaceCompactList(FacesData* faces);
    /// Reads faces written one by one, as in a faceList, and then reads on to the end of the file. `nodes` keeps its
    /// slack.
    bool readNextFaceCompactListAscii(FacesData* faces);
    /// Reads the offsets, one more than faces, and then the labels of all faces. `nodes` keeps its slack.
    /// @return false if the offsets fall or the file holds fewer labels; whole faces in front of that count
    bool readNextFaceCompactListBinary(FacesData* faces);

    // --- dictionaries, patches, zones (OFFileDictionary.cpp, OFFileZones.cpp)

    /// Reads the "key value;" lines of a dictionary such as `controlDict`; the first value of a key wins.
    ///
    /// Nesting, comments and entries over several lines are passed over, not understood.
    /// @throws std::out_of_range when the header lacks `object` or `class`
    bool readDictionary(const dvn::Str& path, const dvn::Str& objectName, std::map<dvn::Str, dvn::Str>* entries);
    /// Reads the patches of a `boundary` file.
    ///
    /// @param partId the part that the patches are told to belong to
    /// @return false if the file cannot be read; `boundaries` may then have been sized, without content
    /// @throws std::out_of_range when the header lacks `object`, or a patch its name, `type`, `nFaces` or `startFace`
    bool readBoundary(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFBoundary>& boundaries,
                      std::size_t partId);
    /// Reads one name with its block of entries; the name comes under the key "patchName".
    std::map<std::string, std::string> readBoundaryInfo();
    /// Reads the zones of a `cellZones` file that have cells, and numbers them from 1.
    bool readCellZones(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFCellZone>& zones,
                       std::size_t partId);
    /// Reads all zones of a `faceZones` file, numbered from 1. The count of a zone must stand on a line of its own.
    bool readFaceZones(const dvn::Str& path, const dvn::Str& objectName, std::vector<OFFaceZone>& zones,
                       std::size_t partId);

    // --- fields (OFFileFields.cpp, OFFileBoundaryFields.cpp)
    //
    // Values are plain arrays, item after item, components of an item next to each other, in the size that the caller
    // gave them. A tensor takes six values of such an array but nine in the patches of a file; both are relied on.

    /// Reads the interior values of a field file, or the one list of a file without header.
    ///
    /// A file of another class than `resultClass` fills `values` with `UNDEFINED_DOUBLE` and counts as read. Without
    /// header the answer is always true once the file is open: `interiorWasRead` tells the rest.
    /// @return false if the values could not be read; `values` is then of no use
    /// @throws std::out_of_range when the header lacks `object` or `class`
    /// @throws std::invalid_argument when no count stands directly in front of the "(" of a list on one line
    bool readResult(const dvn::Str& path, const dvn::Str& objectName, const dvn::Str& resultClass,
                    std::vector<double>* values);
    /// Reads the interior and then the patches of a field file.
    ///
    /// Patches are looked for in the order of `boundaries`, their names compared byte by byte. A patch without values
    /// in the file keeps what its array holds, unless its type continues the value of the cell: then each face takes
    /// the value of its cell, or each node that of its point.
    /// @param[in,out] boundaryValues one array a patch, sized by the caller
    /// @return false if the interior could not be read, and also if the file ends right behind it: then the interior
    ///         counts and `interiorWasRead` answers true
    bool readValuesOfCellAndBoundaries(const dvn::Str& path, const dvn::Str& objectName, const dvn::Str& resultClass,
                                       std::vector<double>* values, const std::vector<OFBoundary>& boundaries,
                                       std::vector<std::vector<double>>& boundaryValues);
    /// True if the last of the two calls above filled `values`, whatever came of the patches.
    bool interiorWasRead() const { return m_interiorWasRead; }
    /// Opens a field file of this object and class and stands behind the "{" of its boundaryField.
    bool checkResultFile(const dvn::Str& path, const dvn::Str& objectName, const dvn::Str& resultClass);

    /// Reads the values of an `internalField` line that holds the whole list.
    bool readResultInSingleLineFormat(const dvn::Str& line, const dvn::Str& path, const dvn::Str& resultClass,
                                      std::vector<double>* values);
    /// Reads the count and the list from the position on. An empty list empties `values`.
    bool readResultInMultipleLineFormat(const dvn::Str& path, const dvn::Str& resultClass, std::vector<double>* values);
    /// Reads the patches named `names`, in this order, from the position on.
    ///
    /// @return for each name the entries of its block up to its values, with the name itself under "patchName"; empty
    ///         for a patch that was not found
    std::vector<std::map<std::string, std::string>>
    readBoundariesResult(const dvn::Str& resultClass, const std::vector<std::string>& names,
                         std::vector<std::vector<double>>& boundaryValues);
    /// Fills `values` with the one value of tokens such as "uniform", "(1", "0", "0)". What is no number counts as 0.
    bool readUniformValues(const dvn::Str& resultClass, std::vector<dvn::Str>& tokens, std::vector<double>* values);
    /// Reads the list announced by tokens such as "nonuniform", "List<vector>".
    void readNonUniformValues(std::vector<dvn::Str>& tokens, std::vector<double>* values);
    /// Moves behind the next "(" and reads as many numbers as `values` holds, ascii or binary.
    bool readNextVolScalarField(std::vector<double>* values);
    bool readNextVolVectorField(std::vector<double>* values);
    /// Moves behind the next "(" and answers false: tensors are not read.
    bool readNextVolTensorField(std::vector<double>* values) const;
    /// Reads numbers separated by one blank or by line feeds, up to the ";" behind the list.
    ///
    /// What follows the ";" stays pending; where the list fails, the rest of the chunk does, so that later patches are
    /// found. Nothing to read is reported as an error, which callers ignore.
    bool readNextVolScalarFieldAscii(std::vector<double>* values);
    bool readNextVolScalarFieldBinary(std::vector<double>* values);
    bool readNextVolTensorFieldAscii(std::vector<double>* values);
    bool readNextVolTensorFieldBinary(std::vector<double>* values);
    /// Converts the words of a line, as many as `values` holds; missing ones give 0. Always true.
    bool getVolScalarFieldFromLine(std::vector<double>* values, const dvn::Str& line) const;
    /// The same for words in threes, of which the first begins with "(" and the last ends with ")".
    bool getVolVectorFieldFromLine(std::vector<double>* values, const dvn::Str& line) const;
    /// Always false.
    bool getVolTensorFieldFromLine(std::vector<double>* values, const dvn::Str& line) const;
    /// True for the patch types whose faces take the value of their cell.
    bool shouldApplyCellValueInBoundaryFace(const std::map<std::string, std::string>& boundaryEntries) const;
    /// The value of the first key, in the order of the map, that carries result values; empty if there is none.
    dvn::Str findValueKeys(const std::map<std::string, std::string>& boundaryEntries) const;
    /// Copies to each item of a patch the components of its item of the mesh; what lies outside an array is left out.
    bool applyMeshItemValueInBoundaryItem(std::vector<double>* boundaryItemValues, const std::size_t& componentCount,
                                          const std::vector<double>* meshItemValues,
                                          const std::vector<int>& meshItemIds) const;
    /// How many values an array of so many items has: 1, 3 or, for a tensor, 6 each; 0 and an error line for an unknown
    /// class, -1 where it has no number.
    int calculateNumberOfValues(const dvn::Str& resultClass, int itemCount) const;

    // --- two passes over a chunk (OFFileChunkStrategy.cpp)

    /// Reads a list of one number or one vector a line, chunk after chunk: marks where the lines of a chunk start, then
    /// converts all of them at once, both in parallel. No reader selects it yet.
    ///
    /// It is called right behind the list's "(" and the line feeds there; what follows the list's ";" stays pending. No
    /// number is tested: a line that is none gives 0. Of a vector line all three components take the first number.
    /// @param componentsPerLine 1 or 3
    /// @return false at the end of the file, or for another number of components
    bool markChunkThenReadChunkStrategy(std::vector<double>* values, int componentsPerLine);

private:
    /// Where reading stands. All places lie in the chunk buffer.
    struct Position
    {
        /// Start of the unread rest of the pending chunk.
        char* cursor = nullptr;
        /// Start of the line taken last from the pending chunk; null when it came from the stream.
        char* lastLineStart = nullptr;
        bool pending = false;
    };
    /// Text handed to a parser; `end` is its NUL.
    struct Chunk
    {
        char* begin = nullptr;
        char* end = nullptr;
    };
    /// The messages of one whole-file reader.
    struct ListMessages;

    // OFFile.cpp
    bool skipToHeaderBlock() const;
    bool readHeaderEntries();
    bool headerIs(const char* key, const dvn::Str& expected) const;
    /// Logs an error about the open file. Always false.
    bool reportError(const char* message) const;
    /// Tells that a list is shorter than its count says.
    void reportShortList(std::size_t promised, std::size_t found) const;
    /// False if the file is too small for so many items, each of which takes at least `bytesPerItem` bytes of it.
    bool canHold(std::uint64_t itemCount, std::uint64_t bytesPerItem) const;

    // OFFileLines.cpp
    void keepPending(char* cursor) const;
    void endPending() const;
    /// Takes up to `maxLength` characters of a line of the pending chunk, in place and without line end.
    bool takePendingLine(std::size_t maxLength, std::string_view* line) const;
    /// Takes a line of the stream, whatever its length, into the line buffer; it keeps its line feed.
    bool takeStreamLine(std::string_view* line) const;
    /// Takes a line, whatever its length, of the pending chunk or the stream.
    bool takeLine(std::string_view* line) const;
    bool copyPendingLine(char* target) const;
    /// Hands out the pending rest, or reads a chunk into `buffer`; false at the end of the file.
    bool nextChunk(ChunkBuffer* buffer, Chunk* chunk) const;
    /// Reads `CHUNK_SIZE` bytes and on to the end of the line behind the `used` bytes of a buffer, which grows.
    /// @return the bytes in the buffer, `used` at the end of the file; a NUL stands behind them
    std::size_t appendChunk(ChunkBuffer* buffer, std::size_t used) const;
    /// Appends bytes up to and with the next line feed to the `used` bytes of a buffer, which grows.
    std::size_t finishLine(ChunkBuffer* buffer, std::size_t used) const;
    bool readForeignChunk(char** chunk, std::size_t* length) const;

    // OFFileNumbers.cpp
    enum class IntToken
    {
        Number,
        NoNumber,
        EndOfFile
    };
    /// `readNextInt` with the end of the file told apart from text that is no number.
    IntToken nextIntToken(int* value, char delimiter) const;

    // OFFileLists.cpp
    /// What a number takes of a file at the least; so a count of numbers never exceeds the size of its file.
    static constexpr std::uint64_t BYTES_PER_NUMBER = 1;
    /// Words of a line that are looked at; values take a dozen.
    static constexpr std::size_t MOST_WORDS = 4096;
    bool openOrReport(const dvn::Str& path, const ListMessages& messages);
    /// The same, and compares the header's object.
    bool openWithObject(const dvn::Str& path, const dvn::Str& objectName, const ListMessages& messages);
    /// Count of a list that is valid in all lists; the next one marks an overflow.
    static constexpr int LARGEST_COUNT = 2147483646;
    /// Reads and judges the count of a list.
    bool readListCount(const ListMessages& messages, std::uint64_t bytesPerItem, int largest, int* count) const;
    bool readLabelsReportingShort(std::vector<int>* labels);
    /// Reads labels from behind the "(" on and tells how many came.
    std::size_t readLabels(std::vector<int>* labels) const;
    std::size_t walkLabels(std::vector<int>* labels) const;
    std::size_t readRaw(void* target, std::size_t itemSize, std::size_t itemCount) const;
    /// Moves behind the next "(" and the line feeds there.
    bool skipToList() const;

    // OFFileVectors.cpp
    std::size_t readVectorsPar(std::vector<double>* values) const;
    void endList(const Chunk& chunk, const char* p, int chunks, std::size_t valueCount) const;

    // OFFileFaces.cpp
    /// What a sequential walk over faces came to.
    struct FaceWalk
    {
        bool isGood;
        std::size_t faceCount;
        std::size_t nodeCount;
    };
    bool readFaces(FacesData* faces, bool isCompact, std::size_t* found);
    bool nextChunkOfFaces(ChunkBuffer* buffer, std::string* tail, Chunk* chunk) const;
    std::size_t readFacesPar(FacesData* faces) const;
    void reserveNodes(FacesData* faces, std::size_t faceCount, std::size_t nodeCount) const;
    FaceWalk walkFaces(FacesData* faces, bool skipsFirstLineFeeds) const;
    bool readCompactAscii(FacesData* faces, std::size_t* found);
    bool readCompactBinary(FacesData* faces, std::size_t* found);
    std::size_t readCompactNodes(FacesData* faces, std::size_t labelCount, bool isCredible) const;

    // OFFileZones.cpp
    bool readFaceZone(const ListMessages& messages, OFFaceZone* zone);
    bool readFlips(const ListMessages& messages, std::string_view line, OFFaceZone* zone);
    bool readZoneListCount(const ListMessages& messages, std::vector<int>* labels);
    bool sizeZoneList(const ListMessages& messages, int count, std::vector<int>* labels);
    bool readCellZone(const ListMessages& messages, OFCellZone* zone, bool* isEmpty);
    bool skipEmptyZone(const OFCellZone& zone);
    bool takeLineOfChunk(std::string_view* line) const;
    bool readCellZoneCount(const ListMessages& messages, std::string_view line, OFCellZone* zone);
    bool scanPendingCount(int* count) const;

    // OFFileFields.cpp
    bool readInteriorField(const dvn::Str& path, const dvn::Str& resultClass, std::vector<double>* values);
    bool fillUniformInterior(const std::vector<dvn::Str>& tokens, const dvn::Str& path, const dvn::Str& resultClass,
                             std::vector<double>* values) const;
    /// Judges the count of an interior list against the file, the class and the array of the caller.
    bool checkInteriorCount(int count, const dvn::Str& path, const dvn::Str& resultClass,
                            const std::vector<double>& values) const;
    bool walkScalars(std::vector<double>* values, std::size_t* found) const;
    bool walkVectors(std::vector<double>* values, std::size_t* found) const;
    bool readFieldList(bool isVector, std::vector<double>* values, std::size_t* found) const;

    // OFFileBoundaryFields.cpp
    using Entries = std::map<std::string, std::string>;
    enum class EntryOutcome
    {
        Open,
        Closed,
        Values
    };
    bool takeBoundaryLine(bool keepsValues, std::string_view* line) const;
    EntryOutcome readPatchEntry(std::string_view line, Entries* entries, std::string* values) const;
    bool skipInnerBlock(const std::string& patchName, std::string_view* line) const;
    bool lookAheadForValue(std::string* values) const;
    void readPatchValues(const dvn::Str& resultClass, const std::string& text, std::vector<double>* values,
                         std::string* firstToken);
    void readRawPatchList(const std::string& type, std::vector<double>* values) const;
    void skipRawList(std::string_view line) const;
    void applyCellValues(const dvn::Str& resultClass, const std::vector<double>& values,
                         const std::vector<OFBoundary>& boundaries, const std::vector<Entries>& entries,
                         std::vector<std::vector<double>>* boundaryValues) const;

    // OFFileChunkStrategy.cpp
    void keepBehindList(char* firstLineBehind) const;

    /// Starts of the lines of one chunk.
    tbb::concurrent_vector<int> m_lineOffsets;
    std::map<std::string, std::string> m_headerEntries;
    dvn::Str m_path;
    /// Null while no file is open.
    std::unique_ptr<GzStream> m_stream;
    /// Without memory in a binary file, whose text is taken from the stream. Mutable, as are the two below, because
    /// taking text moves the position alone.
    mutable ChunkBuffer m_chunkBuffer;
    mutable ChunkBuffer m_lineBuffer;
    mutable Position m_position;
    /// The pending rest whose end was found last; holds until text is read or handed out.
    mutable Chunk m_rest;
    bool m_isBinary = false;
    bool m_hasHeader;
    bool m_interiorWasRead = false;
    /// Tells that the list of a patch's values starts on the line of its key.
    bool m_listOnKeyLine = false;
};

/// Components of one item of a class in the patches of a field file: 9 for a tensor, 3 for a vector, else 1; an unknown
/// class is reported.
int resultSizeFromName(const dvn::Str& resultClass);
