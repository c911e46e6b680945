// SPDX-License-Identifier: MIT
#include "casemodel/SampledSurfaceFolders.h"

#include "foamfile/OFUtilities.h"

#include <algorithm>
#include <map>

namespace {

/// Sub-folders in order, through links; those read so far if the folder cannot be listed.
std::vector<dvn::Str> foldersIn(const dvn::Str& folder)
{
    std::vector<dvn::Str> names;
    (void)OFUtilities::listFoldersThroughLinks(folder, &names);
    return names;
}

/// Adds the surfaces of the function "sampleSurface" or "NAME/REGION".
/// @param times the function's time folders, the earliest first
void addSurfacesOf(const dvn::Str& function, const dvn::Str& root, const std::vector<dvn::Str>& times,
                   std::vector<OFSampledSurface>* surfaces)
{
    std::map<dvn::Str, dvn::Str> folderOfSurface;
    for (const dvn::Str& time : times) {
        const dvn::Str timeFolder = root + "/" + time;
        for (const dvn::Str& name : foldersIn(timeFolder)) {
            const dvn::Str folder = timeFolder + "/" + name;
            if (!folderOfSurface.contains(name) && OFUtilities::isRegularFileOrGz(folder + "/points") &&
                OFUtilities::isRegularFileOrGz(folder + "/faces")) {
                folderOfSurface.emplace(name, folder);
            }
        }
    }
    for (const auto& [name, folder] : folderOfSurface) {
        surfaces->emplace_back(static_cast<int>(surfaces->size()) + 1, function, name, folder);
    }
}

/// Sorts out the sub-folders of a function. Returns those that are times, the earliest first, and leaves the others.
std::vector<dvn::Str> takeTimes(std::vector<dvn::Str>* folders)
{
    const auto firstTime = std::stable_partition(folders->begin(), folders->end(),
                                                 [](const dvn::Str& name) { return !OFUtilities::isTimeName(name); });
    std::vector<dvn::Str> times(firstTime, folders->end());
    folders->erase(firstTime, folders->end());
    std::ranges::stable_sort(times, {}, [](const dvn::Str& name) { return name.toDouble(); });
    return times;
}

} // namespace

dvn::Str postProcessingFolder(const dvn::Str& casePath)
{
    return casePath + "/postProcessing";
}

dvn::Str sampledSurfaceRoot(const dvn::Str& casePath)
{
    return postProcessingFolder(casePath) + "/" + DEFAULT_SURFACE_FUNCTION;
}

dvn::Str sampledFieldFolder(OFResultType type)
{
    switch (type) {
    case OFResultScalar:
        return "/scalarField";
    case OFResultVector:
        return "/vectorField";
    case OFResultTensor:
        return "/tensorField";
    default:
        return dvn::Str();
    }
}

std::vector<OFSampledSurface> findSampledSurfaces(const dvn::Str& casePath)
{
    const dvn::Str root = postProcessingFolder(casePath);
    std::vector<OFSampledSurface> surfaces;
    for (const dvn::Str& function : foldersIn(root)) {
        std::vector<dvn::Str> folders = foldersIn(root + "/" + function);
        addSurfacesOf(function, root + "/" + function, takeTimes(&folders), &surfaces);
        for (const dvn::Str& region : folders) {
            const dvn::Str regionFunction = function + "/" + region;
            std::vector<dvn::Str> regionFolders = foldersIn(root + "/" + regionFunction);
            addSurfacesOf(regionFunction, root + "/" + regionFunction, takeTimes(&regionFolders), &surfaces);
        }
    }
    return surfaces;
}
