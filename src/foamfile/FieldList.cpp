// SPDX-License-Identifier: MIT
#include "foamfile/FieldList.h"

#include "foamfile/ListAhead.h"
#include "foamfile/OFLogger.h"
#include "foamfile/TokenScanner.h"
#include "records/Components.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

using TokenScanner::ComponentEnd;

/// Parses the vectors of a piece. A vector that is malformed or does not end on its line leaves the piece in doubt.
void readVectorsOfPiece(FieldPieces::Piece* piece, const char* end)
{
    const char* p = piece->begin;
    for (;;) {
        if (p == piece->limit || *p != '(') {
            p = static_cast<const char*>(std::memchr(p, '(', static_cast<std::size_t>(piece->limit - p)));
            if (p == nullptr) {
                break;
            }
        }
        const char* vector = p + 1;
        while (*vector == ' ') {
            ++vector;
        }
        double* const xyz = piece->room(VECTOR_COMPONENTS);
        if (TokenScanner::scanVector<ComponentEnd::DelimiterBlankOrBracketOfTheLine>(vector, end, VECTOR_COMPONENTS,
                                                                                     xyz) < VECTOR_COMPONENTS ||
            vector > piece->limit) {
            return;
        }
        piece->count += VECTOR_COMPONENTS;
        p = vector;
        TokenScanner::skipLineFeeds(p, piece->limit);
    }
    // The walk would skip the rest too, as there is no further bracket.
    piece->stop = piece->limit;
    piece->isClean = true;
}

/// Parses the scalars of a piece. Each is within a line, and the line feeds before a piece belong to the number before
/// it.
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

/// Leaves the text after the ";" of a list pending, if the chunk still holds it.
void endList(TextSource& text, const TextSource::Chunk& chunk, const char* p, int chunks, std::size_t valueCount)
{
    if (!TokenScanner::skipPast(p, ';')) {
        return;
    }
    text.keepPending(chunk, p);
    OFLogger::get().logDebug("OFFile",
                             dvn::Str("treated %1 chunks for reading %2 doubles").arg(chunks).arg(valueCount));
}

bool reportMissing(std::size_t found, std::size_t wanted)
{
    return OFLogger::get().logError(
        "OFFile", dvn::Str("Failed to read values from file. Read %1 values from %2").arg(found).arg(wanted));
}

} // namespace

bool FieldList::readNext(TextSource& text, bool isVector, std::vector<double>* values)
{
    std::size_t found = 0;
    return text.skipToList(values->size() * text.rawForm().realSize) && read(text, isVector, values, &found);
}

bool FieldList::read(TextSource& text, bool isVector, std::vector<double>* values, std::size_t* found)
{
    if (text.isBinary()) {
        // guard: values-binary
        *found = text.readRawReals(values->data(), values->size());
        return *found == values->size();
    }
    return isVector ? walkVectors(text, values, found) : walkScalars(text, values, found);
}

bool FieldList::walkScalars(TextSource& text, std::vector<double>* values, std::size_t* found)
{
    if (values->empty()) {
        return reportMissing(0, 0);
    }
    ListAhead ahead(text, values);
    int chunks = 0;
    TextSource::Chunk chunk;
    for (;;) {
        ahead.read(readScalarsOfPiece, found);
        if (!text.nextChunk(&chunk)) {
            return false;
        }
        ++chunks;
        const char* p = chunk.begin + ahead.offset();
        if (*found != 0) {
            // Line feeds that a chunk border cut off from the number before them.
            TokenScanner::skipLineFeeds(p);
        }
        if (*p != '\n') {
            p = ahead.readChunk(p, chunk.end, readScalarsOfPiece, found);
            if (*found != 0) {
                TokenScanner::skipLineFeeds(p);
            }
        }
        // guard: scalars-sequential
        while (*found < values->size() && *p != '\0') {
            if (!TokenScanner::scanScalar(p, chunk.end, values->data() + *found)) {
                text.keepPending(chunk, p);
                return false;
            }
            ++*found;
            TokenScanner::skipStop(p);
            TokenScanner::skipLineFeeds(p);
        }
        if (*found == values->size()) {
            endList(text, chunk, p, chunks + ahead.chunks(), *found);
            return true;
        }
    }
}

bool FieldList::walkVectors(TextSource& text, std::vector<double>* values, std::size_t* found)
{
    ListAhead ahead(text, values);
    int chunks = 0;
    TextSource::Chunk chunk;
    for (;;) {
        ahead.read(readVectorsOfPiece, found);
        if (!text.nextChunk(&chunk)) {
            return reportMissing(*found, values->size());
        }
        ++chunks;
        const char* p = ahead.readChunk(chunk.begin + ahead.offset(), chunk.end, readVectorsOfPiece, found);
        // guard: vectors-sequential
        while (*found < values->size() && TokenScanner::skipPast(p, '(')) {
            p += std::strspn(p, " ");
            const std::size_t wanted = std::min(VECTOR_COMPONENTS, values->size() - *found);
            const std::size_t came = TokenScanner::scanVector<ComponentEnd::DelimiterBlankOrBracket>(
                p, chunk.end, wanted, values->data() + *found);
            *found += came;
            if (came < wanted) {
                text.keepPending(chunk, p);
                return false;
            }
        }
        if (*found == values->size()) {
            endList(text, chunk, p, chunks + ahead.chunks(), *found);
            return true;
        }
    }
}
