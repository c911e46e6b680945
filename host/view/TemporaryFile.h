// SPDX-License-Identifier: MIT
#pragma once

#include "output/Interrupt.h"

#include <filesystem>

/// A name next to that of a file, for as long as the file is not whole.
///
/// What has the name is removed at the end, also after an interrupt.
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
