// SPDX-License-Identifier: MIT
#include "doctor/ListFile.h"

#include "doctor/CaseFile.h"
#include "foamdict/Lexer.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

using foamdict::Lexeme;
using foamdict::Lexer;

namespace {

/// What a class of list files holds.
struct ListClass
{
    std::string_view name;
    std::size_t numbers = 0; ///< of one item; 0 if items differ
    bool isInBrackets = false;
    std::size_t lists = 1; ///< that follow each other
};

constexpr std::string_view COMPACT = "faceCompactList";

constexpr std::array<ListClass, 4> LIST_CLASSES = {
    {{"vectorField", 3, true}, {"labelList", 1}, {"faceList", 0, true}, {COMPACT, 1, false, 2}}};

bool isEnd(const Lexeme& next)
{
    return next.kind == Lexeme::Kind::End || next.kind == Lexeme::Kind::Fault;
}

/// Reads the block after the word FoamFile.
void readHeader(Lexer& lexer, ListFile* file)
{
    std::string keyword;
    for (Lexeme next = lexer.next(); !next.is('}') && !isEnd(next); next = lexer.next()) {
        const bool isBetween = next.is(';') || next.is('{');
        if (isBetween || keyword.empty()) {
            keyword = isBetween ? "" : next.text;
            continue;
        }
        for (const auto& [name, value] : {std::pair("class", &file->className),
                                          {"format", &file->format},
                                          {"arch", &file->arch},
                                          {"note", &file->note}}) {
            *value = keyword == name ? next.text : *value;
        }
    }
}

/// Reads a count, and leaves the bracket after it.
std::optional<std::size_t> readCount(Lexer& lexer, const Lexeme& next)
{
    const bool isCount = next.kind == Lexeme::Kind::Number && next.number >= 0 && next.number < 1e15;
    const int bracket = isCount ? lexer.skipBlanks() : foamdict::CharSource::END;
    return bracket == '(' || bracket == '{' || (isCount && next.number == 0)
               ? std::optional(static_cast<std::size_t>(next.number))
               : std::nullopt;
}

/// Reads the header and the first count.
/// @return that count as it is stated
std::optional<std::size_t> readHead(Lexer& lexer, ListFile* file)
{
    Lexeme next = lexer.next();
    if (next.kind == Lexeme::Kind::Word && next.text == "FoamFile") {
        readHeader(lexer, file);
        next = lexer.next();
    }
    const std::optional<std::size_t> stated = readCount(lexer, next);
    file->isOfEqualItems = stated && lexer.skipBlanks() == '{';
    file->count = stated;
    if (file->className == COMPACT && stated > std::size_t(0)) {
        // Its first list says where each face begins, and where the last one ends.
        file->count = *stated - 1;
    }
    return stated;
}

ListFile opened(const CaseChars& chars)
{
    ListFile file;
    file.isOpen = chars.isOpen();
    file.isGzip = chars.isGzip();
    return file;
}

std::string textFault(const CaseChars::Skipped& seen, const ListClass& kind, std::size_t count)
{
    if (!seen.isClosed) {
        return "ends before its last bracket";
    }
    if (!seen.notANumber.empty()) {
        return fmt::format("has \"{}\", which is not a number", seen.notANumber);
    }
    const std::size_t items = kind.isInBrackets ? seen.brackets : seen.words;
    if (items != count) {
        return fmt::format("says that it has {} items, and {} are there", count, items);
    }
    const bool hasAll = kind.numbers <= 1 || seen.words == count * kind.numbers;
    return hasAll ? "" : fmt::format("has items that are not {} numbers", kind.numbers);
}

std::string rawFault(CaseChars& chars, const ListFile& file, const ListClass& kind, std::size_t count)
{
    const bool isOfLabels = kind.name != "vectorField";
    const std::size_t bytes = rawWidth(file.arch, isOfLabels ? "label=" : "scalar=", isOfLabels ? 4 : 8);
    if (count == 0 && chars.peek() != '(') {
        return "";
    }
    (void)chars.take();
    const bool isWhole = chars.skipRaw(static_cast<std::uint64_t>(count) * kind.numbers * bytes) && chars.take() == ')';
    return isWhole ? "" : "ends before its last bracket";
}

void passOver(CaseChars& chars, const ListClass& kind, std::size_t count, ListFile* file)
{
    if (file->isBinary() && kind.numbers > 0 && !file->isOfEqualItems) {
        file->fault = rawFault(chars, *file, kind, count);
        return;
    }
    const int bracket = chars.peek();
    if (bracket != '(' && bracket != '{') {
        return;
    }
    const CaseChars::Skipped seen = chars.skipList();
    file->longestItem = seen.longestBracket;
    file->words = seen.words;
    file->fault = file->isOfEqualItems && seen.isClosed ? "" : textFault(seen, kind, count);
    file->faultLine = seen.badLine;
}

} // namespace

bool isUnusualRawForm(const std::string& arch)
{
    return arch.find("MSB") != std::string::npos || arch.find("scalar=32") != std::string::npos ||
           arch.find("label=64") != std::string::npos;
}

bool ListFile::hasUnusualRawForm() const
{
    return isBinary() && isUnusualRawForm(arch);
}

ListFile readListHead(const std::filesystem::path& path)
{
    const auto chars = std::make_unique<CaseChars>(path);
    ListFile file = opened(*chars);
    Lexer lexer(*chars);
    (void)readHead(lexer, &file);
    return file;
}

ListFile readListFile(const std::filesystem::path& path, const char* classWithoutHeader)
{
    const auto chars = std::make_unique<CaseChars>(path);
    ListFile file = opened(*chars);
    file.className = classWithoutHeader;
    Lexer lexer(*chars);
    std::optional<std::size_t> count = readHead(lexer, &file);
    const auto* const kind = std::ranges::find(LIST_CLASSES, file.className, &ListClass::name);
    const std::size_t lists = kind == LIST_CLASSES.end() ? 0 : kind->lists;
    for (std::size_t i = 0; count && i < lists && file.fault.empty(); ++i) {
        count = i == 0 ? count : readCount(lexer, lexer.next());
        passOver(*chars, *kind, count.value_or(0), &file);
    }
    file.fault = file.isOpen && !count && file.fault.empty() ? "has no count" : file.fault;
    file.fault = chars->isBroken() ? "is in a compressed file that is damaged or was cut off" : file.fault;
    return file;
}
