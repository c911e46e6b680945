// SPDX-License-Identifier: MIT
#pragma once

#include "doctor/CaseFile.h"
#include "doctor/CaseFolder.h"
#include "doctor/Delivery.h"
#include "doctor/Findings.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the class in the header of a field says.
struct FieldClass
{
    FieldPlace place = FieldPlace::Cells;
    std::string_view listType; ///< that of its lists, such as "vector"
    std::size_t components = 1;
    bool hasPatches = true; ///< false for a field of the interior alone
    bool isPlain = true;    ///< listed without extended reading too

    bool isTensor() const { return components == 6 || components == 9 || listType == "sphericalTensor"; }
};

/// The class of a field that the host's model has a place for; none for any other class.
std::optional<FieldClass> fieldClassOf(std::string_view className);

/// Finds out from a file of a field why its values do not show.
class FieldCauses
{
public:
    /// @param path of the file, relative to the folder of the case; all references must outlive the object
    FieldCauses(const CaseFolder& folder, const CaseMesh& mesh, std::string path, const FieldClass& kind);

    /// Why the values of the cells or nodes are undefined, however the file is read.
    /// @param items that the part has in the host; none if it is not shown
    Cause interior(std::optional<std::size_t> items) const;
    /// The same for a patch.
    Cause patch(const CasePatch& casePatch, std::optional<std::size_t> items) const;

    /// Why plain reading does not list the field.
    Cause plainField() const;
    /// Why plain reading has no or other values of the cells or nodes.
    Cause plainInterior() const;
    /// The same for a patch.
    Cause plainPatch(const CasePatch& casePatch) const;

    /// Why plain reading has another unit.
    Cause plainUnit() const;

    const CaseFile& file() const { return m_file; }
    const std::string& path() const { return m_path; }

private:
    static constexpr std::string_view PATCHES = "boundaryField";

    /// How an entry of the field's patches was found.
    enum class Match
    {
        Name,
        Group,
        Pattern,
        None
    };
    struct PatchEntry
    {
        const foamdict::Entry* entry = nullptr;
        Match match = Match::None;
    };

    Cause cause(std::string name, std::string reason, std::string cure, const foamdict::Entry* entry) const;
    const foamdict::Dictionary* patches() const;
    PatchEntry entryOf(const CasePatch& casePatch) const;
    std::optional<Cause> fileCause() const;
    std::optional<Cause> listCause(const foamdict::Entry& entry, std::optional<std::size_t> items,
                                   const std::string& owner) const;
    std::optional<Cause> valueCause(const foamdict::Entry& entry, std::optional<std::size_t> items,
                                    const std::string& owner) const;
    std::optional<Cause> plainFileCause() const;
    std::optional<Cause> plainTextCause(const foamdict::Entry& value, const std::string& owner) const;
    std::optional<Cause> headerCause() const;
    std::optional<Cause> rawCause() const;
    std::optional<Cause> placeCause() const;
    std::optional<Cause> plainEntryCause(const CasePatch& casePatch, const PatchEntry& found) const;
    std::optional<Cause> orderCause(const CasePatch& casePatch, const foamdict::Entry& entry) const;
    std::optional<Cause> plainTypeCause(const PatchEntry& found) const;
    std::optional<Cause> plainValueCause(const foamdict::Dictionary& block, const std::string& type) const;
    bool isOnOwnLine(const foamdict::Entry& entry) const;
    const foamdict::Entry* interiorEntry() const;

    const CaseFolder& m_folder;
    const CaseMesh& m_mesh;
    std::string m_path;
    FieldClass m_kind;
    CaseFile m_file;
};
