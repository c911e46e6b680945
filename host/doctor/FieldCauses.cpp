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

/// Whether a value holds something that could not be replaced by numbers.
const Token* unresolvedIn(const Entry& entry)
{
    const auto found = std::ranges::find(entry.tokens, Token::Kind::Unresolved, &Token::kind);
    return found == entry.tokens.end() ? nullptr : &*found;
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
    const SkippedList* const list = m_file.listOf(entry);
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
    const bool hasList = m_file.listOf(entry) != nullptr;
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
