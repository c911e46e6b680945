// SPDX-License-Identifier: MIT
#pragma once

#include "output/Interrupt.h"

#include <filesystem>

/// The name under which a file is written, next to its final one, until it is whole.
///
/// A file that still has this name at the end is removed, also after an interrupt.
class TemporaryFile
{
public:
    /// Chooses the name; the file is the caller's to write.
    explicit TemporaryFile(const std::filesystem::path& target);
    ~TemporaryFile();

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path& path() const { return m_path; }

    /// Moves the whole file to the name of the target, over a file that has it.
    /// @throws HostError of `CannotWrite`
    void moveToTarget() const;

private:
    std::filesystem::path m_target;
    std::filesystem::path m_path;
    OnInterrupt m_onInterrupt;
};
