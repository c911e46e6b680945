// SPDX-License-Identifier: MIT
#include "view/PageFile.h"

#include "border/HostError.h"
#include "view/PageSource.h"

#include <fmt/format.h>

#include <fstream>
#include <system_error>

namespace {

namespace fs = std::filesystem;

constexpr std::string_view SCRIPT_START = "<script>\n";
constexpr std::string_view SCRIPT_END = "</script>\n";

bool isOfForm(const fs::path& path, const OutputForm& form)
{
    std::ifstream stream(path, std::ios::binary);
    std::string head(form.headSize, '\0');
    stream.read(head.data(), static_cast<std::streamsize>(head.size()));
    return head.find(form.mark) != std::string::npos;
}

} // namespace

fs::path outputTarget(const fs::path& path, const OutputForm& form, bool replace)
{
    std::error_code error;
    fs::path target = fs::weakly_canonical(fs::absolute(path), error);
    if (error) {
        target = fs::absolute(path);
    }
    if (const fs::path folder = target.parent_path(); !fs::is_directory(folder, error)) {
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
    if (!replace && !isOfForm(target, form)) {
        throw HostError(ExitCode::Usage,
                        fmt::format("{} exists and is not {}; --overwrite replaces it", path.string(), form.name));
    }
    return target;
}

PageFile::PageFile(const fs::path& path, bool replace)
    : m_temporary(outputTarget(path, PAGE_FORM, replace)), m_file(m_temporary.path(), true),
      m_endBytes(SCRIPT_START.size() + PAGE_SCRIPT.size() + SCRIPT_END.size() + PAGE_END.size())
{
    m_file.write(PAGE_MARKUP);
}

std::size_t PageFile::add(const PackedArray& array)
{
    const std::size_t number = m_forms.size();
    m_forms.push_back(array.form);
    m_file.write(fmt::format("<script type=\"text/plain\" id=\"b{}\">", number));
    m_file.write(array.text);
    m_file.write(SCRIPT_END);
    return number;
}

void PageFile::describe(nlohmann::ordered_json description)
{
    description["blocks"] = m_forms;
    m_file.write("<script type=\"application/json\" id=\"case\">");
    m_file.write(embeddedJson(description));
    m_file.write(SCRIPT_END);
}

void PageFile::finish()
{
    m_endBytes = 0;
    for (const std::string_view text : {SCRIPT_START, PAGE_SCRIPT, SCRIPT_END, PAGE_END}) {
        m_file.write(text);
    }
    m_file.close();
    m_temporary.moveToTarget();
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
