// SPDX-License-Identifier: MIT
#include "output/OutputFile.h"

#include "border/HostError.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <system_error>

OutputFile::OutputFile(const std::filesystem::path& path, bool overwrite)
    : m_path(path), m_file(std::fopen(path.c_str(), overwrite ? "wbe" : "wbxe"))
{
    if (m_file == nullptr) {
        fail();
    }
}

OutputFile::~OutputFile()
{
    if (m_file != nullptr) {
        static_cast<void>(std::fclose(m_file));
    }
}

void OutputFile::write(const void* bytes, std::size_t count)
{
    if (count != 0 && std::fwrite(bytes, 1, count, m_file) != count) {
        fail();
    }
    m_byteCount += count;
}

void OutputFile::close()
{
    std::FILE* const file = m_file;
    m_file = nullptr;
    if (std::fclose(file) != 0) {
        fail();
    }
}

void OutputFile::fail() const
{
    const int error = errno;
    throw HostError(ExitCode::CannotWrite, fmt::format("cannot write {}: {}", m_path.string(), std::strerror(error)));
}

void makeFolder(const std::filesystem::path& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw HostError(ExitCode::CannotWrite,
                        fmt::format("cannot create the folder {}: {}", folder.string(), error.message()));
    }
}

void removeQuietly(const std::filesystem::path& path)
{
    std::error_code error;
    std::filesystem::remove_all(path, error);
}
