// SPDX-License-Identifier: MIT
#include "casemodel/SampledSurfaceFields.h"

#include "foamfile/ListItems.h"
#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"
#include "foamfile/SurfaceValues.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <utility>

namespace {

/// The values of one sub-folder of a surface.
struct FieldKind
{
    const char* folder;
    OFResultType type;
    ListItems items;
};

constexpr std::array<FieldKind, 5> FIELD_KINDS = {
    {{"/scalarField", OFResultScalar, ListItems::scalars()},
     {"/vectorField", OFResultVector, ListItems::vectors()},
     {"/symmTensorField", OFResultTensor, ListItems::symmTensors()},
     {"/tensorField", OFResultTensor, ListItems::tensors()},
     {"/sphericalTensorField", OFResultTensor, ListItems::sphericalTensors()}}};

struct SurfaceCounts
{
    std::size_t points = 0;
    std::size_t faces = 0;

    bool operator==(const SurfaceCounts&) const = default;
};

/// Reads the counts of a surface at some time; false if it was not written then.
bool readCounts(const dvn::Str& folder, SurfaceCounts* counts)
{
    const std::optional<std::size_t> points = SurfaceValues::countItems(folder + "/points");
    const std::optional<std::size_t> faces = points ? SurfaceValues::countItems(folder + "/faces") : std::nullopt;
    *counts = {points.value_or(0), faces.value_or(0)};
    return faces.has_value();
}

/// Where the values of a file are; none if it does not fit the surface. A surface that is empty has no values.
std::optional<OFResultMapping> mappingOf(const dvn::Str& file, const SurfaceCounts& counts)
{
    const std::optional<std::size_t> count = SurfaceValues::countItems(file);
    if (!count || *count == 0) {
        return std::nullopt;
    }
    if (*count == counts.points) {
        return OFResultOnNode;
    }
    return *count == counts.faces ? std::optional(OFResultOnCell) : std::nullopt;
}

/// The names of the files of fields in a folder.
std::set<dvn::Str> fieldNamesIn(const dvn::Str& folder)
{
    std::set<dvn::Str> names;
    for (const dvn::Str& file : OFUtilities::filesInFolder(folder)) {
        const dvn::Str name = OFUtilities::fileNameWithoutGz(file);
        if (!OFUtilities::isSetAside(name)) {
            names.insert(name);
        }
    }
    return names;
}

/// The values of faces, copied to the elements that these were split into.
std::vector<double> valuesOfElements(const std::vector<double>& faceValues, const std::vector<int>& faceOfElement,
                                     std::size_t width)
{
    std::vector<double> values(faceOfElement.size() * width);
    auto next = values.begin();
    for (const int face : faceOfElement) {
        next = std::copy_n(faceValues.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(face) * width),
                           width, next);
    }
    return values;
}

bool hasCounts(const OFSampledSurface& surface, const SurfaceCounts& counts, const dvn::Str& folder)
{
    if (counts == SurfaceCounts{surface.nodeCount(), surface.faceCount()}) {
        return true;
    }
    OFLogger::get().logInfo("SampledSurface",
                            dvn::Str("The surface in %1 has other points or faces than that in %2, which is shown. Its "
                                     "values are undefined.")
                                .arg(folder)
                                .arg(surface.folder()));
    return false;
}

} // namespace

std::vector<SampledField> sampledFieldsIn(const dvn::Str& folder)
{
    SurfaceCounts counts;
    const bool isThere = readCounts(folder, &counts);
    std::vector<SampledField> fields;
    if (!isThere) {
        return fields;
    }
    for (const FieldKind& kind : FIELD_KINDS) {
        for (const dvn::Str& name : fieldNamesIn(folder + kind.folder)) {
            if (const auto mapping = mappingOf(folder + kind.folder + "/" + name, counts)) {
                fields.push_back({name, kind.type, *mapping});
            }
        }
    }
    return fields;
}

void readSampledField(const OFSampledSurface& surface, const dvn::Str& folder, const OFResult& result,
                      std::vector<double>* values)
{
    const bool isOnNodes = result.mapping() == OFResultOnNode;
    // The geometry may not have been read, or not be readable.
    SurfaceCounts counts;
    const bool isThere = !values->empty() && readCounts(folder, &counts);
    for (const FieldKind& kind : FIELD_KINDS) {
        const dvn::Str file = folder + kind.folder + "/" + result.nativeName();
        if (!isThere || kind.type != result.type() || mappingOf(file, counts) != result.mapping()) {
            continue;
        }
        std::vector<double> read;
        // guard: sampled-counts
        if (!hasCounts(surface, counts, folder) ||
            !SurfaceValues::read(file, kind.items, isOnNodes ? counts.points : counts.faces, &read)) {
            return;
        }
        *values = isOnNodes
                      ? std::move(read)
                      : valuesOfElements(read, surface.faceOfElement(), static_cast<std::size_t>(result.dimension()));
        return;
    }
}
