// SPDX-License-Identifier: MIT
#include "doctor/LibraryLook.h"

#include "border/PluginLibrary.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <system_error>

#include <dlfcn.h>
#include <link.h>

namespace {

/// The entry of a dynamic section with this tag; 0 if there is none.
ElfW(Addr) addressOf(const ElfW(Dyn) * section, ElfW(Sxword) tag)
{
    for (; section->d_tag != DT_NULL; ++section) {
        if (section->d_tag == tag) {
            return section->d_un.d_ptr;
        }
    }
    return 0;
}

/// The names that a library's dynamic section refers to; null if it has none.
const char* textsOf(const link_map& library)
{
    // The loader gives addresses as numbers. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<const char*>(addressOf(library.l_ld, DT_STRTAB));
}

/// The files of all libraries in this process, by the name under which others ask for them.
std::map<std::string, std::string> loadedFiles(const link_map* any)
{
    while (any->l_prev != nullptr) {
        any = any->l_prev;
    }
    std::map<std::string, std::string> files;
    for (; any != nullptr; any = any->l_next) {
        const std::string_view file = any->l_name == nullptr ? "" : any->l_name;
        const ElfW(Addr) texts = addressOf(any->l_ld, DT_STRTAB);
        const ElfW(Addr) ownName = addressOf(any->l_ld, DT_SONAME);
        // The table of the kernel's own library is not an address in this process.
        if (texts > any->l_addr && ownName != 0 && file.starts_with('/')) {
            files.emplace(textsOf(*any) + ownName, file);
        }
    }
    return files;
}

} // namespace

std::vector<LinkedLibrary> linkedLibraries(const std::filesystem::path& file)
{
    std::vector<LinkedLibrary> linked;
    void* const handle = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_NOLOAD);
    const link_map* map = nullptr;
    if (handle == nullptr) {
        return linked;
    }
    if (dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0 && map != nullptr) {
        const std::map<std::string, std::string> files = loadedFiles(map);
        const char* const texts = textsOf(*map);
        for (const ElfW(Dyn)* entry = map->l_ld; texts != nullptr && entry->d_tag != DT_NULL; ++entry) {
            if (entry->d_tag == DT_NEEDED) {
                const std::string name = texts + entry->d_un.d_val;
                const auto found = files.find(name);
                linked.push_back({name, found == files.end() ? std::string() : found->second});
            }
        }
    }
    (void)dlclose(handle);
    return linked;
}

std::string helpForRefusal(const std::string& reason)
{
    struct Help
    {
        std::string_view reason; ///< part of what the loader or the host says
        const char* help;
    };
    // The last rows are more general than those before them.
    static constexpr std::array<Help, 9> HELPS = {{
        {"next to the program", "build or install it, or name its file"},
        {"version `", "build it on this system: it was built on a newer one"},
        {"undefined symbol", "build it again with the libraries of this system"},
        {"invalid ELF header", "name a shared library: this file is not one, or was cut off"},
        {"file too short", "name a shared library: this file is not one, or was cut off"},
        {"wrong ELF class", "build it for this machine: it is for another one"},
        {"cannot dynamically load", "name a shared library: this file is a program"},
        {"cannot open shared object file", "check that the file named is there and can be read; the folder of a "
                                           "library that it needs can be named in LD_LIBRARY_PATH"},
        {"", "name the file of this plug-in with --plugin or DDP_PLUGIN"},
    }};
    return std::ranges::find_if(HELPS, [&](const Help& one) { return reason.find(one.reason) != std::string::npos; })
        ->help;
}

std::vector<std::pair<std::string, std::string>> searchedPlaces(const std::string& given)
{
    const auto stateOf = [](const std::filesystem::path& file) -> std::string {
        std::error_code error;
        const std::filesystem::file_status status = std::filesystem::status(file, error);
        return std::filesystem::is_regular_file(status) ? "there"
               : std::filesystem::exists(status)        ? "not a file"
                                                        : "no such file";
    };
    const std::string named = PluginLibrary::namedFile(given);
    std::vector<std::pair<std::string, std::string>> places;
    places.emplace_back("--plugin", given.empty() ? "not given" : given + ", " + stateOf(given));
    if (given.empty()) {
        places.emplace_back("DDP_PLUGIN", named.empty() ? "not set" : named + ", " + stateOf(named));
    }
    if (named.empty()) {
        for (const std::filesystem::path& file : PluginLibrary::searchedFiles()) {
            places.emplace_back(file.string(), stateOf(file));
        }
    }
    return places;
}
