// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

/// A file that is one list, such as `points`. Those of surfaces have no header.
struct ListFile
{
    bool isOpen = false;
    bool isGzip = false;
    std::string className; ///< of its header
    std::string format;
    std::string arch;
    std::string note;
    std::optional<std::size_t> count; ///< of items, as the file states it; none if there is no list
    bool isOfEqualItems = false;      ///< one item stands for all, as in "126{(0 0 0)}"
    std::string fault;                ///< why not all items can be read; empty if they can
    std::size_t faultLine = 0;        ///< 0 if it has none
    std::size_t longestItem = 0;      ///< the numbers in the longest bracket of text
    std::size_t words = 0;            ///< of the items of text

    bool isBinary() const { return format == "binary"; }
    /// True for raw values of another width or byte order than this machine's 32-bit labels and doubles.
    bool hasUnusualRawForm() const;
};

/// Reads the header and the count of a list file, or of its ".gz".
ListFile readListHead(const std::filesystem::path& path);

/// The same, and passes over the items to see whether they are there. Text is counted, of raw values only the bytes.
/// @param classWithoutHeader that of a file without a header
ListFile readListFile(const std::filesystem::path& path, const char* classWithoutHeader = "");

/// True if an entry `arch` says that raw values have another width or byte order than is usual.
bool isUnusualRawForm(const std::string& arch);
