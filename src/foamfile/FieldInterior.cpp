// SPDX-License-Identifier: MIT
#include "foamfile/FieldInterior.h"

#include "DvnCore/Undefined.h"
#include "LibCore/Limits.h"
#include "LibCore/Numbers.h"
#include "foamfile/FieldList.h"
#include "foamfile/OFLogger.h"
#include "foamfile/TextLines.h"
#include "records/Components.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

namespace {

using FieldInterior::Request;

constexpr const char* BAD_COUNT = "Invalid number of items in result file. File basename is %1";
constexpr const char* UNKNOWN_CLASS = "Invalid resultClassName in open foam file. We do not recognize:  %1";
constexpr const char* TENSOR_LIST =
    "Error reading result, tensor results are currently not supported. File basename is %1";
/// Length of what ends a list on one line: the bracket, the semicolon and the line feed.
constexpr std::size_t LIST_TAIL = 3;

bool logError(const dvn::Str& message)
{
    return OFLogger::get().logError("OFFile", message);
}

/// Components of one item in an array; -1 for an unknown kind.
int storedSize(OFResultType type)
{
    switch (type) {
    case OFResultScalar:
        return 1;
    case OFResultVector:
    case OFResultDisplacement:
        return static_cast<int>(VECTOR_COMPONENTS);
    case OFResultTensor:
        return static_cast<int>(TENSOR_COMPONENTS);
    }
    return -1;
}

/// Walks over the blank-separated words of a text, in place: a list on one line may hold any number of them.
class Words
{
public:
    explicit Words(std::wstring_view text) : m_rest(text) {}

    /// The next word; empty after the last one.
    std::wstring_view next()
    {
        const std::size_t first = std::min(m_rest.find_first_not_of(L' '), m_rest.size());
        const std::size_t end = std::min(m_rest.find(L' ', first), m_rest.size());
        const std::wstring_view word = m_rest.substr(first, end - first);
        m_rest.remove_prefix(end);
        return word;
    }

private:
    std::wstring_view m_rest;
};

bool hasWord(std::wstring_view text, std::wstring_view sought)
{
    Words words(text);
    std::wstring_view word = words.next();
    while (!word.empty() && word != sought) {
        word = words.next();
    }
    return !word.empty();
}

std::size_t countWords(std::wstring_view text)
{
    Words words(text);
    std::size_t count = 0;
    while (!words.next().empty()) {
        ++count;
    }
    return count;
}

/// The number that a word begins with; 0.0 if there is none.
double leadingNumber(std::wstring_view word)
{
    double value = 0.0;
    static_cast<void>(dvf::extractDouble(word, &value));
    return value;
}

/// The count directly before the bracket at `bracket`.
///
/// Compatibility (docs/compatibility.md, "stoi exception"): digits are converted as `std::stoi` does. A number that is
/// too large gives the limit of its sign, which no list has as its count.
int countBefore(std::wstring_view line, std::size_t bracket)
{
    const std::size_t blank = line.rfind(L' ', bracket);
    const std::wstring_view text = line.substr(blank == std::wstring_view::npos ? 0 : blank + 1);
    int count = 0;
    if (!dvf::extractInt(text, &count) && count == 0) {
        throw std::invalid_argument("stoi");
    }
    return count;
}

/// Converts the numbers of a uniform value. False if one is missing or, with a message, if a token is not a number.
bool convertUniform(const std::vector<dvn::Str>& tokens, std::size_t first, const dvn::Str& path, double* numbers,
                    std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (first + i >= tokens.size()) {
            return false;
        }
        dvn::Str token = tokens[first + i];
        if (count > 1) {
            token.replace("(", "");
            token.replace(")", "");
        }
        bool isNumber = false;
        numbers[i] = token.toDouble(&isNumber);
        if (!isNumber) {
            return logError(dvn::Str("Could not convert uniform value to a double. File basename is %1").arg(path));
        }
    }
    return true;
}

/// Fills whole items with the one value after "uniform". Compatibility (docs/compatibility.md, "tensor patches"): of a
/// tensor's nine numbers the first six fill the array, whose items have six.
bool fillUniform(const std::vector<dvn::Str>& tokens, const Request& request, std::vector<double>* values)
{
    const auto uniform = std::find(tokens.begin(), tokens.end(), dvn::Str("uniform"));
    const std::size_t first = static_cast<std::size_t>(uniform - tokens.begin()) + 1;
    // Also where the word comes after all words that are looked at.
    if (first >= tokens.size()) {
        return logError(dvn::Str("Failed to read uniform value in result file. File basename is %1").arg(request.path));
    }
    const std::optional<OFResultType> type = FieldInterior::typeOfClass(request.resultClass);
    if (!type) {
        return logError(
            dvn::Str("Could not recognize result class %1 from File %2").arg(request.resultClass).arg(request.path));
    }
    const int size = storedSize(*type);
    if (size < 0) {
        return logError(dvn::Str("Could not assign uniform value - unknown class name %1. File basename is %1")
                            .arg(request.resultClass)
                            .arg(request.path));
    }
    const auto width = static_cast<std::size_t>(size);
    std::array<double, TENSOR_COMPONENTS> numbers = {};
    if (!convertUniform(tokens, first, request.path, numbers.data(), width)) {
        return false;
    }
    // guard: uniform-interior
    for (std::size_t i = 0; i + width <= values->size(); i += width) {
        std::copy_n(numbers.begin(), width, values->begin() + static_cast<std::ptrdiff_t>(i));
    }
    return true;
}

/// Checks the count of a list against the file, the class and the array of the caller.
bool checkCount(const TextSource& text, int count, const Request& request, const std::vector<double>& values)
{
    const bool isValid =
        count >= 0 && count <= dvf::limits::LIST_COUNT &&
        (!text.isOpen() || text.canHold(static_cast<std::uint64_t>(count), dvf::limits::BYTES_PER_NUMBER));
    const std::int64_t largest = std::numeric_limits<int>::max();
    const std::optional<OFResultType> type = FieldInterior::typeOfClass(request.resultClass);
    if (!isValid || (type && static_cast<std::int64_t>(count) * storedSize(*type) > largest)) {
        return logError(dvn::Str(BAD_COUNT).arg(request.path));
    }
    const int needed = FieldInterior::valueCount(request.resultClass, count);
    if (needed < 0) {
        return logError(dvn::Str("Unrecognized result class name %1. File basename is %2")
                            .arg(request.resultClass)
                            .arg(request.path));
    }
    // guard: field-count
    if (values.size() != static_cast<std::size_t>(needed)) {
        return logError(
            dvn::Str("Error reading result, values buffer is not correctly dimensioned. File basename is %1")
                .arg(request.path));
    }
    return type || logError(dvn::Str(UNKNOWN_CLASS).arg(request.resultClass));
}

/// Reads a list of equal items after its brace: "5{300}", "5{(1 0 0)}".
bool fillEqual(TextSource& text, const Request& request, std::vector<double>* values)
{
    std::string item = "uniform ";
    for (int byte = text.nextByte(); byte != '}'; byte = text.nextByte()) {
        if (byte < 0 || item.size() > dvf::limits::NUMBER_LENGTH) {
            return false;
        }
        item += static_cast<char>(byte);
    }
    return fillUniform(dvn::Str(withoutBlanksInBrackets(item)).split(" "), request, values);
}

bool readInterior(TextSource& text, const Request& request, std::vector<double>* values)
{
    std::string_view found;
    do {
        if (!text.takeLine(&found)) {
            return logError("Could not find internalField in File");
        }
    } while (!found.starts_with("internalField"));
    // A list may be one long line, so it is copied once more only if it has to be.
    const bool hasBlanks = found.find("( ") != std::string_view::npos || found.find(" )") != std::string_view::npos;
    const std::string utf8 = hasBlanks && !text.isBinary() ? withoutBlanksInBrackets(found) : std::string(found);
    const dvn::Str line(utf8);
    if (hasWord(line.toStdWString(), L"uniform")) {
        return fillUniform(line.split(" ", dvf::limits::WORDS_OF_LINE), request, values);
    }
    const bool isRead = utf8.find('(') == std::string::npos
                            ? FieldInterior::readMultipleLines(text, request, values)
                            : FieldInterior::readSingleLine(text, line, request, values);
    return isRead || text.reportError("Error reading result. File basename is %1");
}

} // namespace

std::optional<OFResultType> FieldInterior::typeOfClass(const dvn::Str& resultClass)
{
    const auto& classes = OFResult::supportedResultClasses();
    const auto entry = classes.find(resultClass.toUtf8());
    return entry == classes.end() ? std::nullopt : std::optional(entry->second.type);
}

int FieldInterior::valueCount(const dvn::Str& resultClass, int itemCount)
{
    const std::optional<OFResultType> type = typeOfClass(resultClass);
    if (!type) {
        logError(dvn::Str(UNKNOWN_CLASS).arg(resultClass));
        return 0;
    }
    const int size = storedSize(*type);
    const std::int64_t values = static_cast<std::int64_t>(itemCount) * size;
    return size < 0 || values > std::numeric_limits<int>::max() ? -1 : static_cast<int>(values);
}

bool FieldInterior::readFile(FoamFile& file, const Request& request, const dvn::Str& objectName,
                             std::vector<double>* values, bool* wasRead)
{
    *wasRead = false;
    if (!file.open(request.path)) {
        return file.text.reportError("Failed to open result file. File basename is %1");
    }
    if (!file.hasHeader) {
        // Files of sampled surfaces hold just the list, and a list that cannot be read is not a failure there.
        *wasRead = readMultipleLines(file.text, request, values);
        return true;
    }
    if (file.header.at("object") != objectName.toUtf8()) {
        return file.text.reportError("Unexpected object in result file. File basename is %1");
    }
    if (file.header.at("class") != request.resultClass.toUtf8()) {
        std::fill(values->begin(), values->end(), dvn::UNDEFINED_DOUBLE);
        *wasRead = true;
        return true;
    }
    *wasRead = readInterior(file.text, request, values);
    return *wasRead;
}

bool FieldInterior::readMultipleLines(TextSource& text, const Request& request, std::vector<double>* values)
{
    int count = 0;
    if (!text.readCount(&count, '{')) {
        return logError(
            dvn::Str("Failed to read number of items in result file. File basename is %1").arg(request.path));
    }
    if (count == 0) {
        values->clear();
        return true;
    }
    if (!checkCount(text, count, request, *values)) {
        return false;
    }
    const OFResultType type = *typeOfClass(request.resultClass);
    if (text.takeByte('{')) {
        return fillEqual(text, request, values);
    }
    const bool isAtList = text.skipToList(values->size() * text.rawForm().realSize);
    if (type == OFResultTensor) {
        return logError(dvn::Str(TENSOR_LIST).arg(request.path));
    }
    if (!isAtList) {
        return false;
    }
    std::size_t found = 0;
    const bool isRead = FieldList::read(text, type != OFResultScalar, values, &found);
    if (found < values->size()) {
        const std::size_t width = values->size() / static_cast<std::size_t>(count);
        text.reportShortList(static_cast<std::size_t>(count), found / width);
    }
    return isRead;
}

bool FieldInterior::readSingleLine(TextSource& text, const dvn::Str& line, const Request& request,
                                   std::vector<double>* values)
{
    const std::wstring_view wide = line.toStdWString();
    const std::size_t bracket = wide.find(L'(');
    const int count = countBefore(wide, std::min(bracket, wide.size()));
    if (count == 0) {
        values->clear();
        return true;
    }
    if (!checkCount(text, count, request, *values)) {
        return false;
    }
    // Compatibility (docs/compatibility.md, "short single-line lists"): the list ends three characters before the line
    // does, even if the line ends otherwise and the last number loses digits.
    const std::size_t first = std::min(bracket, wide.size() - 1) + 1;
    // guard: line-tail
    const std::size_t end = std::max(first, wide.size() - std::min(wide.size(), LIST_TAIL));
    const dvn::Str items(std::wstring(wide.substr(first, end - first)));
    const OFResultType type = *typeOfClass(request.resultClass);
    if (type == OFResultTensor) {
        return logError(dvn::Str(TENSOR_LIST).arg(request.path));
    }
    const std::size_t found = countWords(items.toStdWString()) / static_cast<std::size_t>(storedSize(type));
    if (found < static_cast<std::size_t>(count)) {
        text.reportShortList(static_cast<std::size_t>(count), found);
    }
    if (type == OFResultScalar) {
        scalarsFromLine(items, values);
    } else {
        vectorsFromLine(items, values);
    }
    return true;
}

void FieldInterior::scalarsFromLine(const dvn::Str& line, std::vector<double>* values)
{
    Words words(line.toStdWString());
    // guard: scalars-on-line
    for (double& value : *values) {
        value = leadingNumber(words.next());
    }
}

void FieldInterior::vectorsFromLine(const dvn::Str& line, std::vector<double>* values)
{
    Words words(line.toStdWString());
    for (std::size_t i = 0; i < values->size(); ++i) {
        std::wstring_view word = words.next();
        const std::size_t component = i % VECTOR_COMPONENTS;
        // guard: vectors-on-line
        if (component == 0 && !word.empty()) {
            word.remove_prefix(1);
        } else if (component + 1 == VECTOR_COMPONENTS && !word.empty()) {
            word.remove_suffix(1);
        }
        (*values)[i] = leadingNumber(word);
    }
}
