// SPDX-License-Identifier: MIT
#pragma once

#include "border/FoamNames.h"
#include "border/HostGeometry.h"
#include "border/HostMetaData.h"
#include "border/HostNotifications.h"
#include "border/HostOptions.h"
#include "border/HostResult.h"
#include "border/PluginLibrary.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

/// One open case: a provider and what it has delivered so far.
///
/// Keeps the calling order of the interface: each request first makes the requests that it depends on. Every call is
/// guarded, and every delivery is checked before it is handed on. All members throw `HostError` as `callLibrary` and
/// the checks do. One thread uses an object; the library must outlive it.
class OpenedCase
{
public:
    /// The path that a provider opens: the token file of the folder given, or of the folder of the .foam file given.
    /// The file need not exist. The result is absolute, because providers take the folder from the path.
    static std::filesystem::path tokenFile(const std::filesystem::path& casePath);

    /// Makes a provider and opens the case; `options` must live as long as the object.
    /// @throws HostError of `CaseRefused` when the provider does not accept the path or cannot open the case
    OpenedCase(PluginLibrary& library, const std::filesystem::path& casePath, const HostOptions& options);

    /// Closes the case and destroys the provider; a fault is ignored, since a destructor cannot report it.
    ~OpenedCase();

    OpenedCase(const OpenedCase&) = delete;
    OpenedCase& operator=(const OpenedCase&) = delete;

    /// The description of the case, requested once.
    const HostMetaData& metaData();

    /// The names of the case's fields and time folders, looked up once.
    const FoamNames& names();

    /// Nodes and elements of all groups, requested once.
    const HostGeometry& geometry();

    /// What of the geometry is left out because the interface cannot hold it, one line per group.
    const std::vector<std::string>& limits() const { return m_limits; }

    /// One result of one state; null if the provider has none.
    std::unique_ptr<HostResult> result(const HostResultInfo& info, std::int32_t stateId);

    /// Appends what changed since the last poll.
    void poll(HostNotifications* notifications);

    /// For calls that the members above do not cover.
    DDPDataProvider& provider() { return *m_provider; }

private:
    /// Makes the calls that lead to an open case. After a failure `release` undoes what was done.
    void open();
    void release();

    PluginLibrary& m_library;
    std::filesystem::path m_token;
    const HostOptions& m_options;
    DDPDataProvider* m_provider = nullptr;
    bool m_open = false;
    std::unique_ptr<HostMetaData> m_metaData;
    std::unique_ptr<FoamNames> m_names;
    std::unique_ptr<HostGeometry> m_geometry;
    std::vector<std::string> m_limits;
};
