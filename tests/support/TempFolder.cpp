// SPDX-License-Identifier: MIT
#include "support/TempFolder.h"

#include <zlib.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

constexpr int GZIP_WINDOW_BITS = 15 + 16;
constexpr int MEMORY_LEVEL = 8;

} // namespace

TempFolder::TempFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "foamtest-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary folder: " + pattern);
    }
    m_path = pattern;
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

dvn::Str TempFolder::str(const std::string& relative) const
{
    return relative.empty() ? dvn::Str(m_path.string()) : dvn::Str((m_path / relative).string());
}

void TempFolder::write(const std::string& relative, std::string_view bytes) const
{
    const std::filesystem::path target = m_path / relative;
    std::filesystem::create_directories(target.parent_path());
    std::ofstream stream(target, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush()) {
        throw std::runtime_error("cannot write " + target.string());
    }
}

void TempFolder::writeGz(const std::string& relative, std::string_view bytes) const
{
    write(relative, gzipped(bytes));
}

std::string fileBytes(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::string gzipped(std::string_view bytes)
{
    z_stream stream = {};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, GZIP_WINDOW_BITS, MEMORY_LEVEL, Z_DEFAULT_STRATEGY) !=
        Z_OK) {
        throw std::runtime_error("cannot start gzip");
    }
    std::string result(deflateBound(&stream, bytes.size()), '\0');
    // zlib's interface lacks the const; the input is not written.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    const int outcome = deflate(&stream, Z_FINISH);
    result.resize(stream.total_out);
    deflateEnd(&stream);
    if (outcome != Z_STREAM_END) {
        throw std::runtime_error("gzip failed");
    }
    return result;
}
