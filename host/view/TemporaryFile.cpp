// SPDX-License-Identifier: MIT
#include "view/TemporaryFile.h"

#include "border/HostError.h"
#include "output/OutputFile.h"

#include <fmt/format.h>

#include <system_error>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// A short name, since that of the target may be as long as names can be. Programs in two containers may have the same
/// process id, but hardly write the same file.
fs::path temporaryOf(const fs::path& target)
{
    return target.parent_path() / fmt::format(".ddphost-{}-{:x}.part", getpid(), fs::hash_value(target));
}

} // namespace

TemporaryFile::TemporaryFile(const fs::path& target)
    : m_target(target), m_path(temporaryOf(target)), m_onInterrupt([path = m_path] { removeQuietly(path); })
{}

TemporaryFile::~TemporaryFile()
{
    removeQuietly(m_path);
}

void TemporaryFile::moveToTarget() const
{
    std::error_code error;
    fs::rename(m_path, m_target, error);
    if (error) {
        throw HostError(ExitCode::CannotWrite, fmt::format("cannot write {}: {}", m_target.string(), error.message()));
    }
}
