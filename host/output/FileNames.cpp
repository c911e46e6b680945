// SPDX-License-Identifier: MIT
#include "output/FileNames.h"

#include "border/TextForms.h"

#include <fmt/format.h>

namespace {

// Leaves room for a number and the extension in the 255 bytes that file systems allow for a name.
constexpr std::size_t LONGEST_STEM = 200;

/// Not `std::isalnum`, which depends on the locale.
bool isLetterOrDigit(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// Byte by byte, so that the result is plain ASCII whatever the encoding of the name.
std::string sanitised(const std::string& name)
{
    std::string stem = name.substr(0, LONGEST_STEM);
    for (char& c : stem) {
        c = isLetterOrDigit(c) || c == '-' || c == '.' ? c : '_';
    }
    if (stem.empty() || stem.front() == '.') {
        stem.insert(stem.begin(), '_');
    }
    return stem;
}

} // namespace

std::string FileNames::unique(const std::string& groupName, const std::string& extension)
{
    const std::string stem = sanitised(groupName);
    std::string name = stem + extension;
    for (int number = 2; !m_taken.insert(lowerCase(name)).second; ++number) {
        name = fmt::format("{}_{}{}", stem, number, extension);
    }
    return name;
}
