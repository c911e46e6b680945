// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"

#include <mutex>

/// A folder that several workers may set at the same time; the last one wins.
///
/// It holds the only lock in the plug-in's logic: which worker comes last does not matter, but two of them writing the
/// text at the same time would damage it. It is set once per mesh, so the lock costs nothing.
class SharedFolder
{
public:
    void set(const dvn::Str& folder)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_folder = folder;
    }

    dvn::Str get() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_folder;
    }

private:
    mutable std::mutex m_mutex;
    dvn::Str m_folder;
};
