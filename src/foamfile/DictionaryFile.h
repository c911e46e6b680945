// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "foamdict/Parse.h"
#include "foamfile/TextSource.h"

#include <cstddef>
#include <memory>
#include <string>

/// The characters of a case file for the reader of dictionaries, and the way from there to the readers of lists.
class FoamChars final : public foamdict::CharSource
{
public:
    /// Opens a file, or its ".gz"; only a regular file is opened.
    explicit FoamChars(const dvn::Str& path)
    {
        m_text.setReading(Reading::Extended);
        m_isOpen = m_text.open(path);
    }

    bool isOpen() const { return m_isOpen; }
    int peek() override;
    int take() override;

    /// Ends the file here, for a caller who has seen enough.
    void end();
    /// Ends the file after so many further bytes.
    void endAfter(std::size_t bytes) { m_bytesLeft = bytes; }
    /// Says what the header says: whether the file is binary, and in which form its raw values are. Text that is not
    /// binary comes in chunks from here on.
    void setForm(bool isBinary, const RawForm& form);
    /// The source, standing at the next character, for a reader of lists. The characters go on where that reader stops.
    TextSource& handOver();

private:
    bool fillChunk();

    TextSource m_text;
    TextSource::Chunk m_chunk;
    char* m_next = nullptr;
    /// The byte of the stream that was looked at; `NONE` if there is none.
    int m_byte = NONE;
    bool m_isOpen = false;
    bool m_hasChunks = false;
    bool m_isEnded = false;
    std::size_t m_bytesLeft = static_cast<std::size_t>(-1);
    static constexpr int NONE = -2;
};

/// What all readers of dictionaries do: opens includes, takes the form of raw lists from the header, and logs problems.
class DictionaryClient : public foamdict::Client
{
public:
    explicit DictionaryClient(const dvn::Str& path) : m_path(path), m_chars(path) {}

    bool isOpen() const { return m_chars.isOpen(); }
    /// Reads the file. What was read before a problem is there; the problem is in the log.
    foamdict::Content parse();

    void onHeader(const foamdict::Dictionary& header) override;
    std::unique_ptr<foamdict::CharSource> openInclude(const std::string& path) override;
    void report(const std::string& problem) override;

protected:
    /// The file itself, for a client that needs no more of it.
    FoamChars& chars() { return m_chars; }
    bool isBinary() const { return m_isBinary; }

    /// The source of a list that `readList` was called for.
    static TextSource& sourceOf(const foamdict::ListPlace& place);
    /// Goes on past a list that nobody needs, without keeping it.
    static void skipList(const foamdict::ListPlace& place);

private:
    dvn::Str m_path;
    FoamChars m_chars;
    bool m_isBinary = false;
};

/// The words of a value with one blank between them.
std::string joinedTokens(const std::vector<foamdict::Token>& tokens);
/// The text of the first token of an entry; empty if there is no such entry or it has no value.
std::string firstWord(const foamdict::Dictionary& dictionary, std::string_view keyword);
