// SPDX-License-Identifier: MIT
#include "doctor/Examination.h"
#include "doctor/ListFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>

namespace {

constexpr std::array<const char*, 5> VALUE_FOLDERS = {"scalarField", "vectorField", "symmTensorField", "tensorField",
                                                      "sphericalTensorField"};

std::optional<std::size_t> countOf(const Examination& examination, const std::string& path)
{
    return readListHead(examination.folder.root() / path).count;
}

/// Values of as many faces as there are points count as those of points.
bool isOnFacesOf(const Examination& examination, const CaseSurface& surface, const std::string& file)
{
    const auto values = countOf(examination, file);
    return values && values == countOf(examination, surface.folder + "/faces") &&
           values != countOf(examination, surface.folder + "/points");
}

Cause hiddenValues(const Examination& examination, const CaseSurface& surface, const std::string& file)
{
    const auto points = countOf(examination, surface.folder + "/points");
    const auto faces = countOf(examination, surface.folder + "/faces");
    const auto values = countOf(examination, file);
    if (!values || *values == 0) {
        return {"surface-empty", "the surface has no values at some times", "", {file, 0}};
    }
    if (values != points && values != faces) {
        return {"surface-length",
                fmt::format("{} values fit neither the {} points nor the {} faces of the surface", *values,
                            points.value_or(0), faces.value_or(0)),
                "sample again",
                {file, 0}};
    }
    return {"surface-changes",
            "the surface has other points or faces than at its first time, which is shown",
            "sample a surface that does not change, such as a plane or a patch",
            {file, 0}};
}

Cause plainValues(const Examination& examination, const CaseSurface& surface, const std::string& file)
{
    if (!surface.isDefaultFunction) {
        return {"surface-function", "only surfaces of the function sampleSurface are read", "", {surface.folder, 0}};
    }
    if (!examination.plain.isOpen()) {
        return examination.plainRefusal;
    }
    const std::optional<double> time = timeOfName(surface.time);
    if (!time || !examination.plain.hasTime(*time)) {
        return {"processor-times", "times that only the processors have are not states", "", {surface.folder, 0}};
    }
    if (isOnFacesOf(examination, surface, file)) {
        return {"surface-faces", "values on the faces of surfaces are not read", "", {file, 0}};
    }
    if (!file.empty() && readListHead(examination.folder.root() / file).isOfEqualItems) {
        return {"surface-equal-items", "lists of equal items are not read for surfaces", "", {file, 0}};
    }
    return {"surface-first-time",
            "surfaces are those of the time that comes first as text",
            "",
            {file.empty() ? surface.folder : file, 0}};
}

void examineValues(Examination& examination, const CaseSurface& surface, const CaseTime& time)
{
    for (const char* const kind : VALUE_FOLDERS) {
        const std::string folder = surface.folder + "/" + kind;
        for (const std::string& field : examination.folder.filesIn(folder)) {
            const std::string file = folder + "/" + field;
            const bool isOnFaces = isOnFacesOf(examination, surface, file);
            const DeliveredResult plain = examination.plain.result(field, FieldPlace::SurfacePoints, time.value);
            const DeliveredResult extended = examination.extended.result(
                field, isOnFaces ? FieldPlace::SurfaceFaces : FieldPlace::SurfacePoints, time.value);
            const ArrayOutcome outcome = outcomeOf(examination, plain, extended, "", surface.group);
            judge(
                examination, outcome,
                {time.name, "", surface.group, field, wordOf(outcome.plain), wordOf(outcome.extended)},
                [&] { return hiddenValues(examination, surface, file); },
                [&] { return plainValues(examination, surface, file); });
        }
    }
}

/// The shapes of surfaces, each once.
void examineShape(Examination& examination, const CaseSurface& surface)
{
    const auto inPlain = examination.plain.group("", surface.group);
    const auto inExtended = examination.extended.group("", surface.group);
    const FindingPlace place = {surface.folder, 0};
    if (!inExtended || examination.extended.elements(*inExtended)->elementCount() == 0) {
        examination.report.findings.add(
            FindingKind::Hidden,
            {"surface", fmt::format("the surface {} is not shown", surface.group), "sample again", place});
    } else if (!inPlain && examination.plain.isOpen()) {
        examination.report.findings.add(FindingKind::Extended, plainValues(examination, surface, ""));
    } else if (inPlain && (examination.plain.elements(*inPlain)->connectivity !=
                           examination.extended.elements(*inExtended)->connectivity)) {
        examination.report.findings.add(FindingKind::Extended,
                                        {"surface-polygons",
                                         "faces of surfaces are taken for triangles whatever their number of nodes", "",
                                         place});
    }
}

} // namespace

void examineSurfaces(Examination& examination, const std::vector<CaseTime>& times)
{
    Findings& findings = examination.report.findings;
    std::set<std::string>& known = examination.report.forms.surfaces;
    for (const CaseSurface& surface : examination.folder.surfaces()) {
        if (known.insert(surface.group).second) {
            examineShape(examination, surface);
        }
        const auto isOfSurface = [&](const CaseTime& time) { return time.name == surface.time; };
        if (std::ranges::none_of(examination.folder.times(), isOfSurface)) {
            findings
                .add(FindingKind::Hidden,
                     {"surface-time",
                      "surfaces are sampled at times that have no time folder, so they are no states",
                      "write fields and surfaces at the same times (writeControl writeTime)",
                      {surface.folder, 0}})
                .times.insert(surface.time);
        }
        for (const CaseTime& time : times) {
            if (isOfSurface(time)) {
                examineValues(examination, surface, time);
            }
        }
    }
    for (const std::string& file : examination.folder.foreignSurfaces()) {
        findings.add(FindingKind::Hidden, {"surface-format",
                                           "surfaces in the format of another program are not read",
                                           "sample with surfaceFormat foam",
                                           {file, 0}});
    }
}
