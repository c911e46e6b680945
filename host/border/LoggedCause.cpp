// SPDX-License-Identifier: MIT
#include "border/LoggedCause.h"

#include <string_view>

namespace {

/// What precedes the path in the library's lines on files.
constexpr std::string_view PATH_MARK = " File basename is ";

} // namespace

LoggedCause loggedCause(const std::string& line)
{
    const std::size_t source = line.find(" : ");
    const std::string text = source == std::string::npos ? line : line.substr(source + 3);
    const std::size_t mark = text.find(PATH_MARK);
    if (mark == std::string::npos) {
        return {"", text};
    }
    std::string reason = text.substr(0, mark);
    reason.resize(reason.find_last_not_of(". ") + 1);
    return {text.substr(mark + PATH_MARK.size()), reason};
}
