// SPDX-License-Identifier: MIT
#include "foamfile/FoamHeader.h"

#include "LibCore/Limits.h"
#include "foamdict/Parse.h"
#include "foamfile/CheckedLookup.h"
#include "foamfile/DictionaryFile.h" // joinedTokens
#include "foamfile/TextLines.h"

#include <string_view>

namespace {

/// What opens the header. A brace after this many characters opens it too.
constexpr std::string_view HEADER_NAME = "FoamFile";

/// Compatibility (docs/compatibility.md, "any line with a brace opens the header"): any long line with a brace in it
/// opens the block, whatever its first columns hold. This accepts "FoamFile{" as well as a name with blanks around it,
/// and no list starts with such a line.
bool opensBlockAtOnce(std::string_view line)
{
    return line.size() > HEADER_NAME.size() && line.find('{', HEADER_NAME.size()) != std::string_view::npos;
}

/// The bytes of a file up to the end of its header.
class HeaderChars final : public foamdict::CharSource
{
public:
    explicit HeaderChars(TextSource& text) : m_text(text) {}

    int peek() override
    {
        if (!m_hasByte && !m_isEnded) {
            // guard: header-bytes
            m_byte = ++m_count > dvf::limits::HEADER_BYTES ? END : m_text.nextByte();
            m_hasByte = true;
        }
        return m_isEnded ? END : m_byte;
    }
    int take() override
    {
        const int byte = peek();
        m_hasByte = byte == END;
        return byte;
    }
    void end() { m_isEnded = true; }

private:
    TextSource& m_text;
    int m_byte = END;
    std::size_t m_count = 0;
    bool m_hasByte = false;
    bool m_isEnded = false;
};

class HeaderClient final : public foamdict::Client
{
public:
    HeaderClient(HeaderChars* chars, std::map<std::string, std::string>* entries) : m_chars(chars), m_entries(entries)
    {}

    void onHeader(const foamdict::Dictionary& header) override
    {
        for (const foamdict::Entry& entry : header.entries()) {
            m_entries->emplace(entry.keyword, joinedTokens(entry.tokens));
        }
        m_hasHeader = true;
        m_chars->end();
    }
    bool hasHeader() const { return m_hasHeader; }

private:
    HeaderChars* m_chars;
    std::map<std::string, std::string>* m_entries;
    bool m_hasHeader = false;
};

} // namespace

bool FoamHeader::read(TextSource& text)
{
    return skipToBlock(text) && readEntries(text);
}

bool FoamHeader::readByGrammar(TextSource& text)
{
    HeaderChars chars(text);
    HeaderClient client(&chars, &m_entries);
    static_cast<void>(foamdict::parse(chars, {}, client));
    return client.hasHeader();
}

bool FoamHeader::skipToBlock(TextSource& text)
{
    bool isNamed = false;
    std::string_view line;
    while (text.takeStreamPiece(&line)) {
        line = withoutLineEnd(line);
        if (isNamed) {
            if (line.starts_with('{')) {
                return true;
            }
        } else if (opensBlockAtOnce(line)) {
            return true;
        } else {
            isNamed = line.starts_with(HEADER_NAME);
        }
    }
    return false;
}

bool FoamHeader::readEntries(TextSource& text)
{
    std::string_view line;
    while (text.takeStreamPiece(&line)) {
        line = withoutLineEnd(line);
        if (line.starts_with('}')) {
            return true;
        }
        const std::size_t end = line.rfind(';');
        if (end == std::string_view::npos) {
            text.close();
            return false;
        }
        const KeyAndValue entry = splitKeyAndValue(line.substr(0, end));
        m_entries.emplace(entry.key, entry.value);
    }
    return false;
}

const std::string& FoamHeader::at(const char* key) const
{
    return checkedLookup(m_entries, std::string(key));
}

bool FoamHeader::has(const char* key, const dvn::Str& value) const
{
    const auto entry = m_entries.find(key);
    return entry != m_entries.end() && entry->second == value.toUtf8();
}
