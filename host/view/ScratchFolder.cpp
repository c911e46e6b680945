// SPDX-License-Identifier: MIT
#include "view/ScratchFolder.h"

#include "border/HostError.h"
#include "output/OutputFile.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <string>

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

} // namespace

ScratchFolder::ScratchFolder() : m_path(makeFolder()), m_onInterrupt([path = m_path] { removeQuietly(path); }) {}

ScratchFolder::~ScratchFolder()
{
    removeQuietly(m_path);
}
