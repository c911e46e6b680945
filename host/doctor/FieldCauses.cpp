// SPDX-License-Identifier: MIT
#include "doctor/FieldCauses.h"

#include "doctor/ListFile.h"
#include "doctor/Wording.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

using foamdict::Dictionary;
using foamdict::Entry;
using foamdict::Token;

namespace {

constexpr std::string_view INTERIOR = "internalField";
/// The same in a file of the interior alone.
constexpr std::string_view INTERNAL_VALUES = "value";
constexpr std::string_view PATCHES = "boundaryField";

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

/// Whether a value holds something that could not be replaced by numbers.
const Token* unresolvedIn(const Entry& entry)
{
    const auto found = std::ranges::find(entry.tokens, Token::Kind::Unresolved, &Token::kind);
    return found == entry.tokens.end() ? nullptr : &*found;
}

const SkippedList* listOf(const CaseFile& file, const Entry& entry)
{
    const auto token = std::ranges::find(entry.tokens, Token::Kind::List, &Token::kind);
    return token == entry.tokens.end() || token->list >= file.lists.size() ? nullptr : &file.lists[token->list];
}

bool isNonuniform(const Entry& entry)
{
    return !entry.tokens.empty() && entry.tokens.front().text == "nonuniform";
}

/// "vector" of "List<vector>"; empty if the list has no type.
std::string typeOfList(const Entry& entry, const SkippedList* list)
{
    constexpr std::string_view HEAD = "List<";
    const std::string word = list != nullptr || entry.tokens.size() < 2 ? std::string() : entry.tokens[1].text;
    return list != nullptr           ? list->type
           : !word.starts_with(HEAD) ? std::string()
                                     : word.substr(HEAD.size(), word.find('>') - HEAD.size());
}

/// The number of items that a value of tokens has: of a short list that which is written before its bracket.
std::optional<std::size_t> itemsOfTokens(const Entry& entry)
{
    if (!isNonuniform(entry)) {
        return std::nullopt;
    }
    const auto count = std::ranges::find(entry.tokens, Token::Kind::Number, &Token::kind);
    const bool isCount = count != entry.tokens.end() && count->number >= 0 && count->number < 1e9;
    return isCount ? std::optional(static_cast<std::size_t>(count->number)) : std::nullopt;
}

} // namespace

std::optional<FieldClass> fieldClassOf(std::string_view className)
{
    struct Form
    {
        std::string_view name;
        std::string_view listType;
        std::size_t components;
        bool isPlain;
    };
    static constexpr std::array<Form, 5> FORMS = {{{"ScalarField", "scalar", 1, true},
                                                   {"VectorField", "vector", 3, true},
                                                   {"SphericalTensorField", "sphericalTensor", 1, false},
                                                   {"SymmTensorField", "symmTensor", 6, false},
                                                   {"TensorField", "tensor", 9, true}}};
    constexpr std::string_view INTERNAL = "::Internal";
    const bool isOnPoints = className.starts_with("point");
    if (!isOnPoints && !className.starts_with("vol")) {
        return std::nullopt;
    }
    className.remove_prefix(isOnPoints ? 5 : 3);
    const bool isInternal = className.ends_with(INTERNAL);
    className.remove_suffix(isInternal ? INTERNAL.size() : 0);
    const auto* const form = std::ranges::find(FORMS, className, &Form::name);
    if (form == FORMS.end()) {
        return std::nullopt;
    }
    return FieldClass{isOnPoints ? FieldPlace::Points : FieldPlace::Cells, form->listType, form->components,
                      !isInternal, form->isPlain && !isInternal};
}

FieldCauses::FieldCauses(const CaseFolder& folder, const CaseMesh& mesh, std::string path, const FieldClass& kind)
    : m_folder(folder), m_mesh(mesh), m_path(std::move(path)), m_kind(kind),
      m_file(readCaseFile(folder.root() / m_path, folder.root(), false))
{}

Cause FieldCauses::cause(std::string name, std::string reason, std::string cure, const Entry* entry) const
{
    return {std::move(name), std::move(reason), std::move(cure), {m_path, entry == nullptr ? 0 : entry->line}};
}

const Dictionary* FieldCauses::patches() const
{
    return m_file.content.entries.block(PATCHES);
}

const Entry* FieldCauses::interiorEntry() const
{
    const Entry* const entry = m_file.content.entries.find(INTERIOR);
    return entry == nullptr ? m_file.content.entries.find(INTERNAL_VALUES) : entry;
}

/// As OpenFOAM finds it: by the name of the patch, else by the last of its groups, else by the last expression. An
/// expression does not count for a patch whose type leaves no choice and is another one.
FieldCauses::PatchEntry FieldCauses::entryOf(const CasePatch& casePatch) const
{
    const Dictionary* const all = patches();
    if (all == nullptr) {
        return {};
    }
    const Entry* const own = all->find(casePatch.name);
    if (own != nullptr && own->block != nullptr) {
        return {own, Match::Name};
    }
    const Entry* last = nullptr;
    for (const std::string& group : casePatch.groups) {
        const Entry* const entry = all->find(group);
        if (entry != nullptr && entry->block != nullptr && (last == nullptr || entry > last)) {
            last = entry;
        }
    }
    if (last != nullptr) {
        return {last, Match::Group};
    }
    const Entry* const pattern = all->findPattern(casePatch.name);
    const bool counts = pattern != nullptr && pattern->block != nullptr &&
                        (!isConstraintType(casePatch.type) || firstWordOf(*pattern->block, "type") == casePatch.type);
    return counts ? PatchEntry{pattern, Match::Pattern} : PatchEntry{};
}

/// What is wrong with the file as a whole.
std::optional<Cause> FieldCauses::fileCause() const
{
    if (!m_file.isOpen) {
        return cause("unreadable", "the file cannot be opened", "check its permissions", nullptr);
    }
    if (m_file.isBroken) {
        return cause("damaged-gzip", "the compressed file is damaged or was cut off", "write the time again", nullptr);
    }
    return std::nullopt;
}

/// What is wrong with the list of an entry.
std::optional<Cause> FieldCauses::listCause(const Entry& entry, std::optional<std::size_t> items,
                                            const std::string& owner) const
{
    const SkippedList* const list = listOf(m_file, entry);
    const std::optional<std::size_t> count = list != nullptr ? std::optional(list->count) : itemsOfTokens(entry);
    if (!count) {
        return std::nullopt;
    }
    if (items && *count != *items) {
        return cause("list-length", fmt::format("the list of {} has {} values, the mesh {}", owner, *count, *items),
                     "write the field again on this mesh", &entry);
    }
    if (const std::string type = typeOfList(entry, list); !type.empty() && type != m_kind.listType) {
        return cause("list-type",
                     fmt::format("the list of {} is one of {}s, the field one of {}s", owner, type, m_kind.listType),
                     "correct the class in the header", &entry);
    }
    if (list == nullptr) {
        return std::nullopt;
    }
    if (!list->seen.notANumber.empty()) {
        Cause found =
            cause("not-a-number", fmt::format("\"{}\" in the list of {} is not a number", list->seen.notANumber, owner),
                  "correct the list, or write the time again", &entry);
        found.place.line = list->seen.badLine;
        return found;
    }
    const bool hasAll = !list->isText || m_kind.listType != list->type ||
                        list->seen.words == list->count * m_kind.components || list->seen.words == m_kind.components;
    if (!list->seen.isClosed || !hasAll) {
        return cause("list-cut-off", fmt::format("the list of {} has fewer or more numbers than its count says", owner),
                     "write the time again; the file may have been cut off", &entry);
    }
    return std::nullopt;
}

/// What is wrong with the value of an entry.
std::optional<Cause> FieldCauses::valueCause(const Entry& entry, std::optional<std::size_t> items,
                                             const std::string& owner) const
{
    if (const Token* const open = unresolvedIn(entry)) {
        const bool isCode = open->text.starts_with('#');
        return cause(isCode ? "runs-code" : "macro-names-nothing",
                     isCode ? fmt::format("the value of {} is computed by {}, and nothing is executed", owner,
                                          wording::firstWordOf(open->text))
                            : fmt::format("the macro {} in the value of {} names nothing", open->text, owner),
                     isCode ? "let OpenFOAM write the time, which writes numbers" : "define it above that line",
                     &entry);
    }
    if (auto found = listCause(entry, items, owner)) {
        return found;
    }
    const bool hasList = listOf(m_file, entry) != nullptr;
    if (isNonuniform(entry) && !hasList && !itemsOfTokens(entry)) {
        return cause("bad-value", fmt::format("no list comes after \"nonuniform\" in the value of {}", owner),
                     "write the time again", &entry);
    }
    const auto numbers = static_cast<std::size_t>(std::ranges::count(entry.tokens, Token::Kind::Number, &Token::kind));
    if (!hasList && !isNonuniform(entry) && numbers != m_kind.components) {
        return cause("bad-value",
                     fmt::format("the value of {} is not one {} in numbers", owner, std::string(m_kind.listType)),
                     "correct the value", &entry);
    }
    return std::nullopt;
}

Cause FieldCauses::interior(std::optional<std::size_t> items) const
{
    if (auto found = fileCause()) {
        return *found;
    }
    const Entry* const entry = interiorEntry();
    std::optional<Cause> found;
    if (entry != nullptr) {
        found = valueCause(*entry, items, "the interior");
    }
    if (!found && !m_file.content.isComplete) {
        found = wording::causeOfProblem(m_file.content.problem, m_folder.root(), m_path);
    }
    if (!found && entry == nullptr) {
        found = cause("no-interior", "the file has no internalField", "write the field again", nullptr);
    }
    return found ? *found : cause("unknown", "undefined, and no cause was found in the file", "", entry);
}

Cause FieldCauses::patch(const CasePatch& casePatch, std::optional<std::size_t> items) const
{
    if (auto found = fileCause()) {
        return *found;
    }
    const auto [entry, match] = entryOf(casePatch);
    if (entry == nullptr && !m_file.content.isComplete) {
        return wording::causeOfProblem(m_file.content.problem, m_folder.root(), m_path);
    }
    if (entry == nullptr) {
        return cause("patch-not-named", fmt::format("no entry of boundaryField is for the patch {}", casePatch.name),
                     "add an entry for it", m_file.content.entries.find(PATCHES));
    }
    const std::string type = firstWordOf(*entry->block, "type");
    if (type.empty()) {
        return cause("patch-without-type", fmt::format("the entry of the patch {} has no type", casePatch.name),
                     "add its type", entry);
    }
    if (const Entry* const value = entry->block->find("value")) {
        if (auto found = valueCause(*value, items, "the patch " + casePatch.name)) {
            return *found;
        }
    } else {
        return cause("patch-without-value",
                     fmt::format("patches of type {} have no value in the file and need more than the cells", type),
                     "let the solver write a time: it writes the value", entry);
    }
    return cause("unknown", "undefined, and no cause was found in the file", "", entry);
}

// Plain reading

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
    if (auto found = placeCause()) {
        return *found;
    }
    if (auto found = headerCause()) {
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

Cause FieldCauses::plainInterior() const
{
    for (const auto& find :
         {&FieldCauses::fileCause, &FieldCauses::placeCause, &FieldCauses::headerCause, &FieldCauses::rawCause}) {
        if (auto found = (this->*find)()) {
            return *found;
        }
    }
    const Entry* const entry = interiorEntry();
    if (entry == nullptr) {
        return cause("no-interior", "the file has no internalField", "write the field again", nullptr);
    }
    if (m_file.isComposed(*entry)) {
        return cause("composed-interior", "the value of the interior is written with macros or includes", "", entry);
    }
    if (m_kind.isTensor() && isNonuniform(*entry)) {
        return cause("tensor-list", "lists of tensors are not read", "", entry);
    }
    if (m_kind.isTensor()) {
        return cause("tensor-value", "of the nine numbers of a tensor the first six are shown", "", entry);
    }
    if (const Entry* const level = m_file.content.entries.find("referenceLevel")) {
        return cause("reference-level", "the entry referenceLevel is not added to the values", "", level);
    }
    if (!m_file.textOfLine(entry->line).starts_with(entry->keyword)) {
        return cause("interior-layout", "internalField is not at the start of a line", "put it on a line of its own",
                     entry);
    }
    if (m_file.textOfLine(entry->line).find("uniform  ") != std::string_view::npos) {
        return cause("several-blanks", "several blanks come after \"uniform\"", "leave one", entry);
    }
    if (const SkippedList* const list = listOf(m_file, *entry); list != nullptr && !list->isText) {
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
    if (m_file.isComposed(*value)) {
        return cause("composed-patch", "the value of a patch is written with macros or includes", "", value);
    }
    if (m_file.textOfLine(value->line).find("uniform  ") != std::string_view::npos) {
        return cause("several-blanks", "several blanks come after \"uniform\"", "leave one", value);
    }
    if (m_kind.isTensor()) {
        return cause("tensor-patch", "tensors of patches are not read in their layout", "", value);
    }
    if (m_kind.place == FieldPlace::Points && isNonuniform(*value)) {
        return cause("point-order", "values on the points of a patch are shown in another order", "", value);
    }
    if (m_file.content.entries.find("referenceLevel") != nullptr) {
        return cause("reference-level", "the entry referenceLevel is not added to the values", "",
                     m_file.content.entries.find("referenceLevel"));
    }
    return cause("patch-value-layout",
                 fmt::format("the value of a patch of type {} is laid out as solvers do not "
                             "write it",
                             type),
                 "", value);
}

Cause FieldCauses::plainPatch(const CasePatch& casePatch) const
{
    for (const auto& find :
         {&FieldCauses::fileCause, &FieldCauses::placeCause, &FieldCauses::headerCause, &FieldCauses::rawCause}) {
        if (auto found = (this->*find)()) {
            return *found;
        }
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
