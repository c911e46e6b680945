// SPDX-License-Identifier: MIT
#pragma once

#include "output/OutputFile.h"
#include "view/PackedArray.h"
#include "view/TemporaryFile.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// A kind of file that may be replaced by another of its kind without asking, because it can be made again.
struct OutputForm
{
    const char* name;      ///< with its article
    std::string_view mark; ///< what such files have among their first bytes
    std::size_t headSize;  ///< how many bytes these are; as many as the mark has if files begin with it
};

inline constexpr OutputForm PAGE_FORM = {"a page of ddphost", "content=\"ddphost view\"", 200};
inline constexpr OutputForm PICTURE_FORM = {"a PNG picture", "\x89PNG", 4};

/// The file that a path stands for, absolute and through links, so that a link stays one.
/// @param replace also a file of another form may be replaced; never anything but a file
/// @throws HostError of `Usage` if the name is taken by something else, of `CannotWrite` if its folder is missing
std::filesystem::path outputTarget(const std::filesystem::path& path, const OutputForm& form, bool replace);

/// A page that grows block by block next to its final name, and gets that name when it is whole.
///
/// The temporary file is removed if the page is not finished, also after an interrupt.
class PageFile
{
public:
    /// Starts the page with all that is the same in each.
    /// @throws HostError as `outputTarget`, and of `CannotWrite`
    PageFile(const std::filesystem::path& path, bool replace);

    /// Appends an array.
    /// @return the number by which the description refers to it
    std::size_t add(const PackedArray& array);

    /// Appends the description of the case, which may hold any text, after all arrays.
    /// @param description `blocks` is added to it
    void describe(nlohmann::ordered_json description);

    /// Ends the page and moves it to its name.
    void finish();

    /// Bytes of the page if it ends here.
    std::uint64_t byteCount() const { return m_file.byteCount() + m_endBytes; }

private:
    TemporaryFile m_temporary;
    OutputFile m_file;
    std::vector<nlohmann::ordered_json> m_forms;
    std::uint64_t m_endBytes; ///< of what `finish` has yet to write
};

/// A JSON document as text that an HTML parser cannot take for markup. Bytes that are not UTF-8 are replaced.
std::string embeddedJson(const nlohmann::ordered_json& document);
