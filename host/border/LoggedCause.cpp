// SPDX-License-Identifier: MIT
#include "border/LoggedCause.h"

#include <array>
#include <string_view>

namespace {

/// What precedes the path in the library's lines on files.
constexpr std::array<std::string_view, 2> PATH_MARKS = {" File basename is ", " File is "};

} // namespace

LoggedCause loggedCause(const std::string& line)
{
    const std::size_t source = line.find(" : ");
    const std::string text = source == std::string::npos ? line : line.substr(source + 3);
    for (const std::string_view form : PATH_MARKS) {
        if (const std::size_t mark = text.find(form); mark != std::string::npos) {
            std::string reason = text.substr(0, mark);
            reason.resize(reason.find_last_not_of(". ") + 1);
            return {text.substr(mark + form.size()), reason};
        }
    }
    return {"", text};
}
