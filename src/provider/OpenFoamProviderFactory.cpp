// SPDX-License-Identifier: MIT
#include "provider/OpenFoamProviderFactory.h"

#include "DvnCore/Str.h"
#include "provider/OFInitOptions.h"
#include "provider/OpenFoamProvider.h"
#include "provider/PluginIdentity.h"

#include <vector>

bool OpenFoamProviderFactory::getProviderInfo(DDPDataProviderInfo* info)
{
    info->setProviderName(DDPString::fromChar(PROVIDER_DISPLAY_NAME));
    info->setProviderFileMask(getProviderFileMask());
    // Compatibility (docs/compatibility.md, "setting order").
    for (const OFInitOption* const option :
         {&OF_LOAD_BOUNDARY_PARTS, &OF_LOAD_CELL_ZONES, &OF_LOAD_FACE_ZONES, &OF_LOAD_GLOBAL_MESH,
          &OF_LOAD_LOCAL_MESHES, &OF_NODE_AVG_RESULTS, &OF_HIDE_PARALLEL_INTERFACES}) {
        info->addBoolOption(option->key, option->label, option->defaultValue);
    }
    info->addStringOption(OF_RESULTS_NAMES_MAPPING.key, OF_RESULTS_NAMES_MAPPING.label,
                          OF_RESULTS_NAMES_MAPPING.defaultValue);
    return true;
}

bool OpenFoamProviderFactory::isSupportedByProvider(const DDPString& path)
{
    dvn::Str text(path.c_str());
    text.replace("\\", "/");
    const std::vector<dvn::Str> components = text.split("/");
    return !components.empty() && components.back().toLower() == dvn::Str(getProviderFileMask().c_str());
}

DDPDataProvider* OpenFoamProviderFactory::createProviderInstance()
{
    return new OpenFoamProvider;
}

void OpenFoamProviderFactory::destroyProviderInstance(DDPDataProvider* provider)
{
    delete provider;
}

DDPString OpenFoamProviderFactory::getProviderFileMask() const
{
    return DDPString::fromChar(PROVIDER_FILE_MASK);
}
