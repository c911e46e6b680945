// SPDX-License-Identifier: MIT
#include "doctor/Wording.h"

#include <charconv>

std::string wording::fileName(std::string_view path)
{
    return std::string(path.substr(path.rfind('/') + 1));
}

std::string wording::firstWordOf(std::string_view text)
{
    return std::string(text.substr(0, text.find_first_of(" \t\r\n{(\"")));
}

std::string wording::pathIn(const std::filesystem::path& folder, const std::string& path)
{
    const std::string prefix = folder.string() + "/";
    return path.starts_with(prefix) ? path.substr(prefix.size()) : path;
}

Cause wording::causeOfProblem(const std::string& problem, const std::filesystem::path& root, const std::string& file)
{
    constexpr std::string_view MARK = ", line ";
    Cause cause = {"unreadable-text", problem, "correct the file, or write the time again", {file, 0}};
    const std::size_t mark = problem.find(MARK);
    const std::size_t colon = mark == std::string::npos ? mark : problem.find(": ", mark);
    if (colon == std::string::npos) {
        return cause;
    }
    cause.place.file = pathIn(root, problem.substr(0, mark));
    const std::string_view number = std::string_view(problem).substr(mark + MARK.size(), colon - mark - MARK.size());
    (void)std::from_chars(number.data(), number.data() + number.size(), cause.place.line);
    cause.reason = "the file cannot be read on: " + problem.substr(colon + 2);
    return cause;
}
