// SPDX-License-Identifier: MIT
#include "doctor/Examination.h"
#include "doctor/Wording.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>

namespace {

/// The fields of all meshes at one time, by name.
using FieldsByName = std::map<std::string, std::vector<ExpectedField>>;

/// A class of fields that the host's model has no place for; null for classes that are not fields of a mesh.
const char* whyNoPlace(std::string_view className)
{
    if (className.find("Field") == std::string_view::npos || className.starts_with("uniformDimensioned")) {
        return nullptr;
    }
    if (className.starts_with("surface")) {
        return "are values on faces, for which hosts have no place";
    }
    return className.starts_with("area") || className.starts_with("edge") ? "belong to finite-area meshes, which are "
                                                                            "not read"
                                                                          : "are of a class that is not read";
}

void tellOmitted(Examination& examination, const std::string& className, const std::string& path,
                 const std::string& field, const std::string& time)
{
    if (const char* const reason = whyNoPlace(className)) {
        Finding& finding = examination.report.findings.add(
            FindingKind::Hidden, {"no-place", fmt::format("fields of class {} {}", className, reason), "", {path, 0}});
        finding.fields.insert(field);
        finding.times.insert(time);
    }
}

/// Adds the fields of a mesh at a time. What cannot be told from its header is no field.
void collectFields(Examination& examination, const CaseMesh& mesh, const CaseTime& time, FieldsByName* fields)
{
    const CaseFolder& folder = examination.folder;
    std::set<std::string> seen;
    for (const std::string& place : folder.fieldFolders(mesh, time.name)) {
        for (const std::string& name : folder.filesIn(place)) {
            const std::string path = fmt::format("{}/{}", place, name);
            if (!seen.insert(name).second) {
                continue;
            }
            const CaseFile head = readCaseFile(folder.root() / path, folder.root(), true);
            const std::string className = head.header("class");
            if (const auto kind = fieldClassOf(className)) {
                examination.report.forms.count(head.isGzip, head.header("format") == "binary", head.header("arch"));
                (*fields)[name].push_back({&mesh, path, *kind});
            } else if (!head.isOpen || head.isBroken) {
                examination.report.findings.add(
                    FindingKind::Hidden, {"unreadable",
                                          head.isOpen ? "the compressed file is damaged" : "the file cannot be opened",
                                          "check its permissions, or write the time again",
                                          {path, 0}});
            } else {
                tellOmitted(examination, className, path, name, time.name);
            }
        }
    }
}

/// One field at one time, with what both ways of reading deliver of it.
class FieldComparison
{
public:
    FieldComparison(Examination& examination, const CaseTime& time, std::string name, FieldPlace place)
        : m_examination(examination), m_time(time), m_name(std::move(name)),
          m_plain(examination.plain.result(m_name, place, time.value)),
          m_extended(examination.extended.result(m_name, place, time.value)), m_place(place)
    {}

    /// Compares the field of one mesh.
    /// @return true if all arrays of it show in both ways
    bool compare(const ExpectedField& field)
    {
        std::unique_ptr<FieldCauses> causes;
        const auto causesOf = [&]() -> const FieldCauses& {
            if (causes == nullptr) {
                causes = std::make_unique<FieldCauses>(m_examination.folder, *field.mesh, field.file, field.kind);
            }
            return *causes;
        };
        const ArrayOutcome interior = outcomeOf(m_examination, m_plain, m_extended, field.mesh->part, "");
        const auto interiorHidden = [&] { return hiddenCause(causesOf(), field, nullptr); };
        const auto interiorPlain = [&] { return plainCause(interior.plain, causesOf(), field, nullptr); };
        judge(m_examination, interior, arrayOf(field, "", interior), interiorHidden, interiorPlain);
        bool isWhole = interior.isWhole();
        for (const CasePatch& patch : field.mesh->patches) {
            if (!hasValues(field, patch)) {
                continue;
            }
            const ArrayOutcome outcome = outcomeOf(m_examination, m_plain, m_extended, field.mesh->part, patch.name);
            isWhole = isWhole && outcome.isWhole();
            judge(
                m_examination, outcome, arrayOf(field, patch.name, outcome),
                // Without the interior there are no patches, so there is one finding for all.
                [&] { return isShown(interior.extended) ? hiddenCause(causesOf(), field, &patch) : interiorHidden(); },
                [&] {
                    const bool isOfInterior = !isShown(interior.plain) && interior.plain == outcome.plain;
                    return isOfInterior ? interiorPlain() : plainCause(outcome.plain, causesOf(), field, &patch);
                });
        }
        return isWhole;
    }

private:
    /// `empty` patches have no values in OpenFOAM.
    bool hasValues(const ExpectedField& field, const CasePatch& patch) const
    {
        const bool isHidden = m_examination.isSet("HIDE_PARALLEL_INTERFACES") && patch.name.starts_with("procBoundary");
        return field.kind.hasPatches && patch.faces > 0 && patch.type != "empty" && !isHidden &&
               m_examination.isSet("LOAD_BC_PARTS");
    }

    FindingArray arrayOf(const ExpectedField& field, const std::string& group, const ArrayOutcome& outcome) const
    {
        const bool differs = isShown(outcome.plain) && !outcome.isSame;
        return {m_time.name,
                field.mesh->part,
                group,
                m_name,
                differs ? "other values" : wordOf(outcome.plain),
                wordOf(outcome.extended)};
    }

    /// The items of a group in the host; none if it has no such group.
    std::optional<std::size_t> itemsOf(const ExpectedField& field, const CasePatch* patch) const
    {
        Delivery& delivery = m_examination.extended;
        const auto group = delivery.group(field.mesh->part, patch == nullptr ? "" : patch->name);
        if (!group) {
            return std::nullopt;
        }
        return m_place == FieldPlace::Points ? delivery.nodes(*group)->nodeCount()
                                             : delivery.elements(*group)->elementCount();
    }

    Cause hiddenCause(const FieldCauses& causes, const ExpectedField& field, const CasePatch* patch) const
    {
        const std::optional<std::size_t> items = itemsOf(field, patch);
        if (!m_examination.extended.isOpen()) {
            return {"refused", "the case is not opened: " + m_examination.extended.refusal(), "", {field.file, 0}};
        }
        const auto ofMesh = m_examination.meshes.find(field.mesh->part);
        if (ofMesh != m_examination.meshes.end() && ofMesh->second.hidden) {
            return *ofMesh->second.hidden;
        }
        if (!items || *items == 0) {
            return {"no-patch", "the patch itself is not shown", "", {field.mesh->folder + "/boundary", 0}};
        }
        if (m_extended.missing == ArrayStatus::NoField && m_extended.values == nullptr) {
            return {"other-class",
                    "the field has another class elsewhere at this time, which is listed instead",
                    "give the fields different names",
                    {field.file, 0}};
        }
        return patch == nullptr ? causes.interior(items) : causes.patch(*patch, items);
    }

    Cause plainCause(ArrayStatus status, const FieldCauses& causes, const ExpectedField& field,
                     const CasePatch* patch) const
    {
        switch (status) {
        case ArrayStatus::NoCase:
            return m_examination.plainRefusal;
        case ArrayStatus::NoTime:
            return {"processor-times", "times that only the processors have are not states", "", {field.file, 0}};
        case ArrayStatus::NoGroup:
            return isSameMeshInPlain(m_examination, *field.mesh)
                       ? Cause{"no-patch", "the patch itself is not shown", "", {field.mesh->folder + "/boundary", 0}}
                       : plainMeshCause(m_examination, *field.mesh);
        case ArrayStatus::NoField:
            return causes.plainField();
        default:
            if (!isSameMeshInPlain(m_examination, *field.mesh)) {
                return plainMeshCause(m_examination, *field.mesh);
            }
            return patch == nullptr ? causes.plainInterior() : causes.plainPatch(*patch);
        }
    }

    Examination& m_examination;
    const CaseTime& m_time;
    std::string m_name;
    DeliveredResult m_plain;
    DeliveredResult m_extended;
    FieldPlace m_place;
};

/// Compares the averages at nodes, which only the library has. They follow from the values, so they are looked at only
/// where these are alike.
void compareAverages(Examination& examination, const CaseTime& time, const std::string& name,
                     const std::vector<const CaseMesh*>& meshes)
{
    const DeliveredResult plain = examination.plain.result(name, FieldPlace::CellAverage, time.value);
    const DeliveredResult extended = examination.extended.result(name, FieldPlace::CellAverage, time.value);
    for (const CaseMesh* const mesh : meshes) {
        const ArrayOutcome outcome = outcomeOf(examination, plain, extended, mesh->part, "");
        const auto empty = std::ranges::find_if(
            mesh->patches, [](const CasePatch& patch) { return patch.type == "empty" && patch.faces > 0; });
        if (!isShown(outcome.plain) || !isShown(outcome.extended) || outcome.isSame || empty == mesh->patches.end()) {
            continue;
        }
        Finding& finding = examination.report.findings.add(
            FindingKind::Extended, {"averages",
                                    "node averages count patches of type empty, which have no values",
                                    "or leave out averages: NODE_AVG_RES=off",
                                    {mesh->folder + "/boundary", empty->line}});
        finding.fields.insert(name + " [node]");
        finding.times.insert(time.name);
    }
}

void compareField(Examination& examination, const CaseTime& time, const std::string& name,
                  const std::vector<ExpectedField>& fields)
{
    std::vector<const CaseMesh*> wholeOnCells;
    for (const FieldPlace place : {FieldPlace::Cells, FieldPlace::Points}) {
        const bool isAny =
            std::ranges::any_of(fields, [place](const ExpectedField& field) { return field.kind.place == place; });
        if (!isAny) {
            continue;
        }
        FieldComparison comparison(examination, time, name, place);
        for (const ExpectedField& field : fields) {
            if (field.kind.place != place) {
                continue;
            }
            if (comparison.compare(field) && place == FieldPlace::Cells) {
                wholeOnCells.push_back(field.mesh);
            }
            const bool isFirst = examination.fieldsWithUnit.insert(name).second;
            if (isFirst && examination.plain.unitOf(name, place) != examination.extended.unitOf(name, place) &&
                !examination.plain.unitOf(name, place).empty()) {
                Finding& finding = examination.report.findings.add(
                    FindingKind::Extended,
                    FieldCauses(examination.folder, *field.mesh, field.file, field.kind).plainUnit());
                finding.fields.insert(name);
                finding.times.insert(time.name);
            }
        }
    }
    if (!wholeOnCells.empty() && examination.isSet("NODE_AVG_RES")) {
        compareAverages(examination, time, name, wholeOnCells);
    }
}

/// The points that a mesh has at a time: those of the last time up to then that has some.
struct MovedPoints
{
    std::string folder; ///< empty if they never moved
    bool isOfTime = false;
};

MovedPoints movedPointsAt(const CaseFolder& folder, const CaseMesh& mesh, const CaseTime& time)
{
    MovedPoints points;
    for (const CaseTime& before : folder.times()) {
        for (const std::string& place : folder.fieldFolders(mesh, before.name)) {
            if (before.value <= time.value && place + "/polyMesh" != mesh.folder &&
                folder.hasFile(place + "/polyMesh/points")) {
                points = {place, before.name == time.name};
            }
        }
    }
    return points;
}

Cause hiddenPointsCause(const CaseFolder& folder, const MovedPoints& points)
{
    if (folder.hasFile(points.folder + "/polyMesh/faces")) {
        return meshChangesCause(points.folder);
    }
    return {"moved-points",
            "the moved points do not fit the mesh that is shown",
            "check whether the mesh changes with time",
            {points.folder + "/polyMesh/points", 0}};
}

Cause plainPointsCause(const MovedPoints& points)
{
    return {"moved-points",
            points.isOfTime ? "moved points are not shown for each mesh from its own file"
                            : "moved points are shown only at the times that have a file of them",
            "",
            {points.folder + "/polyMesh/points", 0}};
}

} // namespace

void examineFields(Examination& examination, const CaseTime& time)
{
    FieldsByName fields;
    for (const CaseMesh& mesh : examination.folder.meshes()) {
        if (isToBeShown(examination, mesh)) {
            collectFields(examination, mesh, time, &fields);
        }
    }
    for (const auto& [name, ofName] : fields) {
        compareField(examination, time, name, ofName);
    }
}

void examineMovedPoints(Examination& examination, const CaseTime& time)
{
    const DeliveredResult plain = examination.plain.result("points", FieldPlace::MovedPoints, time.value);
    const DeliveredResult extended = examination.extended.result("points", FieldPlace::MovedPoints, time.value);
    for (const CaseMesh& mesh : examination.folder.meshes()) {
        const MovedPoints points = movedPointsAt(examination.folder, mesh, time);
        if (points.folder.empty() || !isToBeShown(examination, mesh)) {
            continue;
        }
        ++examination.report.forms.movedPointTimes;
        const ArrayOutcome outcome = outcomeOf(examination, plain, extended, mesh.part, "");
        judge(
            examination, outcome, {time.name, mesh.part, "", "points", wordOf(outcome.plain), wordOf(outcome.extended)},
            [&] { return hiddenPointsCause(examination.folder, points); }, [&] { return plainPointsCause(points); });
    }
}
