// SPDX-License-Identifier: MIT
// The single steps of OFFile: operations that callers may use one by one, and that the library itself does not need.
#include "LibCore/Limits.h"
#include "LibCore/Numbers.h"
#include "foamfile/ChunkTranslator.h"
#include "foamfile/Dictionary.h"
#include "foamfile/FaceList.h"
#include "foamfile/FieldInterior.h"
#include "foamfile/FieldList.h"
#include "foamfile/LabelList.h"
#include "foamfile/ListHeader.h"
#include "foamfile/OFFile.h"
#include "foamfile/TokenScanner.h"
#include "foamfile/VectorList.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace {

/// Tokens of a whole "dimensions" entry: the key and seven exponents.
constexpr std::size_t DIMENSION_TOKENS = 8;
/// Initial room for the line starts of a chunk.
constexpr std::size_t LINE_OFFSETS_RESERVE = 10000;

bool copyPendingLine(TextSource& text, char* target)
{
    const bool wasPending = text.isPending();
    std::string_view line;
    if (!text.takePendingLine(TextSource::LINE_BUFFER_SIZE - 1, &line)) {
        if (wasPending) {
            *target = '\0';
        }
        return false;
    }
    std::memcpy(target, line.data(), line.size());
    target[line.size()] = '\0';
    return true;
}

/// Makes the text after the next ";" pending. If the chunk has no ";", nothing is pending, because the list then goes
/// on in the stream.
void keepAfterList(TextSource& text, char* firstLineAfter)
{
    char* const semicolon = std::strchr(firstLineAfter, ';');
    if (semicolon != nullptr) {
        text.keepPending(semicolon + 1);
    }
}

} // namespace

bool OFFile::readHeader()
{
    return m_file->header.read(text());
}

bool OFFile::readDimensions(std::vector<dvn::Str>* tokens)
{
    std::string line;
    if (!getNextLineStartingWith("dimensions", line)) {
        return false;
    }
    *tokens = dvn::Str(line).split(" ", dvf::limits::WORDS_OF_LINE);
    return tokens->size() == DIMENSION_TOKENS;
}

// --- lines and chunks

bool OFFile::getNextLine(char** line) const
{
    return copyPendingLine(text(), *line) || text().readStreamLine(*line);
}

bool OFFile::getNextLineUsingChunk(char** line) const
{
    if (!text().isPending() && !text().isBinary()) {
        static_cast<void>(text().makeChunkPending());
    }
    return getNextLine(line);
}

bool OFFile::getNonTreatedLine(char** line) const
{
    if (copyPendingLine(text(), *line)) {
        return true;
    }
    **line = '\0';
    return false;
}

bool OFFile::getNextChunkOfLines(char** chunk, std::size_t* lastIndex) const
{
    if (text().isPending()) {
        return getNonTreatedChunk(chunk, lastIndex);
    }
    std::size_t length = 0;
    if (!text().readChunkInto(chunk, &length)) {
        return false;
    }
    if (lastIndex != nullptr) {
        *lastIndex = length - 1;
    }
    return true;
}

bool OFFile::getNonTreatedChunk(char** chunk, std::size_t* lastIndex) const
{
    if (!text().isPending()) {
        if (*chunk != nullptr) {
            **chunk = '\0';
        }
        return true;
    }
    *chunk = text().cursor();
    text().handOut();
    if (lastIndex != nullptr) {
        *lastIndex += std::strlen(*chunk);
    }
    return true;
}

bool OFFile::getNextLineStartingWith(const std::string& prefix, std::string& line)
{
    std::string_view taken;
    while (text().takeLine(&taken)) {
        line = taken;
        if (taken.starts_with(prefix)) {
            return true;
        }
    }
    return false;
}

bool OFFile::skipAfterNext(char c) const
{
    return text().skipPast(c);
}

bool OFFile::skipEmptyLines() const
{
    return text().skipLineFeeds();
}

bool OFFile::findName(const std::string& /*name*/) const
{
    return true;
}

// --- numbers

bool OFFile::readNextInt(int* value, char delimiter) const
{
    return text().readInt(delimiter, value) == TextSource::Token::Number;
}

bool OFFile::readNextIntLine(int* value) const
{
    return text().readCount(value);
}

bool OFFile::readNextIntLineFromCurrentChunk(int* value) const
{
    return text().readCountLine(value);
}

bool OFFile::readNextDouble(double* value, char delimiter) const
{
    std::string token;
    for (;;) {
        const int byte = text().nextByte();
        if (byte < 0) {
            return false;
        }
        const char c = static_cast<char>(byte);
        if (c == delimiter) {
            // An empty token counts as consumed whole, as `strtod` has it, and gives 0.0.
            return dvf::tokenToDouble(token, value) || token.empty();
        }
        // One byte longer than any number is enough for a longer token to fail.
        if (token.size() <= dvf::limits::NUMBER_LENGTH) {
            token.push_back(c);
        }
    }
}

bool OFFile::readNextBufInt(char** cursor, int* value, char delimiter, bool stopAtLineEnd) const
{
    const char* p = *cursor;
    int label = 0;
    if (!TokenScanner::scanLabel(p, &label)) {
        return false;
    }
    const char stop = *p;
    if (stop != '\0' && stop != '\n' && stop != ' ' && stop != delimiter) {
        return false;
    }
    TokenScanner::skipStop(p);
    if (stop == '\n' && delimiter != '\n' && !stopAtLineEnd && !TokenScanner::skipPast(p, delimiter)) {
        return false;
    }
    *value = label;
    *cursor += p - *cursor;
    return true;
}

bool OFFile::readNextBufDouble(char** cursor, double* value, char delimiter) const
{
    const char* p = *cursor;
    while (*p != '\0' && *p != '\n' && *p != ' ' && *p != ')' && *p != delimiter) {
        ++p;
    }
    const std::string_view token(*cursor, static_cast<std::size_t>(p - *cursor));
    const char stop = *p;
    TokenScanner::skipStop(p);
    if (stop == '\n' && delimiter != '\n' && !TokenScanner::skipPast(p, delimiter)) {
        return false;
    }
    if (token.empty()) {
        return false;
    }
    *cursor += p - *cursor;
    return dvf::tokenToDouble(token, value);
}

// --- mesh lists

bool OFFile::readNextLabelList(std::vector<int>* labels)
{
    return text().skipToList(labels->size() * text().rawForm().labelSize) &&
           LabelList::read(text(), labels) == labels->size();
}

bool OFFile::readNextLabelListAscii(std::vector<int>* labels)
{
    return LabelList::walk(text(), labels) == labels->size();
}

bool OFFile::readNextLabelListBinary(std::vector<int>* labels)
{
    return text().readRawLabels(labels->data(), labels->size()) == labels->size();
}

bool OFFile::readNextVectorFieldAscii(std::vector<double>* values) const
{
    std::size_t found = 0;
    return FieldList::walkVectors(text(), values, &found);
}

bool OFFile::readNextVectorFieldAsciiPar(std::vector<double>* values) const
{
    VectorList::readPar(text(), values);
    return true;
}

bool OFFile::readNextVectorFieldBinary(std::vector<double>* values) const
{
    return text().readRawReals(values->data(), values->size()) == values->size();
}

bool OFFile::readNextFaceList(FacesData* faces)
{
    std::size_t found = 0;
    return FaceList::readNext(text(), false, faces, &found);
}

bool OFFile::readNextFaceListAsciiPar(FacesData* faces)
{
    FaceList::readPar(text(), faces);
    return true;
}

bool OFFile::readNextFaceListAscii(FacesData* faces)
{
    return FaceList::readSeq(text(), faces);
}

bool OFFile::readNextFaceListBinary(FacesData* /*faces*/)
{
    return false;
}

bool OFFile::readNextFaceCompactList(FacesData* faces)
{
    std::size_t found = 0;
    return FaceList::readNext(text(), true, faces, &found);
}

bool OFFile::readNextFaceCompactListAscii(FacesData* faces)
{
    std::size_t found = 0;
    return FaceList::readCompactAscii(text(), faces, &found);
}

bool OFFile::readNextFaceCompactListBinary(FacesData* faces)
{
    std::size_t found = 0;
    return FaceList::readCompactBinary(text(), faces, &found);
}

std::map<std::string, std::string> OFFile::readBoundaryInfo()
{
    return Dictionary::readBoundaryInfo(text());
}

// --- fields

bool OFFile::checkResultFile(const dvn::Str& path, const dvn::Str& objectName, const dvn::Str& resultClass)
{
    static constexpr ListHeader::Messages MESSAGES = {
        .openFailed = "Failed to open boundary file. File basename is %1",
        .wrongObject = "Unexpected object in dictionary file. File basename is %1",
        .wrongClass = "Unexpected class in result file. File basename is %1"};
    std::string line;
    return ListHeader::open(*m_file, path, objectName, MESSAGES) &&
           ListHeader::checkClass(*m_file, resultClass.toUtf8().c_str(), MESSAGES) &&
           getNextLineStartingWith("boundaryField", line) && skipAfterNext('{');
}

bool OFFile::readResultInSingleLineFormat(const dvn::Str& line, const dvn::Str& path, const dvn::Str& resultClass,
                                          std::vector<double>* values)
{
    return FieldInterior::readSingleLine(text(), line, {path, resultClass}, values);
}

bool OFFile::readResultInMultipleLineFormat(const dvn::Str& path, const dvn::Str& resultClass,
                                            std::vector<double>* values)
{
    return FieldInterior::readMultipleLines(text(), {path, resultClass}, values);
}

std::vector<std::map<std::string, std::string>>
OFFile::readBoundariesResult(const dvn::Str& resultClass, const std::vector<std::string>& names,
                             std::vector<std::vector<double>>& boundaryValues)
{
    return FieldPatches::read(text(), resultClass, names, boundaryValues, &m_listOnKeyLine);
}

bool OFFile::readUniformValues(const dvn::Str& resultClass, std::vector<dvn::Str>& tokens, std::vector<double>* values)
{
    return FieldPatches::readUniform(resultClass, tokens, values);
}

void OFFile::readNonUniformValues(std::vector<dvn::Str>& tokens, std::vector<double>* values)
{
    FieldPatches::readNonUniform(text(), tokens, m_listOnKeyLine, values);
}

bool OFFile::readNextVolScalarField(std::vector<double>* values)
{
    return FieldList::readNext(text(), false, values);
}

bool OFFile::readNextVolVectorField(std::vector<double>* values)
{
    return FieldList::readNext(text(), true, values);
}

bool OFFile::readNextVolScalarFieldAscii(std::vector<double>* values)
{
    std::size_t found = 0;
    return FieldList::walkScalars(text(), values, &found);
}

bool OFFile::readNextVolScalarFieldBinary(std::vector<double>* values)
{
    return text().readRawReals(values->data(), values->size()) == values->size();
}

bool OFFile::readNextVolTensorField(std::vector<double>* /*values*/) const
{
    static_cast<void>(text().skipToList());
    return false;
}

bool OFFile::readNextVolTensorFieldAscii(std::vector<double>* /*values*/)
{
    return false;
}

bool OFFile::readNextVolTensorFieldBinary(std::vector<double>* /*values*/)
{
    return false;
}

bool OFFile::getVolTensorFieldFromLine(std::vector<double>* /*values*/, const dvn::Str& /*line*/) const
{
    return false;
}

bool OFFile::getVolScalarFieldFromLine(std::vector<double>* values, const dvn::Str& line) const
{
    FieldInterior::scalarsFromLine(line, values);
    return true;
}

bool OFFile::getVolVectorFieldFromLine(std::vector<double>* values, const dvn::Str& line) const
{
    FieldInterior::vectorsFromLine(line, values);
    return true;
}

bool OFFile::shouldApplyCellValueInBoundaryFace(const std::map<std::string, std::string>& boundaryEntries) const
{
    return FieldPatches::continuesCellValues(boundaryEntries);
}

dvn::Str OFFile::findValueKeys(const std::map<std::string, std::string>& boundaryEntries) const
{
    for (const auto& [key, value] : boundaryEntries) {
        if (OFBoundary::isResultKeyString(key)) {
            return value;
        }
    }
    return {};
}

bool OFFile::applyMeshItemValueInBoundaryItem(std::vector<double>* boundaryItemValues,
                                              const std::size_t& componentCount,
                                              const std::vector<double>* meshItemValues,
                                              const std::vector<int>& meshItemIds) const
{
    FieldPatches::copyMeshItems(*meshItemValues, meshItemIds, componentCount, boundaryItemValues);
    return true;
}

int OFFile::calculateNumberOfValues(const dvn::Str& resultClass, int itemCount) const
{
    return FieldInterior::valueCount(resultClass, itemCount);
}

// --- two passes over a chunk

bool OFFile::markChunkThenReadChunkStrategy(std::vector<double>* values, int componentsPerLine)
{
    if (componentsPerLine < 1) {
        return false;
    }
    const auto components = static_cast<std::size_t>(componentsPerLine);
    const std::size_t items = values->size() / components;
    ChunkTranslator translator;
    m_lineOffsets.reserve(LINE_OFFSETS_RESERVE);
    std::size_t itemsRead = 0;
    while (itemsRead < items) {
        char* chunk = nullptr;
        std::size_t lastIndex = 0;
        if (!getNextChunkOfLines(&chunk, &lastIndex) || chunk == nullptr) {
            return false;
        }
        if (*chunk == '\0') {
            // The chunk was used up to its end; the list goes on in the next one.
            continue;
        }
        m_lineOffsets.clear();
        translator.split('\n', chunk, lastIndex, &m_lineOffsets);
        const std::size_t lines = m_lineOffsets.size();
        // guard: two-pass-lines
        const std::size_t count = std::min(lines, items - itemsRead);
        if (lines + itemsRead >= items) {
            // Not the next marked line: a ";" ends the marking, and which lines after it are marked depends on how the
            // loop was split.
            char* const lastItem = chunk + m_lineOffsets[count - 1];
            keepAfterList(text(), lastItem + std::strcspn(lastItem, "\n"));
        }
        double* const target = values->data() + components * itemsRead;
        if (componentsPerLine == 1) {
            translator.readOneDoublePerLine(chunk, m_lineOffsets, '\n', target, count);
        } else if (componentsPerLine == 3) {
            std::array<char, 3> delimiters = {' ', ' ', ')'};
            translator.readThreeDoublePerLine(chunk, m_lineOffsets, delimiters.data(), target, count);
        } else {
            return false;
        }
        itemsRead += lines;
    }
    m_lineOffsets.clear();
    return true;
}
