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

/// How many items the files of some values have.
struct ValueCounts
{
    std::optional<std::size_t> values;
    std::optional<std::size_t> points;
    std::optional<std::size_t> faces;

    bool areOfFaces() const { return values && values == faces && values != points; }
    /// Such values count as those of points.
    bool areOfEither() const { return values && values == faces && values == points; }
};

ValueCounts countsOf(const Examination& examination, const CaseSurface& surface, const std::string& file)
{
    return {countOf(examination, file), countOf(examination, surface.folder + "/points"),
            countOf(examination, surface.folder + "/faces")};
}

Cause hiddenValues(const ValueCounts& counts, const std::string& file)
{
    const auto& [values, points, faces] = counts;
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
    if (countsOf(examination, surface, file).areOfFaces()) {
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
        const std::string folder = fmt::format("{}/{}", surface.folder, kind);
        for (const std::string& field : examination.folder.filesIn(folder)) {
            const std::string file = fmt::format("{}/{}", folder, field);
            const ValueCounts counts = countsOf(examination, surface, file);
            const DeliveredResult plain = examination.plain.result(field, FieldPlace::SurfacePoints, time.value);
            const DeliveredResult extended = examination.extended.result(
                field, counts.areOfFaces() ? FieldPlace::SurfaceFaces : FieldPlace::SurfacePoints, time.value);
            const ArrayOutcome outcome = outcomeOf(examination, plain, extended, "", surface.group);
            const FindingArray array = {
                time.name, "", surface.group, field, wordOf(outcome.plain), wordOf(outcome.extended)};
            judge(
                examination, outcome, array, [&] { return hiddenValues(counts, file); },
                [&] { return plainValues(examination, surface, file); });
            if (counts.areOfEither() && isShown(outcome.extended)) {
                examination.report.findings.add(
                    FindingKind::Hidden,
                    {"surface-either",
                     "the surface has as many points as faces: its values are shown at its points, and on its faces "
                     "they are undefined",
                     "sample it so that the numbers differ, if they are values of faces",
                     {file, 0}},
                    array);
            }
        }
    }
}

/// What is wrong with the files of a shape; none if all of it is shown.
std::optional<Cause> shapeCause(const Examination& examination, const CaseSurface& surface, std::size_t shown)
{
    const std::string points = surface.folder + "/points";
    const std::string faces = surface.folder + "/faces";
    const ListFile ofPoints = readListFile(examination.folder.root() / points, "vectorField");
    const ListFile ofFaces = readListFile(examination.folder.root() / faces, "faceList");
    for (const auto& [path, file] : {std::pair(points, &ofPoints), std::pair(faces, &ofFaces)}) {
        if (!file->fault.empty()) {
            return Cause{"surface-list", "the list " + file->fault, "sample again", {path, file->faultLine}};
        }
    }
    if (ofFaces.className != "faceList" || ofFaces.isOfEqualItems) {
        return std::nullopt;
    }
    // A face is written as the number of its points and its points; one of N points makes N - 2 triangles.
    const std::size_t triangles = ofFaces.words - std::min(ofFaces.words, 3 * ofFaces.count.value_or(0));
    if (triangles <= shown) {
        return std::nullopt;
    }
    return Cause{"surface-faces-lost",
                 fmt::format("of {} triangles {} are shown: faces name points that there are not", triangles, shown),
                 "sample again",
                 {faces, 0}};
}

/// The shapes of surfaces, each once.
void examineShape(Examination& examination, const CaseSurface& surface)
{
    const auto inPlain = examination.plain.group("", surface.group);
    const auto inExtended = examination.extended.group("", surface.group);
    const FindingPlace place = {surface.folder, 0};
    const std::size_t shown = inExtended ? examination.extended.elements(*inExtended)->elementCount() : 0;
    if (const auto cause = shapeCause(examination, surface, shown)) {
        examination.report.findings.add(FindingKind::Hidden, *cause);
    } else if (shown == 0) {
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
