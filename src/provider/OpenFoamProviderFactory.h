// SPDX-License-Identifier: MIT
#pragma once

#include "interface/DataProviderInterface.h"

/// Answers a host's questions about the reader before a case is open, and makes the providers. Holds no data.
class OpenFoamProviderFactory final : public DDPDataProviderFactory
{
public:
    /// Declares the display name, the file mask and the user settings; always true.
    bool getProviderInfo(DDPDataProviderInfo* info) override;

    /// True if the last component of the path is "case.foam" in any case, "/" and "\" being separators.
    /// Does not access the file system.
    bool isSupportedByProvider(const DDPString& path) override;

    /// A new provider, owned by the host until it passes it to `destroyProviderInstance`.
    DDPDataProvider* createProviderInstance() override;
    /// Destroys a provider; null is ignored.
    void destroyProviderInstance(DDPDataProvider* provider) override;

    /// The one file name that the provider opens.
    DDPString getProviderFileMask() const;
};
