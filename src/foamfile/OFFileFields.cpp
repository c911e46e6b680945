// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "DvnCore/Undefined.h"
#include "LibCore/Numbers.h"
#include "foamfile/CheckedLookup.h"
#include "foamfile/FieldPieces.h"
#include "foamfile/OFLogger.h"
#include "foamfile/TokenScanner.h"
#include "records/OFResult.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace {

constexpr const char* BAD_COUNT = "Invalid number of items in result file. File basename is %1";
constexpr const char* UNKNOWN_CLASS = "Invalid resultClassName in open foam file. We do not recognize:  %1";
constexpr const char* TENSOR_LIST =
    "Error reading result, tensor results are currently not supported. File basename is %1";
/// Components that an array holds of one tensor.
constexpr int STORED_TENSOR_SIZE = 6;
/// Components that a file holds of one tensor.
constexpr int FULL_TENSOR_SIZE = 9;
constexpr int VECTOR_SIZE = 3;
/// What ends a list on one line: the bracket, the semicolon and the line feed.
constexpr std::size_t LIST_TAIL = 3;

bool logError(const dvn::Str& message)
{
    return OFLogger::get().logError("OFFile", message);
}

std::optional<OFResultType> typeOfClass(const dvn::Str& resultClass)
{
    const auto& classes = OFResult::supportedResultClasses();
    const auto entry = classes.find(resultClass.toUtf8());
    return entry == classes.end() ? std::nullopt : std::optional(entry->second.type);
}

/// Components of one item as arrays hold it; -1 for a kind that has no number.
int storedSize(OFResultType type)
{
    switch (type) {
    case OFResultScalar:
        return 1;
    case OFResultVector:
    case OFResultDisplacement:
        return VECTOR_SIZE;
    case OFResultTensor:
        return STORED_TENSOR_SIZE;
    }
    return -1;
}

/// Walks over the words between blanks of a text, in place: a list on one line may hold any number of them.
class Words
{
public:
    explicit Words(std::wstring_view text) : m_rest(text) {}

    /// The next word; empty behind the last one.
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

/// The count that stands directly in front of the bracket at `bracket`.
///
/// Digits are converted as `std::stoi` does, whose exception for text that is no number callers know. A number that is
/// too large comes out as the limit of its sign, which no list has.
int countInFrontOf(std::wstring_view line, std::size_t bracket)
{
    const std::size_t blank = line.rfind(L' ', bracket);
    const std::wstring_view text = line.substr(blank == std::wstring_view::npos ? 0 : blank + 1);
    int count = 0;
    if (!dvf::extractInt(text, &count) && count == 0) {
        throw std::invalid_argument("stoi");
    }
    return count;
}

/// Splits off the numbers of a uniform value; false, with nothing or a message said, if one is missing or none.
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

/// Reads the scalars of a piece of a list. Each stands within a line, and the line feeds in front of a piece belong to
/// the number before it.
void readScalarsOfPiece(FieldPieces::Piece* piece, const char* end)
{
    const char* p = piece->begin;
    TokenScanner::skipLineFeeds(p, piece->limit);
    while (p < piece->limit && *p != '\0') {
        if (!TokenScanner::scanScalar(p, end, piece->room(1))) {
            return;
        }
        ++piece->count;
        TokenScanner::skipStop(p);
        TokenScanner::skipLineFeeds(p, piece->limit);
    }
    piece->stop = p;
    piece->isClean = true;
}

} // namespace

int resultSizeFromName(const dvn::Str& resultClass)
{
    const std::optional<OFResultType> type = typeOfClass(resultClass);
    if (!type) {
        logError(dvn::Str("Unexpected result class name. Not supported %1").arg(resultClass));
        return 1;
    }
    // Nine and not the six of `calculateNumberOfValues`: the items of a patch stand nine apart in files.
    return *type == OFResultTensor ? FULL_TENSOR_SIZE : *type == OFResultVector ? VECTOR_SIZE : 1;
}

int OFFile::calculateNumberOfValues(const dvn::Str& resultClass, int itemCount) const
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

bool OFFile::readResult(const dvn::Str& path, const dvn::Str& objectName, const dvn::Str& resultClass,
                        std::vector<double>* values)
{
    m_interiorWasRead = false;
    if (!open(path)) {
        return reportError("Failed to open result file. File basename is %1");
    }
    if (!m_hasHeader) {
        // Files of sampled surfaces have no more than the list, and a list that cannot be read is no failure there.
        m_interiorWasRead = readResultInMultipleLineFormat(path, resultClass, values);
        return true;
    }
    if (checkedLookup(m_headerEntries, std::string("object")) != objectName.toUtf8()) {
        return reportError("Unexpected object in result file. File basename is %1");
    }
    if (checkedLookup(m_headerEntries, std::string("class")) != resultClass.toUtf8()) {
        std::fill(values->begin(), values->end(), dvn::UNDEFINED_DOUBLE);
        m_interiorWasRead = true;
        return true;
    }
    m_interiorWasRead = readInteriorField(path, resultClass, values);
    return m_interiorWasRead;
}

bool OFFile::readInteriorField(const dvn::Str& path, const dvn::Str& resultClass, std::vector<double>* values)
{
    std::string text;
    if (!getNextLineStartingWith("internalField", text)) {
        return logError("Could not find internalField in File");
    }
    const dvn::Str line(text);
    if (hasWord(line.toStdWString(), L"uniform")) {
        return fillUniformInterior(line.split(" ", MOST_WORDS), path, resultClass, values);
    }
    const bool isRead = text.find('(') == std::string::npos
                            ? readResultInMultipleLineFormat(path, resultClass, values)
                            : readResultInSingleLineFormat(line, path, resultClass, values);
    return isRead || reportError("Error reading result. File basename is %1");
}

bool OFFile::fillUniformInterior(const std::vector<dvn::Str>& tokens, const dvn::Str& path, const dvn::Str& resultClass,
                                 std::vector<double>* values) const
{
    const auto uniform = std::find(tokens.begin(), tokens.end(), dvn::Str("uniform"));
    const std::size_t first = static_cast<std::size_t>(uniform - tokens.begin()) + 1;
    if (first == tokens.size()) {
        return logError(dvn::Str("Failed to read uniform value in result file. File basename is %1").arg(path));
    }
    const std::optional<OFResultType> type = typeOfClass(resultClass);
    if (!type) {
        return logError(dvn::Str("Could not recognize result class %1 from File %2").arg(resultClass).arg(path));
    }
    const int size = storedSize(*type);
    if (size < 0) {
        return logError(dvn::Str("Could not assign uniform value - unknown class name %1. File basename is %1")
                            .arg(resultClass)
                            .arg(path));
    }
    // Of a tensor's nine numbers the first six fill the array, as its items have six.
    const auto width = static_cast<std::size_t>(size);
    std::array<double, STORED_TENSOR_SIZE> numbers = {};
    if (!convertUniform(tokens, first, path, numbers.data(), width)) {
        return false;
    }
    for (std::size_t i = 0; i + width <= values->size(); i += width) {
        std::copy_n(numbers.begin(), width, values->begin() + static_cast<std::ptrdiff_t>(i));
    }
    return true;
}

bool OFFile::checkInteriorCount(int count, const dvn::Str& path, const dvn::Str& resultClass,
                                const std::vector<double>& values) const
{
    const bool isValid = count >= 0 && count <= LARGEST_COUNT &&
                         (m_stream == nullptr || canHold(static_cast<std::uint64_t>(count), BYTES_PER_NUMBER));
    const std::int64_t largest = std::numeric_limits<int>::max();
    const std::optional<OFResultType> type = typeOfClass(resultClass);
    if (!isValid || (type && static_cast<std::int64_t>(count) * storedSize(*type) > largest)) {
        return logError(dvn::Str(BAD_COUNT).arg(path));
    }
    const int needed = calculateNumberOfValues(resultClass, count);
    if (needed < 0) {
        return logError(dvn::Str("Unrecognized result class name %1. File basename is %2").arg(resultClass).arg(path));
    }
    if (values.size() != static_cast<std::size_t>(needed)) {
        return logError(
            dvn::Str("Error reading result, values buffer is not correctly dimensioned. File basename is %1")
                .arg(path));
    }
    return type || logError(dvn::Str(UNKNOWN_CLASS).arg(resultClass));
}

bool OFFile::readResultInMultipleLineFormat(const dvn::Str& path, const dvn::Str& resultClass,
                                            std::vector<double>* values)
{
    int count = 0;
    if (!readNextIntLine(&count)) {
        return logError(dvn::Str("Failed to read number of items in result file. File basename is %1").arg(path));
    }
    if (count == 0) {
        values->clear();
        return true;
    }
    if (!checkInteriorCount(count, path, resultClass, *values)) {
        return false;
    }
    const OFResultType type = *typeOfClass(resultClass);
    const bool isAtList = skipToList();
    if (type == OFResultTensor) {
        return logError(dvn::Str(TENSOR_LIST).arg(path));
    }
    if (!isAtList) {
        return false;
    }
    std::size_t found = 0;
    const bool isRead = readFieldList(type != OFResultScalar, values, &found);
    if (found < values->size()) {
        const std::size_t width = values->size() / static_cast<std::size_t>(count);
        reportShortList(static_cast<std::size_t>(count), found / width);
    }
    return isRead;
}

bool OFFile::readResultInSingleLineFormat(const dvn::Str& line, const dvn::Str& path, const dvn::Str& resultClass,
                                          std::vector<double>* values)
{
    const std::wstring_view text = line.toStdWString();
    const std::size_t bracket = text.find(L'(');
    const int count = countInFrontOf(text, std::min(bracket, text.size()));
    if (count == 0) {
        values->clear();
        return true;
    }
    if (!checkInteriorCount(count, path, resultClass, *values)) {
        return false;
    }
    // The list ends three characters before the line does. Another ending cuts elsewhere, which the conversion of the
    // last number does not mind.
    const std::size_t first = std::min(bracket, text.size() - 1) + 1;
    const std::size_t end = std::max(first, text.size() - std::min(text.size(), LIST_TAIL));
    const dvn::Str items(std::wstring(text.substr(first, end - first)));
    const OFResultType type = *typeOfClass(resultClass);
    if (type == OFResultTensor) {
        return logError(dvn::Str(TENSOR_LIST).arg(path));
    }
    const std::size_t found = countWords(items.toStdWString()) / static_cast<std::size_t>(storedSize(type));
    if (found < static_cast<std::size_t>(count)) {
        reportShortList(static_cast<std::size_t>(count), found);
    }
    return type == OFResultScalar ? getVolScalarFieldFromLine(values, items) : getVolVectorFieldFromLine(values, items);
}

bool OFFile::getVolScalarFieldFromLine(std::vector<double>* values, const dvn::Str& line) const
{
    Words words(line.toStdWString());
    for (double& value : *values) {
        value = leadingNumber(words.next());
    }
    return true;
}

bool OFFile::getVolVectorFieldFromLine(std::vector<double>* values, const dvn::Str& line) const
{
    Words words(line.toStdWString());
    for (std::size_t i = 0; i < values->size(); ++i) {
        std::wstring_view word = words.next();
        const std::size_t component = i % VECTOR_SIZE;
        if (component == 0 && !word.empty()) {
            word.remove_prefix(1);
        } else if (component + 1 == VECTOR_SIZE && !word.empty()) {
            word.remove_suffix(1);
        }
        (*values)[i] = leadingNumber(word);
    }
    return true;
}

bool OFFile::getVolTensorFieldFromLine(std::vector<double>* /*values*/, const dvn::Str& /*line*/) const
{
    return false;
}

bool OFFile::readFieldList(bool isVector, std::vector<double>* values, std::size_t* found) const
{
    if (m_isBinary) {
        *found = readRaw(values->data(), sizeof(double), values->size());
        return *found == values->size();
    }
    return isVector ? walkVectors(values, found) : walkScalars(values, found);
}

bool OFFile::readNextVolScalarField(std::vector<double>* values)
{
    std::size_t found = 0;
    return skipToList() && readFieldList(false, values, &found);
}

bool OFFile::readNextVolVectorField(std::vector<double>* values)
{
    std::size_t found = 0;
    return skipToList() && readFieldList(true, values, &found);
}

bool OFFile::readNextVolTensorField(std::vector<double>* /*values*/) const
{
    // The search is the whole effect.
    static_cast<void>(skipToList());
    return false;
}

bool OFFile::readNextVolScalarFieldAscii(std::vector<double>* values)
{
    std::size_t found = 0;
    return walkScalars(values, &found);
}

/// Reads scalars to the end of the target or to the first text that is none.
bool OFFile::walkScalars(std::vector<double>* values, std::size_t* found) const
{
    if (values->empty()) {
        return logError(dvn::Str("Failed to read values from file. Read %1 values from %2").arg(0).arg(0));
    }
    int chunks = 0;
    Chunk chunk;
    FieldPieces pieces;
    while (nextChunk(&m_chunkBuffer, &chunk)) {
        ++chunks;
        const char* p = chunk.begin;
        if (*found != 0) {
            // Line feeds that a border cut off from the number before them.
            TokenScanner::skipLineFeeds(p);
        }
        if (*p != '\n') {
            std::size_t ahead = 0;
            p = pieces.read(p, chunk.end, values->size() - *found, values->data() + *found, readScalarsOfPiece, &ahead);
            *found += ahead;
            if (ahead != 0) {
                TokenScanner::skipLineFeeds(p);
            }
        }
        while (*found < values->size() && *p != '\0') {
            if (!TokenScanner::scanScalar(p, chunk.end, values->data() + *found)) {
                keepPending(chunk.begin + (p - chunk.begin));
                return false;
            }
            ++*found;
            TokenScanner::skipStop(p);
            TokenScanner::skipLineFeeds(p);
        }
        if (*found == values->size()) {
            endList(chunk, p, chunks, *found);
            return true;
        }
    }
    return false;
}

bool OFFile::readNextVolScalarFieldBinary(std::vector<double>* values)
{
    return readRaw(values->data(), sizeof(double), values->size()) == values->size();
}

bool OFFile::readNextVolTensorFieldAscii(std::vector<double>* /*values*/)
{
    return false;
}

bool OFFile::readNextVolTensorFieldBinary(std::vector<double>* /*values*/)
{
    return false;
}
