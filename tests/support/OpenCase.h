// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"
#include "border/HostMetaData.h"
#include "border/HostNotifications.h"
#include "border/HostOptions.h"
#include "border/HostResult.h"
#include "provider/OpenFoamProvider.h"
#include "support/CaseFiles.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

/// Settings that differ from their defaults.
HostOptions settings(const std::vector<std::pair<std::string, bool>>& switches);

/// A provider in this process and what a host received from it, each requested once and in the interface's order.
/// Misuse of the host's objects by the provider fails the test when this is destroyed.
class OpenCase
{
public:
    explicit OpenCase(const std::filesystem::path& folder, const HostOptions& options = {});
    ~OpenCase();
    OpenCase(const OpenCase&) = delete;
    OpenCase& operator=(const OpenCase&) = delete;

    const HostMetaData& metaData();
    const HostGeometry& geometry();
    /// Id, name, parent and type of each group in order of declaration, as in "2 inlet < 1 patch, 3 ...".
    std::string groups();
    /// Id and name of each state, as in "1 Time 0.00000 #0, 2 ...".
    std::string states();
    /// Id, name, key, the codes of kind, mapping and displacement, and unit of each result.
    std::string results();
    /// The result of this key in this state; null if the provider refuses.
    std::unique_ptr<HostResult> result(const std::string& key, int stateId);
    /// The values of all groups of a result, or none if the provider refuses.
    std::vector<std::vector<double>> values(const std::string& key, int stateId);
    /// The notices of one poll as text, as in "add 1004 Time 3.00000 #3".
    std::string poll();

    OpenFoamProvider provider;

private:
    std::unique_ptr<HostMetaData> m_metaData;
    std::unique_ptr<HostGeometry> m_geometry;
};

/// The folder of a case in tests/data.
std::filesystem::path dataCase(const std::string& name);
