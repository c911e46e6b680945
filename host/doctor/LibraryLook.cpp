// SPDX-License-Identifier: MIT
#include "doctor/LibraryLook.h"

#include <map>
#include <string_view>

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
            files.emplace(reinterpret_cast<const char*>(texts) + ownName, file);
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
        const auto* const texts = reinterpret_cast<const char*>(addressOf(map->l_ld, DT_STRTAB));
        for (const ElfW(Dyn)* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry) {
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
