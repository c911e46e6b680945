// SPDX-License-Identifier: MIT
#include "view/ScratchFolder.h"

#include "border/HostError.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>

#include <stdlib.h>

namespace {

namespace fs = std::filesystem;

fs::path makeFolder()
{
    std::string name = (fs::temp_directory_path() / "ddphost-view-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        const int error = errno;
        throw HostError(ExitCode::CannotWrite,
                        fmt::format("cannot create the folder {}: {}", name, std::strerror(error)));
    }
    return name;
}

void removeQuietly(const fs::path& path)
{
    std::error_code error;
    fs::remove_all(path, error);
}

} // namespace

ScratchFolder::ScratchFolder() : m_path(makeFolder()), m_onInterrupt([path = m_path] { removeQuietly(path); }) {}

ScratchFolder::~ScratchFolder()
{
    removeQuietly(m_path);
}
