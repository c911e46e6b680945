// SPDX-License-Identifier: MIT
#include "foamfile/DictionaryFile.h"

#include "foamfile/OFLogger.h"
#include "foamfile/OFUtilities.h"
#include "foamfile/RawForm.h"

#include <string_view>

namespace {

/// How far up from a file its case folder may be: processor, time, region, `uniform`.
constexpr int MOST_FOLDERS_UP = 5;

/// The folder of the case that a file is in; empty if it is in none.
std::string caseFolderOf(std::string path)
{
    for (int i = 0; i < MOST_FOLDERS_UP; ++i) {
        const std::size_t slash = path.rfind('/');
        if (slash == std::string::npos || slash == 0) {
            break;
        }
        path.resize(slash);
        if (OFUtilities::isRegularFileOrGz(path + "/system/controlDict")) {
            return path;
        }
    }
    return {};
}

} // namespace

bool FoamChars::fillChunk()
{
    const bool hasCome = m_text.nextChunk(&m_chunk);
    m_next = hasCome ? m_chunk.begin : m_chunk.end;
    return hasCome && m_next != m_chunk.end;
}

int FoamChars::peek()
{
    if (m_isEnded || !m_isOpen || m_bytesLeft == 0) {
        return END;
    }
    if (m_byte != NONE) {
        return m_byte;
    }
    if (!m_hasChunks) {
        m_byte = m_text.nextByte();
        return m_byte;
    }
    // guard: dictionary-chunk
    if (m_next == m_chunk.end && !fillChunk()) {
        return END;
    }
    return static_cast<unsigned char>(*m_next);
}

int FoamChars::take()
{
    const int c = peek();
    if (m_byte != NONE && c != END) {
        m_byte = NONE;
    } else if (c != END) {
        ++m_next;
    }
    m_bytesLeft -= c == END ? 0 : 1;
    return c;
}

void FoamChars::end()
{
    m_isEnded = true;
}

void FoamChars::setForm(bool isBinary, const RawForm& form)
{
    m_text.setBinary(isBinary);
    m_text.setRawForm(form);
    m_hasChunks = !isBinary;
}

TextSource& FoamChars::handOver()
{
    if (m_byte >= 0) {
        m_text.returnByte(static_cast<char>(m_byte));
    }
    m_byte = NONE;
    if (m_next != m_chunk.end) {
        m_text.keepPending(m_chunk, m_next);
    }
    m_chunk = TextSource::Chunk();
    m_next = nullptr;
    return m_text;
}

foamdict::Content DictionaryClient::parse()
{
    const std::string path = m_path.toUtf8();
    foamdict::Content content = foamdict::parse(m_chars, {path, caseFolderOf(path)}, *this);
    if (!content.isComplete) {
        report(content.problem);
    }
    return content;
}

void DictionaryClient::onHeader(const foamdict::Dictionary& header)
{
    m_isBinary = firstWord(header, "format") == "binary";
    m_chars.setForm(m_isBinary, rawFormOfArch(firstWord(header, "arch")));
}

std::unique_ptr<foamdict::CharSource> DictionaryClient::openInclude(const std::string& path)
{
    auto included = std::make_unique<FoamChars>(dvn::Str(path));
    if (!included->isOpen()) {
        return nullptr;
    }
    // Includes are always text.
    included->setForm(false, RawForm());
    return included;
}

void DictionaryClient::report(const std::string& problem)
{
    OFLogger::get().logInfo("OFFile", dvn::Str(excerpt(problem)));
}

TextSource& DictionaryClient::sourceOf(const foamdict::ListPlace& place)
{
    // Every source that the reader of dictionaries has is one of these.
    return static_cast<FoamChars&>(place.chars).handOver();
}

void DictionaryClient::skipList(const foamdict::ListPlace& place)
{
    int depth = 0;
    do {
        const int c = place.chars.take();
        if (c == foamdict::CharSource::END) {
            return;
        }
        depth += c == '(' || c == '{' ? 1 : c == ')' || c == '}' ? -1 : 0;
    } while (depth > 0);
}

std::string joinedTokens(const std::vector<foamdict::Token>& tokens)
{
    std::string text;
    for (const foamdict::Token& token : tokens) {
        text += (text.empty() ? "" : " ") + token.text;
    }
    return text;
}

std::string firstWord(const foamdict::Dictionary& dictionary, std::string_view keyword)
{
    const foamdict::Entry* const entry = dictionary.find(keyword);
    return entry == nullptr || entry->tokens.empty() ? std::string() : entry->tokens.front().text;
}
