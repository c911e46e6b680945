// SPDX-License-Identifier: MIT
#include "output/VtkWriter.h"

#include "output/OutputFile.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <bit>
#include <cstddef>
#include <string_view>

namespace {

// The arrays are written as they are in memory, so the files declare this byte order.
constexpr const char* BYTE_ORDER_NAME = std::endian::native == std::endian::little ? "LittleEndian" : "BigEndian";

/// Makes a name safe for an attribute: names of groups and results come from files and may contain anything.
std::string escaped(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            // XML does not allow control characters, not even escaped.
            result += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
        }
    }
    return result;
}

/// The start of every file; block sizes are 64-bit, because arrays of large meshes exceed 4 GB.
std::string fileOpening(const char* type)
{
    return fmt::format("<?xml version=\"1.0\"?>\n<VTKFile type=\"{}\" version=\"1.0\" byte_order=\"{}\" "
                       "header_type=\"UInt64\">\n",
                       type, BYTE_ORDER_NAME);
}

/// Builds the XML of a data file and collects the arrays for its appended section.
///
/// The arrays are borrowed until `writeTo` has run.
class AppendedDocument
{
public:
    explicit AppendedDocument(const char* type) : m_type(type), m_xml(fileOpening(type))
    {
        m_xml += fmt::format("<{}>\n", type);
    }

    /// Markup between the arrays.
    void text(std::string_view xml) { m_xml += xml; }

    /// Declares an array here and queues its bytes for the appended section.
    template <typename Value>
    void array(std::string_view name, const char* vtkType, int components, const std::vector<Value>& values)
    {
        m_xml += fmt::format(
            "<DataArray type=\"{}\" Name=\"{}\" NumberOfComponents=\"{}\" format=\"appended\" offset=\"{}\"/>\n",
            vtkType, escaped(name), components, m_offset);
        m_blocks.push_back({values.data(), values.size() * sizeof(Value)});
        m_offset += sizeof(std::uint64_t) + m_blocks.back().byteCount;
    }

    /// Writes the markup, then the arrays, without copying them.
    void writeTo(OutputFile* file)
    {
        m_xml += fmt::format("</{}>\n<AppendedData encoding=\"raw\">\n_", m_type);
        file->write(m_xml);
        for (const Block& block : m_blocks) {
            file->write(&block.byteCount, sizeof(block.byteCount));
            file->write(block.bytes, block.byteCount);
        }
        file->write("\n</AppendedData>\n</VTKFile>\n");
        file->close();
    }

private:
    struct Block
    {
        const void* bytes;
        std::uint64_t byteCount;
    };

    std::string m_type;
    std::string m_xml;
    std::vector<Block> m_blocks;
    std::uint64_t m_offset = 0;
};

/// The start of a piece, the same for solids and surfaces. Readers expect this order.
void addDataArrays(AppendedDocument* document, const VtkGrid& grid)
{
    document->text("<PointData>\n");
    for (const VtkArray& array : grid.pointData) {
        document->array(array.name, "Float64", array.components, array.values);
    }
    document->text("</PointData>\n<CellData>\n");
    document->array("PartId", "Int32", 1, grid.partIds);
    for (const VtkArray& array : grid.cellData) {
        document->array(array.name, "Float64", array.components, array.values);
    }
    document->text("</CellData>\n<Points>\n");
    document->array("Points", "Float64", 3, *grid.points);
    document->text("</Points>\n");
}

/// The nodes of all cells, and the end of each cell among them.
void addConnectivity(AppendedDocument* document, const VtkGrid& grid)
{
    document->array("connectivity", "Int64", 1, grid.connectivity);
    document->array("offsets", "Int64", 1, grid.offsets);
}

/// Numbering restarts in each block, as readers expect.
void appendIndexEntries(const std::vector<VtkIndexEntry>& entries, std::string* xml)
{
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const VtkIndexEntry& entry = entries[i];
        if (!entry.file.empty()) {
            *xml += fmt::format("<DataSet index=\"{}\" name=\"{}\" file=\"{}\"/>\n", i, escaped(entry.name),
                                escaped(entry.file));
            continue;
        }
        *xml += fmt::format("<Block index=\"{}\" name=\"{}\">\n", i, escaped(entry.name));
        appendIndexEntries(entry.children, xml);
        *xml += "</Block>\n";
    }
}

} // namespace

void writeVtu(const std::filesystem::path& path, const VtkGrid& grid, bool overwrite)
{
    AppendedDocument document("UnstructuredGrid");
    document.text(fmt::format("<Piece NumberOfPoints=\"{}\" NumberOfCells=\"{}\">\n", grid.points->size() / 3,
                              grid.types.size()));
    addDataArrays(&document, grid);
    document.text("<Cells>\n");
    addConnectivity(&document, grid);
    document.array("types", "UInt8", 1, grid.types);
    if (grid.hasPolyhedra()) {
        document.array("faces", "Int64", 1, grid.faces);
        document.array("faceoffsets", "Int64", 1, grid.faceOffsets);
    }
    document.text("</Cells>\n</Piece>\n");
    OutputFile file(path, overwrite);
    document.writeTo(&file);
}

void writeVtp(const std::filesystem::path& path, const VtkGrid& grid, bool overwrite)
{
    AppendedDocument document("PolyData");
    document.text(fmt::format("<Piece NumberOfPoints=\"{}\" NumberOfVerts=\"0\" NumberOfLines=\"0\" "
                              "NumberOfStrips=\"0\" NumberOfPolys=\"{}\">\n",
                              grid.points->size() / 3, grid.types.size()));
    addDataArrays(&document, grid);
    document.text("<Polys>\n");
    addConnectivity(&document, grid);
    document.text("</Polys>\n</Piece>\n");
    OutputFile file(path, overwrite);
    document.writeTo(&file);
}

void writeVtm(const std::filesystem::path& path, const std::vector<VtkIndexEntry>& entries, bool overwrite)
{
    std::string xml = fileOpening("vtkMultiBlockDataSet") + "<vtkMultiBlockDataSet>\n";
    appendIndexEntries(entries, &xml);
    xml += "</vtkMultiBlockDataSet>\n</VTKFile>\n";
    OutputFile file(path, overwrite);
    file.write(xml);
    file.close();
}

void writeSeries(const std::filesystem::path& path, const std::vector<VtkSeriesEntry>& entries, bool overwrite)
{
    nlohmann::ordered_json document;
    document["file-series-version"] = "1.0";
    document["files"] = nlohmann::ordered_json::array();
    for (const VtkSeriesEntry& entry : entries) {
        document["files"].push_back({{"name", entry.file}, {"time", entry.time}});
    }
    OutputFile file(path, overwrite);
    file.write(document.dump(2) + "\n");
    file.close();
}
