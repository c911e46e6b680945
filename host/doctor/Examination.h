// SPDX-License-Identifier: MIT
#pragma once

#include "doctor/CaseFolder.h"
#include "doctor/Delivery.h"
#include "doctor/Doctor.h"
#include "doctor/FieldCauses.h"

#include <string>
#include <vector>

/// What was found out about a mesh.
struct MeshOutcome
{
    std::optional<Cause> hidden; ///< why it does not show, or not whole
    std::optional<Cause> plain;  ///< why its files are not for plain reading
    bool isSameInPlain = false;  ///< plain reading shows the same cells and points
};

/// What the steps of looking at one case share.
struct Examination
{
    const CaseFolder& folder;
    Delivery& plain;
    Delivery& extended;
    const HostOptions& settings;
    const HostProviderInfo& provider;
    DoctorReport& report;
    /// Why plain reading does not open the case; empty if it does.
    Cause plainRefusal;
    /// The fields whose unit was looked at: it is that of the first time that has the field.
    std::set<std::string> fieldsWithUnit = {};
    std::map<std::string, MeshOutcome> meshes = {}; ///< by part

    /// A boolean setting: that of the user, else the one that the library declares.
    bool isSet(const std::string& key) const;
};

/// A field of one mesh at one time.
struct ExpectedField
{
    const CaseMesh* mesh = nullptr;
    std::string file; ///< relative to the folder of the case
    FieldClass kind;
};

/// Compares meshes, patches and zones.
void examineMeshes(Examination& examination);

/// True if plain reading shows the cells and points that extended reading shows.
bool isSameMeshInPlain(const Examination& examination, const CaseMesh& mesh);

/// Why plain reading does not show a mesh, or another one than extended reading.
Cause plainMeshCause(const Examination& examination, const CaseMesh& mesh);

/// That a mesh has other faces at a later time, of whose folder the path is given.
Cause meshChangesCause(const std::string& folder);

/// Compares the values of all fields at one time; times are those of the case in order.
void examineFields(Examination& examination, const CaseTime& time);

/// Compares the moved points at one time.
void examineMovedPoints(Examination& examination, const CaseTime& time);

/// Looks at sampled surfaces at the times that were looked at.
void examineSurfaces(Examination& examination, const std::vector<CaseTime>& times);

/// True if a mesh is one that hosts are to show: a whole mesh beside its pieces is not, unless it has results.
bool isToBeShown(const Examination& examination, const CaseMesh& mesh);

/// A word for what is delivered of an array.
const char* wordOf(ArrayStatus status);

/// Adds the finding for one array, or counts it as shown.
struct ArrayOutcome
{
    ArrayStatus plain = ArrayStatus::NoCase;
    ArrayStatus extended = ArrayStatus::NoCase;
    bool isSame = true; ///< plain reading gives the values of extended reading

    bool isWhole() const { return isShown(plain) && isShown(extended) && isSame; }
};

/// Compares what both ways of reading deliver for a group.
ArrayOutcome outcomeOf(Examination& examination, const DeliveredResult& plain, const DeliveredResult& extended,
                       const std::string& part, const std::string& group);

/// Counts the array, and adds its finding unless it shows in both ways: `hidden` and `plain` are asked for the cause.
template <typename Hidden, typename Plain>
void judge(Examination& examination, const ArrayOutcome& outcome, const FindingArray& array, const Hidden& hidden,
           const Plain& plain)
{
    ArrayCounts& counts = examination.report.arrays;
    ++counts.all;
    counts.extended += isShown(outcome.extended) ? 1 : 0;
    counts.plain += outcome.isWhole() ? 1 : 0;
    if (!isShown(outcome.extended)) {
        examination.report.findings.add(FindingKind::Hidden, hidden(), array);
    } else if (!outcome.isWhole()) {
        examination.report.findings.add(FindingKind::Extended, plain(), array);
    }
}
