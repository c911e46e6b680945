// SPDX-License-Identifier: MIT
#pragma once

#include "output/Interrupt.h"

#include <filesystem>

/// A new folder among the temporary files of the machine, for the user only.
///
/// It is removed with all its files at the end, also after an interrupt.
class ScratchFolder
{
public:
    /// @throws HostError of `CannotWrite`
    ScratchFolder();
    ~ScratchFolder();

    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
    OnInterrupt m_onInterrupt;
};
