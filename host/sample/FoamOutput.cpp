// SPDX-License-Identifier: MIT
#include "sample/FoamOutput.h"

#include "border/HostError.h"

#include <fmt/format.h>
#include <zlib.h>

#include <charconv>
#include <cstring>
#include <system_error>

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 20;
// No number is longer than this; a double in six digits has up to 13 characters.
constexpr std::size_t NUMBER_ROOM = 32;
constexpr int DIGITS = 6;

constexpr std::string_view RULE = "// ************************************************************************* //\n";

} // namespace

/// A plain or a compressed file.
class FoamOutput::Sink
{
public:
    Sink(const std::filesystem::path& path, bool gzip) : m_path(gzip ? path.string() + ".gz" : path.string())
    {
        std::error_code ignored;
        std::filesystem::remove(gzip ? path.string() : path.string() + ".gz", ignored);
        if (!gzip) {
            m_plain = std::make_unique<OutputFile>(m_path, true);
            return;
        }
        m_compressed = gzopen(m_path.c_str(), "wb6e");
        if (m_compressed == nullptr) {
            fail();
        }
        gzbuffer(m_compressed, static_cast<unsigned>(BUFFER_SIZE));
    }

    ~Sink()
    {
        if (m_compressed != nullptr) {
            gzclose(m_compressed);
        }
    }

    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;

    void write(const void* data, std::size_t count)
    {
        if (m_plain) {
            m_plain->write(data, count);
        } else if (gzfwrite(data, 1, count, m_compressed) != count) {
            fail();
        }
    }

    void close()
    {
        if (m_plain) {
            m_plain->close();
            return;
        }
        gzFile const file = m_compressed;
        m_compressed = nullptr;
        if (gzclose(file) != Z_OK) {
            fail();
        }
    }

private:
    [[noreturn]] void fail() const { throw HostError(ExitCode::CannotWrite, fmt::format("cannot write {}", m_path)); }

    std::string m_path;
    std::unique_ptr<OutputFile> m_plain;
    gzFile m_compressed = nullptr;
};

FoamOutput::FoamOutput(const std::filesystem::path& path, const FoamFormat& format)
    : m_format(format), m_sink(std::make_unique<Sink>(path, format.gzip)), m_buffer(BUFFER_SIZE)
{}

FoamOutput::~FoamOutput() = default;

char* FoamOutput::room(std::size_t count)
{
    if (m_used + count > m_buffer.size()) {
        flush();
    }
    return m_buffer.data() + m_used;
}

void FoamOutput::flush()
{
    m_sink->write(m_buffer.data(), m_used);
    m_used = 0;
}

void FoamOutput::bytes(const void* data, std::size_t count)
{
    if (count > m_buffer.size()) {
        flush();
        m_sink->write(data, count);
    } else if (count != 0) {
        std::memcpy(room(count), data, count);
        m_used += count;
    }
}

void FoamOutput::label(std::int64_t value)
{
    char* const first = room(NUMBER_ROOM);
    m_used += static_cast<std::size_t>(std::to_chars(first, first + NUMBER_ROOM, value).ptr - first);
}

void FoamOutput::scalar(double value)
{
    char* const first = room(NUMBER_ROOM);
    const auto end = std::to_chars(first, first + NUMBER_ROOM, value, std::chars_format::general, DIGITS).ptr;
    m_used += static_cast<std::size_t>(end - first);
}

void FoamOutput::vector(std::span<const double, 3> value)
{
    text("(");
    scalar(value[0]);
    text(" ");
    scalar(value[1]);
    text(" ");
    scalar(value[2]);
    text(")");
}

void FoamOutput::header(const FoamHeader& head)
{
    text("/*--------------------------------*- C++ -*----------------------------------*\\\n"
         "| A sample case in the OpenFOAM format, written by ddphost                    |\n"
         "\\*---------------------------------------------------------------------------*/\n"
         "FoamFile\n{\n    version     2.0;\n");
    text(fmt::format("    format      {};\n    class       {};\n", binary() ? "binary" : "ascii", head.className));
    if (binary()) {
        text("    arch        \"LSB;label=32;scalar=64\";\n");
    }
    if (!head.note.empty()) {
        text(fmt::format("    note        \"{}\";\n", head.note));
    }
    if (!head.location.empty()) {
        text(fmt::format("    location    \"{}\";\n", head.location));
    }
    text(fmt::format("    object      {};\n}}\n", head.object));
    text("// * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * * //\n\n");
}

void FoamOutput::footer()
{
    text("\n\n");
    text(RULE);
    close();
}

void FoamOutput::close()
{
    flush();
    m_sink->close();
}

void FoamOutput::labelList(std::span<const std::int32_t> labels)
{
    label(static_cast<std::int64_t>(labels.size()));
    text("\n(");
    if (binary()) {
        bytes(labels.data(), labels.size_bytes());
    } else {
        text("\n");
        for (const std::int32_t value : labels) {
            label(value);
            text("\n");
        }
    }
    text(")");
}

void FoamOutput::valueList(std::span<const double> values, std::size_t dimension)
{
    label(static_cast<std::int64_t>(values.size() / dimension));
    text("\n(");
    if (binary()) {
        bytes(values.data(), values.size_bytes());
        text(")");
        return;
    }
    text("\n");
    for (std::size_t i = 0; i < values.size(); i += dimension) {
        if (dimension == 1) {
            scalar(values[i]);
        } else {
            vector(values.subspan(i).first<3>());
        }
        text("\n");
    }
    text(")");
}

void FoamOutput::faceList(std::span<const std::int32_t> offsets, std::span<const std::int32_t> nodes)
{
    if (binary()) {
        labelList(offsets);
        text("\n");
        labelList(nodes);
        return;
    }
    label(static_cast<std::int64_t>(offsets.size()) - 1);
    text("\n(\n");
    for (std::size_t face = 0; face + 1 < offsets.size(); ++face) {
        label(offsets[face + 1] - offsets[face]);
        for (std::int32_t k = offsets[face]; k < offsets[face + 1]; ++k) {
            text(k == offsets[face] ? "(" : " ");
            label(nodes[static_cast<std::size_t>(k)]);
        }
        text(")\n");
    }
    text(")");
}
