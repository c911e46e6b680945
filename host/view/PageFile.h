// SPDX-License-Identifier: MIT
#pragma once

#include "output/Interrupt.h"
#include "output/OutputFile.h"
#include "view/PackedArray.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

/// A page that grows block by block next to its final name, and gets that name when it is whole.
///
/// The temporary file is removed if the page is not finished, also after an interrupt.
class PageFile
{
public:
    /// Starts the page with all that is the same in each.
    /// @param replace also replace a file that is not a page; without, only a page is replaced. Never anything but a
    /// file
    /// @throws HostError of `Usage` if the name is taken, or of `CannotWrite`
    PageFile(const std::filesystem::path& path, bool replace);
    ~PageFile();

    PageFile(const PageFile&) = delete;
    PageFile& operator=(const PageFile&) = delete;

    /// Appends an array.
    /// @return the number by which the description refers to it
    std::size_t add(const PackedArray& array);

    /// Writes the description of the case, which may hold any text, and the scripts, and moves the page to its name.
    /// @param description `blocks` is added to it
    void finish(nlohmann::ordered_json description);

    /// Bytes so far.
    std::uint64_t byteCount() const { return m_file == nullptr ? m_wholeBytes : m_file->byteCount(); }

private:
    std::filesystem::path m_path;
    std::filesystem::path m_temporary;
    OnInterrupt m_onInterrupt;
    std::unique_ptr<OutputFile> m_file;
    std::vector<nlohmann::ordered_json> m_forms;
    std::uint64_t m_wholeBytes = 0; ///< of the finished page
};

/// A JSON document as text that an HTML parser cannot take for markup. Bytes that are not UTF-8 are replaced.
std::string embeddedJson(const nlohmann::ordered_json& document);
