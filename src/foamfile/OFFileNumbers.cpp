// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "LibCore/Numbers.h"
#include "foamfile/GzStream.h"
#include "foamfile/TokenScanner.h"

#include <algorithm>

bool OFFile::readNextInt(int* value, char delimiter) const
{
    return nextIntToken(value, delimiter) == IntToken::Number;
}

OFFile::IntToken OFFile::nextIntToken(int* value, char delimiter) const
{
    std::uint32_t sum = 0;
    std::size_t digits = 0;
    for (;;) {
        const int byte = m_stream == nullptr ? GzStream::END_OF_DATA : m_stream->nextByte();
        if (byte == GzStream::END_OF_DATA) {
            return IntToken::EndOfFile;
        }
        const char c = static_cast<char>(byte);
        if (c == delimiter || c == '\r' || c == '(') {
            if (digits == 0) {
                return IntToken::NoNumber;
            }
            if (c == '(') {
                m_stream->unread(c);
            }
            // Wraps on purpose: the reader of the list refuses what comes out negative.
            *value = static_cast<int>(sum);
            return IntToken::Number;
        }
        if (!TokenScanner::isDigit(c) || digits == dvf::MAX_NUMBER_LENGTH) {
            return IntToken::NoNumber;
        }
        sum = sum * 10 + static_cast<std::uint32_t>(c - '0');
        ++digits;
    }
}

bool OFFile::readNextIntLine(int* value) const
{
    // Each failed attempt has used up the byte at which it stopped, so this ends.
    IntToken token = IntToken::NoNumber;
    while (token == IntToken::NoNumber) {
        token = nextIntToken(value, '\n');
    }
    return token == IntToken::Number;
}

bool OFFile::readNextIntLineFromCurrentChunk(int* value) const
{
    std::string_view line;
    while (takeLine(&line)) {
        // Text of a chunk ends at a NUL and not at the end of the line, so the digits need an end of their own.
        const std::size_t digits = std::min(line.find_first_not_of("0123456789"), line.size());
        const bool isWhole = digits == line.size() || line[digits] == ' ' || line[digits] == '\n';
        const char* cursor = line.data();
        if (isWhole && TokenScanner::scanLabel(cursor, value)) {
            return true;
        }
    }
    return false;
}

bool OFFile::readNextDouble(double* value, char delimiter) const
{
    std::string token;
    for (;;) {
        const int byte = m_stream == nullptr ? GzStream::END_OF_DATA : m_stream->nextByte();
        if (byte == GzStream::END_OF_DATA) {
            return false;
        }
        const char c = static_cast<char>(byte);
        if (c == delimiter) {
            // Nothing is consumed whole, as `strtod` has it: an empty token is 0.0.
            return dvf::tokenToDouble(token, value) || token.empty();
        }
        // One byte longer than any number is enough for a longer token to fail.
        if (token.size() <= dvf::MAX_NUMBER_LENGTH) {
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
    if (stop == '\n' && delimiter != '\n' && !stopAtLineEnd && !TokenScanner::skipBehind(p, delimiter)) {
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
    if (stop == '\n' && delimiter != '\n' && !TokenScanner::skipBehind(p, delimiter)) {
        return false;
    }
    if (token.empty()) {
        return false;
    }
    *cursor += p - *cursor;
    return dvf::tokenToDouble(token, value);
}
