// SPDX-License-Identifier: MIT
#include "support/TempFolder.h"

#include <zlib.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

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
    const TempFolder folder;
    const std::filesystem::path path = folder / "gz";
    gzFile const stream = gzopen(path.c_str(), "wb");
    const bool isWritten =
        gzwrite(stream, bytes.data(), static_cast<unsigned>(bytes.size())) == static_cast<int>(bytes.size());
    if (gzclose(stream) != Z_OK || !isWritten) {
        throw std::runtime_error("gzip failed");
    }
    return fileBytes(path);
}
