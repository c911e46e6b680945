// SPDX-License-Identifier: MIT
//
// Targets for the kinds of files. An input is a byte of flags, a byte for the reader, one that picks the reader among
// those of the target, and the text of the file.
#include "foamfile/ListAt.h"
#include "foamfile/ListHeader.h"
#include "foamfile/OFFile.h"
#include "fuzz/FuzzHarness.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>

namespace {

enum Flag : std::uint8_t
{
    WITHOUT_HEADER = 1,
    MANY_THREADS = 2,
    GZIP = 4,
    DAMAGED_GZIP = 8,
    EXTENDED = 16,
    LONG = 128
};

/// Texts up to the first number cover chunk borders, up to the second also several passes of the parallel readers.
constexpr std::size_t USUAL_CHUNKS = 2;
constexpr std::size_t LONG_CHUNKS = 7;
/// From this length on, loops split their work, so both numbers of threads are tried whatever the flags say.
constexpr std::size_t LONG_TEXT = 60000;
/// Upper limit for what the caller allocates.
constexpr std::size_t MOST_VALUES = 300000;

struct FileRequest
{
    dvn::Str path;
    std::string_view text;
    bool hasHeader;
    Reading reading;
    std::uint8_t choice;
};

using Reader = void (*)(const FileRequest&, Outcome*);

template <Reader... READERS>
void runFile(FuzzInput input)
{
    static constexpr std::array<Reader, sizeof...(READERS)> ALL = {READERS...};
    static const TempFolder folder;
    const std::uint8_t flags = input.byte();
    const std::uint8_t choice = input.byte();
    const Reader reader = ALL[input.byte() % ALL.size()];
    const std::string text = expanded(input.rest(), (flags & LONG) != 0 ? LONG_CHUNKS : USUAL_CHUNKS);
    const FileRequest request{folder.str("file"), text, (flags & WITHOUT_HEADER) == 0,
                              (flags & EXTENDED) != 0 ? Reading::Extended : Reading::Plain, choice};
    const auto read = [&](Outcome* outcome) { reader(request, outcome); };
    folder.write("file", text);
    const Outcome plain = observe(1, read);
    if (!plain.isDoubtful && ((flags & MANY_THREADS) != 0 || text.size() > LONG_TEXT)) {
        expectEqual(plain, observe(8, read), "eight threads read something else than one");
    }
    // A plain file that looks like gzip is inflated once, and so is its gzip form.
    if ((flags & GZIP) == 0 || text.starts_with("\x1f\x8b")) {
        return;
    }
    std::string bytes = gzipped(text);
    folder.write("file.gz", bytes);
    const Outcome zipped = observe(1, read);
    if (!plain.isDoubtful && !zipped.isDoubtful) {
        expectEqual(plain, zipped, "gzip gives something else than the plain file");
    }
    if ((flags & DAMAGED_GZIP) != 0) {
        bytes[bytes.size() * choice / 256] ^= static_cast<char>(choice);
        folder.write("file.gz", choice % 2 == 0 ? bytes.substr(0, bytes.size() * choice / 256) : bytes);
        observe(1, read);
    }
    std::filesystem::remove(folder.path() / "file.gz");
}

/// The value of the first entry of a key.
std::string entryOf(std::string_view text, std::string_view key)
{
    text.remove_prefix(std::min(text.find(key), text.size()));
    text.remove_prefix(std::min(text.find(' '), text.size()));
    return std::string(text.substr(std::min<std::size_t>(text.size(), 1), text.find_first_of(";\n") - 1));
}

/// The number before the first "(" after `name`: the size of the array in a mesh that fits. 0 if there is none or no
/// mesh could be that large.
std::size_t countAfter(std::string_view text, std::string_view name)
{
    text.remove_prefix(std::min(text.find(name), text.size()));
    text = text.substr(0, text.find('('));
    text = text.substr(0, text.find_last_of("0123456789") + 1);
    text.remove_prefix(text.find_last_not_of("0123456789") + 1);
    const auto count = text.size() > 6 ? 0 : static_cast<std::size_t>(dvn::Str(std::string(text)).toInt(0));
    return count > MOST_VALUES / 9 ? 0 : count;
}

/// Opens a text of one chunk to read its list on this thread, and moves past the "(" of the list.
bool openAtList(const FileRequest& request, OFFile* file)
{
    int ignored = 0;
    return request.text.size() < OFFile::CHUNK_SIZE && file->open(request.path) && file->readNextIntLine(&ignored) &&
           file->skipAfterNext('(') && file->skipEmptyLines();
}

/// The labels of all faces, without the slack after the last one.
Outcome asOutcome(const FacesData& faces)
{
    Outcome outcome;
    outcome.add(faces.nodeCounts, faces.nodeOffsets);
    for (std::size_t i = 0; i < faces.faceCount(); ++i) {
        outcome.add(std::vector<int>(faces.faceNodes(i), faces.faceNodes(i) + faces.nodeCounts[i]));
    }
    return outcome;
}

FacesData roomFor(std::size_t faceCount)
{
    return {std::vector<std::uint8_t>(faceCount), std::vector<int>(faceCount), {}};
}

/// Reads the lists of a file one after the other, each with a count on a line of its own. `read` takes a source, a
/// count and the target.
template <typename Value, typename Read>
void readListsAt(const FileRequest& request, Outcome* outcome, std::size_t components, const Read& read)
{
    FoamFile file;
    file.reading = request.reading;
    int count = 0;
    for (bool isGood = file.open(request.path); isGood && file.text.readCountLine(&count);) {
        // Whether the file can hold it depends on the file's form.
        outcome->isDoubtful |= static_cast<std::uint32_t>(count) * components > request.text.size();
        std::vector<Value> values;
        isGood = read(file.text, static_cast<std::uint32_t>(count), &values);
        outcome->add(isGood);
        if (isGood) {
            outcome->add(values);
        }
    }
}

void readLabels(const FileRequest& request, Outcome* outcome)
{
    std::vector<int> labels;
    int cellCount = -1;
    OFFile file(true, request.reading);
    outcome->add(file.readLabelList(request.path, "owner", &labels, &cellCount), labels, cellCount);
    if (request.reading == Reading::Extended) {
        readListsAt<int>(request, outcome, 1, request.choice % 2 == 0 ? ListAt::readLabels : ListAt::readFlags);
    }
}

void readPoints(const FileRequest& request, Outcome* outcome)
{
    std::vector<double> points;
    const bool isRead = OFFile(request.hasHeader, request.reading).readVectorField(request.path, "points", &points);
    outcome->add(isRead, points);
    if (request.reading == Reading::Extended) {
        static constexpr std::array<ListItems, 6> ITEMS = {ListItems::scalars(),          ListItems::vectors(),
                                                           ListItems::sphericalTensors(), ListItems::symmTensors(),
                                                           ListItems::tensors(),          ListItems{2, true}};
        const ListItems& items = ITEMS[request.choice % ITEMS.size()];
        readListsAt<double>(request, outcome, items.components,
                            [&items](TextSource& text, std::size_t count, std::vector<double>* values) {
                                return ListAt::readReals(text, count, items, values);
                            });
    }
    // The sequential reader accepts more forms of vectors, but if both read the whole list they must agree. Zeros at
    // the end may be vectors that the parallel reader refused.
    std::vector<double> walked(points.size());
    OFFile walk(request.hasHeader);
    if (isRead && !points.empty() && points.back() != 0.0 && entryOf(request.text, "format") != "binary" &&
        openAtList(request, &walk) && walk.readNextVectorFieldAscii(&walked)) {
        Outcome a;
        Outcome b;
        a.add(points);
        b.add(walked);
        expectEqual(a, b, "points differ when they are read on one thread");
    }
}

void readFaces(const FileRequest& request, Outcome* outcome)
{
    FacesData faces;
    outcome->add(OFFile(request.hasHeader, request.reading).readFaceList(request.path, "faces", &faces),
                 asOutcome(faces).bytes);
    // The parallel reader refuses more, so if it accepts all faces of a list, the sequential one must as well.
    FacesData walked = roomFor(faces.faceCount());
    OFFile walk(request.hasHeader);
    if (faces.faceCount() != 0 && faces.nodeOffsets.back() != 0 && openAtList(request, &walk) &&
        (!request.hasHeader || walk.headerMap().at("class") == "faceList")) {
        expect(walk.readNextFaceListAscii(&walked), "only the parallel reader accepts a face");
        expectEqual(asOutcome(faces), asOutcome(walked), "faces differ when they are read on one thread");
    }
}

void readDictionary(const FileRequest& request, Outcome* outcome)
{
    std::map<dvn::Str, dvn::Str> entries;
    outcome->add(OFFile(true).readDictionary(request.path, "controlDict", &entries));
    for (const auto& [key, value] : entries) {
        outcome->add(key.toUtf8(), value.toUtf8());
    }
}

void readBoundary(const FileRequest& request, Outcome* outcome)
{
    std::vector<OFBoundary> patches;
    outcome->add(OFFile(true).readBoundary(request.path, "boundary", patches, 1));
    for (const OFBoundary& patch : patches) {
        outcome->add(patch.patchName().toUtf8(), patch.type().toUtf8(), patch.faceCount(), patch.startFaceIndex());
    }
}

void readCellZones(const FileRequest& request, Outcome* outcome)
{
    std::vector<OFCellZone> zones;
    outcome->add(OFFile(true).readCellZones(request.path, "cellZones", zones, 1));
    for (const OFCellZone& zone : zones) {
        outcome->add(zone.name().toUtf8(), zone.id(), zone.cellIds());
    }
}

void readFaceZones(const FileRequest& request, Outcome* outcome)
{
    std::vector<OFFaceZone> zones;
    outcome->add(OFFile(true).readFaceZones(request.path, "faceZones", zones, 1));
    for (const OFFaceZone& zone : zones) {
        outcome->add(zone.name().toUtf8(), zone.id(), zone.faceIds(), zone.flipMap());
    }
}

/// Usually the class is that of the file and the arrays fit its counts; some inputs differ on purpose.
void readField(const FileRequest& request, Outcome* outcome)
{
    std::string className = entryOf(request.text, "class");
    if (request.choice % 16 == 15 || !request.hasHeader) {
        className = request.choice < 128 ? "volScalarField" : "pointVectorField";
    }
    const bool isTensor = className.find("Tensor") != std::string::npos;
    const std::size_t components = className.find("Vector") != std::string::npos ? 3 : isTensor ? 6 : 1;
    const std::size_t items = std::max<std::size_t>(countAfter(request.text, "internalField"), 3);
    std::vector<double> values(items * components + (request.choice % 16 == 14 ? 1 : 0), -1.0);
    std::vector<OFBoundary> patches;
    std::vector<std::vector<double>> patchValues;
    for (const char* const name : {"inlet", "wall", "frontAndBack"}) {
        const std::size_t faces = std::max<std::size_t>(countAfter(request.text, name), 4);
        OFBoundary& patch = patches.emplace_back();
        patch.setPatchName(name);
        patch.createFaceToCellMapping(faces);
        patch.createNodeFaceToNodeMapping(faces);
        // Some point to nothing, like those of an older mesh.
        for (std::size_t i = 0; i < faces; ++i) {
            patch.cellIndex(i) = static_cast<int>(7 * i) - 3;
            patch.nodeIndex(i) = static_cast<int>(5 * i);
        }
        patchValues.emplace_back(faces * (isTensor ? 9 : components), -2.0);
    }
    OFFile file(request.hasHeader, request.reading);
    const bool isRead = file.readValuesOfCellAndBoundaries(request.path, "p", className, &values, patches, patchValues);
    outcome->add(isRead, file.interiorWasRead(), values, patchValues);
}

/// The header, block after block, and what may follow it.
void readHeaders(const FileRequest& request, Outcome* outcome)
{
    OFFile file(request.hasHeader);
    std::vector<dvn::Str> tokens;
    std::string line;
    std::vector<double> values(request.choice);
    outcome->add(OFFile::hasFoamBlock(request.path), file.open(request.path));
    while (request.choice % 2 != 0 && file.readHeader()) {
        outcome->add("another block");
    }
    for (const auto& [key, value] : file.headerMap()) {
        outcome->add(key, value);
    }
    outcome->add(file.readDimensions(&tokens), tokens.size(), file.getNextLineStartingWith("internalField", line),
                 line);
    const bool isRead = file.markChunkThenReadChunkStrategy(&values, request.choice % 4 == 0 ? 1 : 3);
    // If a list is too short, scheduling decides which lines after its ";" are used.
    const std::size_t headerEnd = request.hasHeader ? request.text.find('}') : 0;
    if (headerEnd != std::string_view::npos && request.text.find(';', headerEnd) == std::string_view::npos) {
        outcome->add(isRead, values);
    }
}

} // namespace

std::vector<FuzzTarget> fileTargets()
{
    return {{"lists", runFile<readLabels, readPoints, readFaces>},
            {"dictionaries", runFile<readDictionary, readBoundary, readHeaders>},
            {"zones", runFile<readCellZones, readFaceZones>},
            {"fields", runFile<readField>}};
}
