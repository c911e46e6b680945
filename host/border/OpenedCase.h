// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"
#include "border/HostMetaData.h"
#include "border/HostNotifications.h"
#include "border/HostOptions.h"
#include "border/HostResult.h"
#include "border/PluginLibrary.h"

#include <cstdint>
#include <filesystem>
#include <memory>

/// One open case: a provider and what was got from it so far.
///
/// Keeps the interface's calling order by itself: what is asked for brings what must stand before it. Every call is
/// guarded and every delivery checked before it is handed on. All members throw `HostError` as `callLibrary` and the
/// checks do. One thread uses an object; the library must outlive it.
class OpenedCase
{
public:
    /// The path that a provider opens: a folder is completed by the name of its token file, and the result is absolute,
    /// because providers take the folder from the path.
    static std::filesystem::path tokenFile(const std::filesystem::path& casePath);

    /// Makes a provider and opens the case; `options` must live as long as the object.
    /// @throws HostError of `CaseRefused` when the provider does not take the path or cannot open the case
    OpenedCase(PluginLibrary& library, const std::filesystem::path& casePath, const HostOptions& options);

    /// Closes the case and gives the provider back; a fault is dropped, since a destructor cannot tell it.
    ~OpenedCase();

    OpenedCase(const OpenedCase&) = delete;
    OpenedCase& operator=(const OpenedCase&) = delete;

    /// The description of the case, asked for once.
    const HostMetaData& metaData();

    /// Nodes and elements of all groups, asked for once.
    const HostGeometry& geometry();

    /// One result of one state; null if the provider has none.
    std::unique_ptr<HostResult> result(const HostResultInfo& info, std::int32_t stateId);

    /// Appends what changed since the last poll.
    void poll(HostNotifications* notifications);

    /// For calls that the members above do not make.
    DDPDataProvider& provider() { return *m_provider; }

private:
    /// Runs the calls that lead to an open case; what it has made by a failure, `release` gives back.
    void open();
    void release();

    PluginLibrary& m_library;
    std::filesystem::path m_token;
    const HostOptions& m_options;
    DDPDataProvider* m_provider = nullptr;
    bool m_open = false;
    std::unique_ptr<HostMetaData> m_metaData;
    std::unique_ptr<HostGeometry> m_geometry;
};
