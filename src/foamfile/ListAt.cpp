// SPDX-License-Identifier: MIT
#include "foamfile/ListAt.h"

#include "LibCore/LargePages.h"
#include "LibCore/Limits.h"
#include "foamfile/ListAhead.h"
#include "foamfile/ListTokens.h"

#include <algorithm>
#include <string>

namespace {

/// Reads an item within a line at a pointer; null for one that has another form, which the walk then decides.
/// @param end of the text: its NUL, or the start of a line
template <std::size_t COMPONENTS, bool IS_BRACKETED>
const char* scanItem(const char* p, const char* end, double* item)
{
    if (IS_BRACKETED && *p++ != '(') {
        return nullptr;
    }
    for (std::size_t i = 0; i < COMPONENTS; ++i) {
        while (*p == ' ') {
            ++p;
        }
        p = TokenScanner::scanPlainReal(p, end, item + i);
        if (p == nullptr || !ListTokens::endsToken(*p)) {
            return nullptr;
        }
    }
    if (IS_BRACKETED) {
        while (*p == ' ') {
            ++p;
        }
        return *p == ')' ? p + 1 : nullptr;
    }
    return p;
}

/// Parses the items of a piece. Anything but items and white space leaves the piece in doubt.
template <std::size_t COMPONENTS, bool IS_BRACKETED>
void readItemsOfPiece(FieldPieces::Piece* piece, const char* end)
{
    const char* p = piece->begin;
    for (;;) {
        while (p < piece->limit && ListTokens::isBlank(*p)) {
            ++p;
        }
        if (p == piece->limit) {
            break;
        }
        p = scanItem<COMPONENTS, IS_BRACKETED>(p, end, piece->room(COMPONENTS));
        if (p == nullptr) {
            return;
        }
        piece->count += COMPONENTS;
    }
    piece->stop = p;
    piece->isClean = true;
}

/// Takes one item, whatever white space and comments it has in it.
bool takeItem(ListTokens& tokens, const ListItems& items, double* item)
{
    if (items.isBracketed && !tokens.take('(')) {
        return false;
    }
    for (std::size_t i = 0; i < items.components; ++i) {
        if (!tokens.takeReal(item + i)) {
            return false;
        }
    }
    return !items.isBracketed || tokens.take(')');
}

/// Walks through the items of a list, with pieces ahead of the walk wherever a chunk begins.
template <typename ReadPiece>
bool walk(TextSource& text, const ListItems& items, const ReadPiece& readPiece, ListTokens& tokens,
          std::vector<double>* values, std::size_t* found)
{
    ListAhead ahead(text, values);
    if (!tokens.endsChunk()) {
        tokens.jumpTo(ahead.readChunk(tokens.cursor(), tokens.end(), readPiece, found));
    }
    // guard: items-sequential
    while (*found + items.components <= values->size()) {
        if (tokens.endsChunk()) {
            ahead.read(readPiece, found);
            if (!tokens.nextChunk()) {
                return false;
            }
            tokens.jumpTo(ahead.readChunk(tokens.cursor() + ahead.offset(), tokens.end(), readPiece, found));
        } else if (takeItem(tokens, items, values->data() + *found)) {
            *found += items.components;
        } else {
            return false;
        }
    }
    return *found == values->size();
}

bool walk(TextSource& text, const ListItems& items, ListTokens& tokens, std::vector<double>* values, std::size_t* found)
{
    *found = 0;
    if (items == ListItems::scalars()) {
        return walk(text, items, readItemsOfPiece<1, false>, tokens, values, found);
    }
    if (items == ListItems::vectors()) {
        return walk(text, items, readItemsOfPiece<3, true>, tokens, values, found);
    }
    if (items == ListItems::symmTensors()) {
        return walk(text, items, readItemsOfPiece<6, true>, tokens, values, found);
    }
    if (items == ListItems::tensors()) {
        return walk(text, items, readItemsOfPiece<9, true>, tokens, values, found);
    }
    // No solver writes long lists of other items: the walk alone reads these.
    const auto readNothing = [](FieldPieces::Piece*, const char*) {};
    return walk(text, items, readNothing, tokens, values, found);
}

/// Takes the "(" of a raw list or the "{" of equal items, after blanks and line ends.
char takeRawBracket(TextSource& text)
{
    while (text.takeByte(' ') || text.takeByte('\n') || text.takeByte('\r') || text.takeByte('\t')) {
    }
    return text.takeByte('(') ? '(' : text.takeByte('{') ? '{' : '\0';
}

/// Takes the text of an equal item and its "}" from the stream.
bool takeEqualItem(TextSource& text, std::string* item)
{
    for (int byte = text.nextByte(); byte >= 0 && item->size() <= dvf::limits::NUMBER_LENGTH; byte = text.nextByte()) {
        *item += static_cast<char>(byte);
        if (byte == '}') {
            return true;
        }
    }
    return false;
}

// The kinds of lists: how many numbers an item has, how many bytes one of them takes in a raw list, and how they are
// read in each form.

struct Labels
{
    static constexpr std::size_t components() { return 1; }
    static std::size_t rawSize(const TextSource& text) { return text.rawForm().labelSize; }
    static bool takeItem(ListTokens& tokens, int* item) { return tokens.takeLabel(item); }
    static bool takeItems(TextSource& /*text*/, ListTokens& tokens, std::vector<int>* labels)
    {
        return std::ranges::all_of(*labels, [&tokens](int& label) { return tokens.takeLabel(&label); });
    }
    static bool readRaw(TextSource& text, std::vector<int>* labels)
    {
        return text.readRawLabels(labels->data(), labels->size()) == labels->size();
    }
};

struct Flags
{
    static constexpr std::size_t components() { return 1; }
    static std::size_t rawSize(const TextSource& /*text*/) { return 1; }
    static bool takeItem(ListTokens& tokens, int* item) { return tokens.takeFlag(item); }
    static bool takeItems(TextSource& /*text*/, ListTokens& tokens, std::vector<int>* flags)
    {
        return std::ranges::all_of(*flags, [&tokens](int& flag) { return tokens.takeFlag(&flag); });
    }
    static bool readRaw(TextSource& text, std::vector<int>* flags)
    {
        return std::ranges::all_of(*flags, [&text](int& flag) {
            const int byte = text.nextByte();
            flag = byte == 0 ? 0 : 1;
            return byte >= 0;
        });
    }
};

struct Reals
{
    ListItems items;

    std::size_t components() const { return items.components; }
    static std::size_t rawSize(const TextSource& text) { return text.rawForm().realSize; }
    bool takeItem(ListTokens& tokens, double* item) const { return ::takeItem(tokens, items, item); }
    bool takeItems(TextSource& text, ListTokens& tokens, std::vector<double>* values) const
    {
        std::size_t found = 0;
        return walk(text, items, tokens, values, &found);
    }
    static bool readRaw(TextSource& text, std::vector<double>* values)
    {
        return text.readRawReals(values->data(), values->size()) == values->size();
    }
};

/// Takes the item after a "{" and its "}", and copies it to all places. An empty list may have no item.
template <typename Kind, typename Value>
bool fillEqual(ListTokens& tokens, const Kind& kind, std::vector<Value>* values)
{
    if (values->empty() && tokens.take('}')) {
        return true;
    }
    std::vector<Value> item(kind.components());
    if (!kind.takeItem(tokens, item.data()) || !tokens.take('}')) {
        return false;
    }
    for (std::size_t i = 0; i + item.size() <= values->size(); i += item.size()) {
        std::ranges::copy(item, values->begin() + static_cast<std::ptrdiff_t>(i));
    }
    return true;
}

template <typename Kind, typename Value>
bool readAscii(TextSource& text, const Kind& kind, std::vector<Value>* values)
{
    ListTokens tokens(text);
    bool isRead = false;
    if (tokens.take('(')) {
        isRead = kind.takeItems(text, tokens, values) && tokens.take(')');
    } else if (tokens.take('{')) {
        isRead = fillEqual(tokens, kind, values);
    } else {
        isRead = values->empty();
    }
    tokens.leave();
    return isRead;
}

template <typename Kind, typename Value>
bool readBinary(TextSource& text, const Kind& kind, std::vector<Value>* values)
{
    const char bracket = takeRawBracket(text);
    if (bracket == '(') {
        text.startRaw(values->size() * kind.rawSize(text));
        return kind.readRaw(text, values) && text.takeByte(')');
    }
    if (bracket == '{') {
        // Equal items are text in a binary file too.
        std::string item;
        if (!takeEqualItem(text, &item)) {
            return false;
        }
        ListTokens tokens(item.data(), item.data() + item.size());
        return fillEqual(tokens, kind, values);
    }
    return values->empty();
}

template <typename Kind, typename Value>
bool readList(TextSource& text, std::size_t count, const Kind& kind, std::vector<Value>* values)
{
    if (count > static_cast<std::size_t>(dvf::limits::LIST_COUNT)) {
        return false;
    }
    const std::size_t size = count * kind.components();
    if (values->size() != size) {
        // guard: list-at-count
        if (!text.canHold(size, dvf::limits::BYTES_PER_NUMBER)) {
            return false;
        }
        dvf::reserveLarge(values, size);
        values->resize(size);
    }
    return text.isBinary() ? readBinary(text, kind, values) : readAscii(text, kind, values);
}

} // namespace

bool ListAt::readLabels(TextSource& text, std::size_t count, std::vector<int>* labels)
{
    return readList(text, count, Labels(), labels);
}

bool ListAt::readFlags(TextSource& text, std::size_t count, std::vector<int>* flags)
{
    return readList(text, count, Flags(), flags);
}

bool ListAt::readReals(TextSource& text, std::size_t count, const ListItems& items, std::vector<double>* values)
{
    return readList(text, count, Reals{items}, values);
}
