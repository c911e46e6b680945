// SPDX-License-Identifier: MIT
#include "view/PageFile.h"

#include "border/HostError.h"
#include "view/PageSource.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <system_error>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

bool beginsWith(const fs::path& path, std::string_view mark)
{
    constexpr std::size_t HEAD = 200;
    std::ifstream stream(path, std::ios::binary);
    std::string head(HEAD, '\0');
    stream.read(head.data(), static_cast<std::streamsize>(head.size()));
    return head.find(mark) != std::string::npos;
}

fs::path temporaryOf(const fs::path& path)
{
    return path.parent_path() / fmt::format(".{}.{}.part", path.filename().string(), getpid());
}

void removeQuietly(const fs::path& path)
{
    std::error_code error;
    fs::remove(path, error);
}

} // namespace

fs::path outputTarget(const fs::path& path, const OutputForm& form, bool replace)
{
    std::error_code error;
    fs::path target = fs::weakly_canonical(path, error);
    if (error) {
        target = path;
    }
    if (const fs::path folder = fs::absolute(target).parent_path(); !fs::is_directory(folder, error)) {
        throw HostError(ExitCode::CannotWrite,
                        fmt::format("cannot write {}: there is no folder {}", path.string(), folder.string()));
    }
    const fs::file_status status = fs::symlink_status(target, error);
    if (!fs::exists(status)) {
        return target;
    }
    // A device would be replaced by the file that is moved to its name.
    if (!fs::is_regular_file(status)) {
        throw HostError(ExitCode::Usage, fmt::format("{} is not a file; name one for {}", path.string(), form.name));
    }
    if (!replace && !beginsWith(target, form.mark)) {
        throw HostError(ExitCode::Usage,
                        fmt::format("{} exists and is not {}; --overwrite replaces it", path.string(), form.name));
    }
    return target;
}

PageFile::PageFile(const fs::path& path, bool replace)
    : m_path(outputTarget(path, PAGE_FORM, replace)), m_temporary(temporaryOf(m_path)),
      m_onInterrupt([temporary = m_temporary] { removeQuietly(temporary); })
{
    m_file = std::make_unique<OutputFile>(m_temporary, true);
    try {
        m_file->write(PAGE_MARKUP);
    } catch (...) {
        removeQuietly(m_temporary);
        throw;
    }
}

PageFile::~PageFile()
{
    if (m_file != nullptr) {
        m_file.reset();
        removeQuietly(m_temporary);
    }
}

std::size_t PageFile::add(const PackedArray& array)
{
    const std::size_t number = m_forms.size();
    m_forms.push_back(array.form);
    m_file->write(fmt::format("<script type=\"text/plain\" id=\"b{}\">", number));
    m_file->write(array.text);
    m_file->write("</script>\n");
    return number;
}

void PageFile::finish(nlohmann::ordered_json description)
{
    description["blocks"] = m_forms;
    m_file->write("<script type=\"application/json\" id=\"case\">");
    m_file->write(embeddedJson(description));
    m_file->write("</script>\n<script>\n");
    m_file->write(PAGE_SCRIPT);
    m_file->write("</script>\n");
    m_file->write(PAGE_END);
    m_file->close();
    if (std::rename(m_temporary.c_str(), m_path.c_str()) != 0) {
        const int error = errno;
        throw HostError(ExitCode::CannotWrite,
                        fmt::format("cannot write {}: {}", m_path.string(), std::strerror(error)));
    }
    m_wholeBytes = m_file->byteCount();
    m_file.reset();
}

std::string embeddedJson(const nlohmann::ordered_json& document)
{
    const std::string text = document.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    std::string safe;
    safe.reserve(text.size());
    for (const char c : text) {
        if (c == '<') {
            safe += "\\u003c";
        } else {
            safe += c;
        }
    }
    return safe;
}
