// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"
#include "border/HostMetaData.h"
#include "border/HostNotifications.h"
#include "border/HostOptions.h"
#include "border/HostResult.h"
#include "provider/OpenFoamProvider.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

/// A provider in this process and what a host has got of it. Faults that it committed at the host's objects fail the
/// test in the end.
class OpenCase
{
public:
    /// Opens a case with the settings that differ from their defaults.
    explicit OpenCase(const std::filesystem::path& folder, const HostOptions& settings = {});
    ~OpenCase();
    OpenCase(const OpenCase&) = delete;
    OpenCase& operator=(const OpenCase&) = delete;

    /// Asks for the description anew.
    HostMetaData& metaData();
    /// Asks for the geometry; description first.
    HostGeometry& geometry();
    /// The groups of the result of this key in this state; null if the provider refuses.
    std::unique_ptr<HostResult> result(const std::string& key, int stateId);
    /// The values of all groups of a result, part and patches and surfaces in their order.
    std::vector<std::vector<double>> values(const std::string& key, int stateId);
    /// The notices of one poll as text, as in "add 1004 Time 3.00000 #3".
    std::vector<std::string> poll();
    int resultId(const std::string& key) const;

    OpenFoamProvider provider;
    bool isOpen;

private:
    std::unique_ptr<HostMetaData> m_metaData;
    std::unique_ptr<HostGeometry> m_geometry;
};

/// A case that is part of the tests.
std::filesystem::path dataCase(const std::string& name);
