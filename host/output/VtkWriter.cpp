// SPDX-License-Identifier: MIT
#include "output/VtkWriter.h"

#include "output/OutputFile.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <string_view>

namespace {

// The arrays are written as they are in memory, so the files declare this byte order.
constexpr const char* BYTE_ORDER_NAME = std::endian::native == std::endian::little ? "LittleEndian" : "BigEndian";

// Between two calls for progress; a fraction of a second on any disk.
constexpr std::size_t STRETCH_BYTES = std::size_t{4} << 20;

/// Keeps a text as it is if it is UTF-8, and replaces the bytes that are not: readers refuse the whole file for one.
std::string asUtf8(std::string_view text)
{
    using nlohmann::json;
    return json::parse(json(text).dump(-1, ' ', false, json::error_handler_t::replace)).get<std::string>();
}

/// Makes a name safe for an attribute: names of groups and results come from files and may contain anything.
std::string escaped(std::string_view text)
{
    std::string result;
    for (const char c : asUtf8(text)) {
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

/// Appends the shortest text that reads back as the same number.
void appendNumber(double value, std::string* text)
{
    if (std::isnan(value)) {
        *text += "nan"; // without a sign, which some readers stumble over
        return;
    }
    fmt::format_to(std::back_inserter(*text), "{}", value);
}

template <typename Integer>
void appendNumber(Integer value, std::string* text)
{
    fmt::format_to(std::back_inserter(*text), "{}", static_cast<std::int64_t>(value));
}

/// The texts as readers expect them, also in files that are otherwise raw: character codes, each text closed by a 0.
std::string characterCodes(const std::vector<std::string>& texts)
{
    std::string codes;
    for (const std::string& text : texts) {
        for (const char c : asUtf8(text)) {
            fmt::format_to(std::back_inserter(codes), "{} ", static_cast<unsigned char>(c));
        }
        codes += "0\n";
    }
    return codes;
}

/// What the file says of an array.
struct ArrayHead
{
    std::string_view name;
    const char* vtkType;
    int components = 1;
    std::string_view unit = {};
};

/// A data file that is being written, from its first element to its last.
///
/// Raw arrays are declared where they belong and follow in the appended section, so they are borrowed until `finish`.
class DataFile
{
public:
    DataFile(const std::filesystem::path& path, const char* type, const VtkFormat& format)
        : m_file(path, false), m_type(type), m_format(format)
    {
        m_file.write(fileOpening(type));
        m_file.write(fmt::format("<{}>\n", type));
    }

    /// Markup between the arrays.
    void text(std::string_view xml) { m_file.write(xml); }

    /// Writes or declares an array.
    template <typename Value>
    void array(const ArrayHead& head, const std::vector<Value>& values)
    {
        m_file.write(fmt::format("<DataArray type=\"{}\" Name=\"{}\" NumberOfComponents=\"{}\" ", head.vtkType,
                                 escaped(head.name), head.components));
        if (m_format.ascii) {
            m_file.write("format=\"ascii\">\n");
            writeNumbers(values, static_cast<std::size_t>(head.components));
        } else {
            m_file.write(fmt::format("format=\"appended\" offset=\"{}\">\n", m_offset));
            m_blocks.push_back({reinterpret_cast<const std::byte*>(values.data()), values.size() * sizeof(Value)});
            m_offset += sizeof(std::uint64_t) + m_blocks.back().byteCount;
        }
        // After the numbers, since readers take what follows the start of an array for its first one.
        if (!head.unit.empty()) {
            m_file.write(fmt::format("<InformationKey name=\"UNITS_LABEL\" location=\"vtkDataArray\">{}"
                                     "</InformationKey>\n",
                                     escaped(head.unit)));
        }
        m_file.write("</DataArray>\n");
    }

    /// Writes the appended section.
    /// @return the size of the file
    std::uint64_t finish()
    {
        m_file.write(fmt::format("</{}>\n", m_type));
        if (!m_format.ascii) {
            m_file.write("<AppendedData encoding=\"raw\">\n_");
            for (const Block& block : m_blocks) {
                m_file.write(&block.byteCount, sizeof(block.byteCount));
                writeBytes(block);
            }
            m_file.write("\n</AppendedData>\n");
        }
        m_file.write("</VTKFile>\n");
        m_file.close();
        return m_file.byteCount();
    }

private:
    struct Block
    {
        const std::byte* bytes;
        std::uint64_t byteCount;
    };

    void report(std::size_t byteCount) const
    {
        if (m_format.progress) {
            m_format.progress(byteCount);
        }
    }

    void writeBytes(const Block& block)
    {
        for (std::size_t done = 0; done < block.byteCount;) {
            const std::size_t count = std::min<std::size_t>(STRETCH_BYTES, block.byteCount - done);
            m_file.write(block.bytes + done, count);
            report(count);
            done += count;
        }
    }

    /// One line for each item of several components, ten numbers in any other line.
    template <typename Value>
    void writeNumbers(const std::vector<Value>& values, std::size_t components)
    {
        const std::size_t lineLength = components == 1 ? 10 : components;
        constexpr std::size_t STRETCH = STRETCH_BYTES / sizeof(Value);
        std::string text;
        for (std::size_t i = 0; i < values.size(); ++i) {
            appendNumber(values[i], &text);
            const bool isLast = i + 1 == values.size();
            text += isLast || (i + 1) % lineLength == 0 ? '\n' : ' ';
            if (isLast || (i + 1) % STRETCH == 0) {
                m_file.write(text);
                text.clear();
                report((i % STRETCH + 1) * sizeof(Value));
            }
        }
    }

    OutputFile m_file;
    std::string m_type;
    const VtkFormat& m_format;
    std::vector<Block> m_blocks;
    std::uint64_t m_offset = 0;
};

/// What belongs to the whole grid; short enough to be text in any file.
void addFieldData(DataFile* file, const VtkGrid& grid)
{
    file->text("<FieldData>\n");
    if (grid.time) {
        file->text(fmt::format("<DataArray type=\"Float64\" Name=\"TimeValue\" NumberOfTuples=\"1\" "
                               "format=\"ascii\">{}</DataArray>\n",
                               *grid.time));
    }
    if (!grid.groupIds.empty()) {
        file->text(fmt::format("<DataArray type=\"Int32\" Name=\"GroupId\" NumberOfTuples=\"{}\" "
                               "format=\"ascii\">{}</DataArray>\n",
                               grid.groupIds.size(), fmt::join(grid.groupIds, " ")));
    }
    for (const VtkTexts& texts : grid.texts) {
        file->text(fmt::format("<Array type=\"String\" Name=\"{}\" NumberOfTuples=\"{}\" format=\"ascii\">\n{}"
                               "</Array>\n",
                               escaped(texts.name), texts.values.size(), characterCodes(texts.values)));
    }
    file->text("</FieldData>\n");
}

/// The start of a piece, the same for solids and surfaces. Readers expect this order.
void addDataArrays(DataFile* file, const VtkGrid& grid)
{
    file->text("<PointData>\n");
    for (const VtkArray& array : grid.pointData) {
        file->array({array.name, "Float64", array.components, array.unit}, array.values);
    }
    file->text("</PointData>\n<CellData>\n");
    file->array({"PartId", "Int32"}, grid.partIds);
    for (const VtkArray& array : grid.cellData) {
        file->array({array.name, "Float64", array.components, array.unit}, array.values);
    }
    file->text("</CellData>\n<Points>\n");
    file->array({"Points", "Float64", 3}, *grid.points);
    file->text("</Points>\n");
}

/// The nodes of all cells, and the end of each cell among them.
void addConnectivity(DataFile* file, const VtkGrid& grid)
{
    file->array({"connectivity", "Int64"}, grid.connectivity);
    file->array({"offsets", "Int64"}, grid.offsets);
}

/// Writes a whole index.
std::uint64_t writeText(const std::filesystem::path& path, const std::string& text)
{
    OutputFile file(path, false);
    file.write(text);
    file.close();
    return file.byteCount();
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

std::uint64_t writeVtu(const std::filesystem::path& path, const VtkGrid& grid, const VtkFormat& format)
{
    DataFile file(path, "UnstructuredGrid", format);
    addFieldData(&file, grid);
    file.text(fmt::format("<Piece NumberOfPoints=\"{}\" NumberOfCells=\"{}\">\n", grid.points->size() / 3,
                          grid.types.size()));
    addDataArrays(&file, grid);
    file.text("<Cells>\n");
    addConnectivity(&file, grid);
    file.array({"types", "UInt8"}, grid.types);
    if (grid.hasPolyhedra()) {
        file.array({"faces", "Int64"}, grid.faces);
        file.array({"faceoffsets", "Int64"}, grid.faceOffsets);
    }
    file.text("</Cells>\n</Piece>\n");
    return file.finish();
}

std::uint64_t writeVtp(const std::filesystem::path& path, const VtkGrid& grid, const VtkFormat& format)
{
    DataFile file(path, "PolyData", format);
    addFieldData(&file, grid);
    file.text(fmt::format("<Piece NumberOfPoints=\"{}\" NumberOfVerts=\"0\" NumberOfLines=\"0\" "
                          "NumberOfStrips=\"0\" NumberOfPolys=\"{}\">\n",
                          grid.points->size() / 3, grid.types.size()));
    addDataArrays(&file, grid);
    file.text("<Polys>\n");
    addConnectivity(&file, grid);
    file.text("</Polys>\n</Piece>\n");
    return file.finish();
}

std::uint64_t writeVtm(const std::filesystem::path& path, const std::vector<VtkIndexEntry>& entries)
{
    std::string xml = fileOpening("vtkMultiBlockDataSet") + "<vtkMultiBlockDataSet>\n";
    appendIndexEntries(entries, &xml);
    return writeText(path, xml + "</vtkMultiBlockDataSet>\n</VTKFile>\n");
}

std::uint64_t writeSeries(const std::filesystem::path& path, const std::vector<VtkSeriesEntry>& entries)
{
    nlohmann::ordered_json document;
    document["file-series-version"] = "1.0";
    document["files"] = nlohmann::ordered_json::array();
    for (const VtkSeriesEntry& entry : entries) {
        document["files"].push_back({{"name", entry.file}, {"time", entry.time}});
    }
    return writeText(path, document.dump(2) + "\n");
}
