// SPDX-License-Identifier: MIT
#include "check/ExportedSymbols.h"

#include "border/HostError.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

#include <elf.h>

namespace {

/// The bytes of a file, with checked access by offsets that the file itself contains.
class ElfFile
{
public:
    explicit ElfFile(const std::filesystem::path& path) : m_path(path)
    {
        std::ifstream stream(path, std::ios::binary);
        m_bytes.assign(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
        const std::string magic(ELFMAG, SELFMAG);
        if (m_bytes.compare(0, magic.size(), magic) != 0 || m_bytes.size() <= EI_CLASS ||
            m_bytes[EI_CLASS] != ELFCLASS64) {
            refuse();
        }
    }

    /// A copy of the record at an offset, since records in a file need not be aligned.
    template <typename Record>
    Record at(std::uint64_t offset) const
    {
        Record record;
        if (offset > m_bytes.size() || m_bytes.size() - offset < sizeof(record)) {
            refuse();
        }
        std::memcpy(&record, m_bytes.data() + offset, sizeof(record));
        return record;
    }

    /// The zero-terminated text at an offset.
    std::string textAt(std::uint64_t offset) const
    {
        const std::size_t end = offset < m_bytes.size() ? m_bytes.find('\0', offset) : std::string::npos;
        if (end == std::string::npos) {
            refuse();
        }
        return m_bytes.substr(offset, end - offset);
    }

private:
    [[noreturn]] void refuse() const
    {
        throw HostError(ExitCode::LibraryRefused, m_path.string() + " is not a valid library file");
    }

    std::filesystem::path m_path;
    std::string m_bytes;
};

bool isOffered(const Elf64_Sym& symbol)
{
    const unsigned binding = ELF64_ST_BIND(symbol.st_info);
    const unsigned visibility = ELF64_ST_VISIBILITY(symbol.st_other);
    // The table lists the name of each symbol version as an absolute object, which nobody can use.
    return symbol.st_shndx != SHN_UNDEF && symbol.st_shndx != SHN_ABS && binding != STB_LOCAL &&
           (visibility == STV_DEFAULT || visibility == STV_PROTECTED);
}

} // namespace

std::vector<std::string> exportedSymbols(const std::filesystem::path& library)
{
    const ElfFile file(library);
    const auto header = file.at<Elf64_Ehdr>(0);
    const auto sectionAt = [&](std::uint64_t index) {
        return file.at<Elf64_Shdr>(header.e_shoff + index * sizeof(Elf64_Shdr));
    };
    std::vector<std::string> names;
    for (std::uint64_t section = 0; section < header.e_shnum; ++section) {
        const Elf64_Shdr table = sectionAt(section);
        if (table.sh_type != SHT_DYNSYM) {
            continue;
        }
        const Elf64_Shdr texts = sectionAt(table.sh_link);
        for (std::uint64_t offset = 0; offset + sizeof(Elf64_Sym) <= table.sh_size; offset += sizeof(Elf64_Sym)) {
            const auto symbol = file.at<Elf64_Sym>(table.sh_offset + offset);
            if (isOffered(symbol)) {
                names.push_back(file.textAt(texts.sh_offset + symbol.st_name));
            }
        }
    }
    std::ranges::sort(names);
    return names;
}
