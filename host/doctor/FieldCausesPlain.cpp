// SPDX-License-Identifier: MIT
// What plain reading makes of a field.
#include "doctor/FieldCauses.h"

#include "doctor/ListFile.h"
#include "doctor/Wording.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

using foamdict::Dictionary;
using foamdict::Entry;

namespace {

/// Types whose values plain reading takes from elsewhere than OpenFOAM.
struct PlainType
{
    std::string_view type;
    std::string_view reason; ///< after "patches of type X"
};

constexpr std::string_view KEEPS_NORMAL = "show the value of the cell, with its component normal to the plane";
constexpr std::string_view FROM_FILE = "show the value in the file, which OpenFOAM computes anew";

constexpr std::array<PlainType, 10> PLAIN_TYPES = {{
    {"slip", KEEPS_NORMAL},
    {"symmetry", KEEPS_NORMAL},
    {"symmetryPlane", KEEPS_NORMAL},
    {"fixedNormalSlip", FROM_FILE},
    {"wedge", FROM_FILE},
    {"cyclic", FROM_FILE},
    {"kqRWallFunction", FROM_FILE},
    {"fluxCorrectedVelocity", FROM_FILE},
    {"extrapolatedCalculated", FROM_FILE},
    {"uniformFixedValue", "show the value of the cell instead of their own"},
}};

} // namespace

std::optional<Cause> FieldCauses::headerCause() const
{
    const std::string name = wording::fileName(m_path);
    const Entry* const object = m_file.content.header.find("object");
    if (object == nullptr) {
        return cause("header", "the header has no object", "add the entry object to the header", nullptr);
    }
    if (m_file.header("object") != name) {
        return cause("object-name",
                     fmt::format("the object in the header is {}, not the name of the file", m_file.header("object")),
                     "name the file or the object like the other", object);
    }
    std::size_t lineBefore = 0;
    for (const Entry& entry : m_file.content.header.entries()) {
        const std::string_view text = m_file.textOfLine(entry.line);
        if (entry.line == lineBefore || text.find("//") != std::string_view::npos || !text.ends_with(';')) {
            return cause("header-layout", "an entry of the header is not on a line of its own",
                         "write each entry of the header on one line", &entry);
        }
        lineBefore = entry.line;
    }
    return std::nullopt;
}

Cause FieldCauses::plainField() const
{
    if (auto found = fileCause()) {
        return *found;
    }
    if (!m_kind.isPlain) {
        return cause("class", fmt::format("fields of the class {} are not listed", m_file.header("class")), "",
                     nullptr);
    }
    if (auto found = plainFileCause()) {
        return *found;
    }
    return cause("unknown", "not listed, and no cause was found in the file", "", nullptr);
}

/// Raw values in another form than usual.
std::optional<Cause> FieldCauses::rawCause() const
{
    if (m_file.header("format") == "binary" && isUnusualRawForm(m_file.header("arch"))) {
        return cause("raw-form",
                     fmt::format("raw values are written in another form than is usual ({})", m_file.header("arch")),
                     "", m_file.content.header.find("arch"));
    }
    return std::nullopt;
}

/// Where the file is.
std::optional<Cause> FieldCauses::placeCause() const
{
    if (!m_mesh.processor.empty() && m_path.starts_with(m_mesh.processor + "/")) {
        return cause("processor-folder", "times are in the folders of the processors, as solvers write them",
                     "or put the case together with reconstructPar", nullptr);
    }
    std::error_code error;
    const std::filesystem::path plain = m_folder.root() / m_path;
    const std::filesystem::path zipped = m_folder.root() / (m_path + ".gz");
    if (std::filesystem::is_regular_file(plain, error) && std::filesystem::is_regular_file(zipped, error)) {
        return cause("both-compressed", "the compressed file beside it is read instead",
                     "remove the one that is out of date", nullptr);
    }
    return std::nullopt;
}

bool FieldCauses::isOnOwnLine(const Entry& entry) const
{
    return entry.line != 0 && m_file.textOfLine(entry.line) == entry.keyword;
}

/// Why plain reading does not read the file, or another one.
std::optional<Cause> FieldCauses::plainFileCause() const
{
    for (const auto& find :
         {&FieldCauses::fileCause, &FieldCauses::placeCause, &FieldCauses::headerCause, &FieldCauses::rawCause}) {
        if (auto found = (this->*find)()) {
            return found;
        }
    }
    return std::nullopt;
}

/// How a value is written, be it of the interior or of a patch.
std::optional<Cause> FieldCauses::plainTextCause(const Entry& value, const std::string& owner) const
{
    if (m_file.isComposed(value)) {
        return cause("composed-" + owner,
                     fmt::format("the value of {} is written with macros or includes",
                                 owner == "patch" ? "a patch" : "the interior"),
                     "", &value);
    }
    if (m_file.textOfLine(value.line).find("uniform  ") != std::string_view::npos) {
        return cause("several-blanks", "several blanks come after \"uniform\"", "leave one", &value);
    }
    if (const Entry* const level = m_file.content.entries.find("referenceLevel")) {
        return cause("reference-level", "the entry referenceLevel is not added to the values", "", level);
    }
    return std::nullopt;
}

Cause FieldCauses::plainInterior() const
{
    if (auto found = plainFileCause()) {
        return *found;
    }
    const Entry* const entry = interiorEntry();
    if (entry == nullptr) {
        return cause("no-interior", "the file has no internalField", "write the field again", nullptr);
    }
    if (auto found = plainTextCause(*entry, "interior")) {
        return *found;
    }
    if (m_kind.isTensor() && isNonuniform(*entry)) {
        return cause("tensor-list", "lists of tensors are not read", "", entry);
    }
    if (m_kind.isTensor()) {
        return cause("tensor-value", "of the nine numbers of a tensor the first six are shown", "", entry);
    }
    if (!m_file.textOfLine(entry->line).starts_with(entry->keyword)) {
        return cause("interior-layout", "internalField is not at the start of a line", "put it on a line of its own",
                     entry);
    }
    if (const SkippedList* const list = m_file.listOf(*entry); list != nullptr && !list->isText) {
        return cause("raw-line-feed", "the first byte of a raw list looks like a line end, and the values are shifted",
                     "", entry);
    }
    return cause("interior-layout", "the value of internalField is laid out as solvers do not write it", "", entry);
}

/// How the entry of a patch is written.
std::optional<Cause> FieldCauses::plainEntryCause(const CasePatch& casePatch, const PatchEntry& found) const
{
    const Entry* const all = m_file.content.entries.find(PATCHES);
    if (found.entry == nullptr) {
        return cause("patch-by-type", "patches that no entry of boundaryField names have values only by their type", "",
                     all);
    }
    if (found.match != Match::Name) {
        const bool isGroup = found.match == Match::Group;
        return cause(isGroup ? "patch-by-group" : "patch-by-pattern",
                     fmt::format("an entry of boundaryField is for {} of patches, not for a name",
                                 isGroup ? "a group" : "an expression"),
                     "", found.entry);
    }
    if (found.entry->line == 0 && m_file.header("format") != "binary") {
        return cause("patch-included", "entries of patches come from an include or a macro", "", all);
    }
    if (found.entry->line != 0 && !isOnOwnLine(*found.entry)) {
        return cause("patch-layout", "the name of a patch in boundaryField is not on a line of its own",
                     "put the name and each brace on a line of its own", found.entry);
    }
    return orderCause(casePatch, *found.entry);
}

/// Plain reading looks for one patch after the other, in the order of the mesh and without going back.
std::optional<Cause> FieldCauses::orderCause(const CasePatch& casePatch, const Entry& entry) const
{
    const Dictionary* const all = patches();
    const Entry* last = nullptr;
    for (const CasePatch& next : m_mesh.patches) {
        const Entry* const own = next.faces > 0 ? all->find(next.name) : last;
        const bool isFound = next.faces <= 0 || (own != nullptr && own->block != nullptr && own > last &&
                                                 (own->line == 0 || isOnOwnLine(*own)));
        if (!isFound) {
            return cause("patch-order",
                         "patches in boundaryField are not all named, or not in the order of the mesh, and from the "
                         "first such patch on all are lost",
                         "name all patches in the order of the mesh", &entry);
        }
        if (next.name == casePatch.name) {
            break;
        }
        last = own;
    }
    return std::nullopt;
}

/// What the type of a patch makes of it.
std::optional<Cause> FieldCauses::plainTypeCause(const PatchEntry& found) const
{
    const std::string type = firstWordOf(*found.entry->block, "type");
    const Entry* const value = found.entry->block->find("value");
    const auto* const rule = std::ranges::find(PLAIN_TYPES, type, &PlainType::type);
    const bool isCells = rule != PLAIN_TYPES.end() && rule->reason != FROM_FILE;
    if (m_kind.place == FieldPlace::Cells && rule != PLAIN_TYPES.end() && (isCells || value != nullptr)) {
        return cause("patch-type", fmt::format("patches of type {} {}", type, rule->reason), "", found.entry);
    }
    if (value == nullptr) {
        return cause("patch-without-value", fmt::format("patches of type {} have no value in the file", type), "",
                     found.entry);
    }
    return std::nullopt;
}

/// How the value of a patch is written.
std::optional<Cause> FieldCauses::plainValueCause(const Dictionary& block, const std::string& type) const
{
    const Entry* const value = block.find("value");
    if (value == nullptr) {
        return std::nullopt;
    }
    if (auto found = plainTextCause(*value, "patch")) {
        return found;
    }
    if (m_kind.isTensor()) {
        return cause("tensor-patch", "tensors of patches are not read in their layout", "", value);
    }
    if (m_kind.place == FieldPlace::Points && isNonuniform(*value)) {
        return cause("point-order", "values on the points of a patch are shown in another order", "", value);
    }
    return cause("patch-value-layout",
                 fmt::format("the value of a patch of type {} is laid out as solvers do not write it", type), "",
                 value);
}

Cause FieldCauses::plainPatch(const CasePatch& casePatch) const
{
    if (auto found = plainFileCause()) {
        return *found;
    }
    const PatchEntry found = entryOf(casePatch);
    if (auto entryCause = plainEntryCause(casePatch, found)) {
        return *entryCause;
    }
    if (auto typeCause = plainTypeCause(found)) {
        return *typeCause;
    }
    if (auto valueCause = plainValueCause(*found.entry->block, firstWordOf(*found.entry->block, "type"))) {
        return *valueCause;
    }
    return cause("unknown", "other values than OpenFOAM has, and no cause was found in the file", "", found.entry);
}

Cause FieldCauses::plainUnit() const
{
    return cause("unit",
                 "the dimensions are written with blanks or macros, or not as solvers do, and the field has no unit",
                 "", m_file.content.entries.find("dimensions"));
}
