// SPDX-License-Identifier: MIT
#include "foamfile/ExtendedField.h"

#include "LibCore/Limits.h"
#include "foamfile/DictionaryFile.h"
#include "foamfile/ExtendedFieldReader.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace {

using foamdict::Dictionary;
using foamdict::Entry;
using foamdict::Token;

/// Reads a file only as far as its dimensions, which come before the values.
class HeaderClient final : public DictionaryClient
{
public:
    using DictionaryClient::DictionaryClient;

    void onHeader(const Dictionary& header) override
    {
        DictionaryClient::onHeader(header);
        m_className = firstWord(header, "class");
    }
    std::optional<std::size_t> readList(const foamdict::ListPlace& /*place*/) override
    {
        chars().end();
        return 0;
    }
    // The values, which are not read, may hold anything.
    void report(const std::string& /*problem*/) override {}

    const std::string& className() const { return m_className; }
    void endAfter(std::size_t bytes) { chars().endAfter(bytes); }

private:
    std::string m_className;
};

/// Exponents are bytes; a fraction, as in "[0 0.5 0 0 0 0 0]", is cut off, since no text for a host has one.
signed char exponentOf(double number)
{
    constexpr double LARGEST = std::numeric_limits<signed char>::max();
    return number >= -LARGEST && number <= LARGEST ? static_cast<signed char>(number) : static_cast<signed char>(0);
}

/// Five or seven exponents in brackets; anything else has no dimensions.
OFUnit unitOf(const Entry* dimensions)
{
    std::array<signed char, 7> exponents = {};
    std::size_t count = 0;
    for (const Token& token : dimensions == nullptr ? std::vector<Token>() : dimensions->tokens) {
        if (token.kind == Token::Kind::Number && count < exponents.size()) {
            exponents[count++] = exponentOf(token.number);
        } else if (token.kind != Token::Kind::Punctuation) {
            return {};
        }
    }
    return {exponents[0], exponents[1], exponents[2], exponents[3], exponents[4], exponents[5], exponents[6]};
}

} // namespace

std::optional<ExtendedField::Kind> ExtendedField::kindOfClass(const dvn::Str& className)
{
    struct Form
    {
        std::string_view name;
        OFResultType type;
        ListItems items;
    };
    static constexpr std::array<Form, 5> FORMS = {
        {{"ScalarField", OFResultScalar, ListItems::scalars()},
         {"VectorField", OFResultVector, ListItems::vectors()},
         {"SphericalTensorField", OFResultTensor, ListItems::sphericalTensors()},
         {"SymmTensorField", OFResultTensor, ListItems::symmTensors()},
         {"TensorField", OFResultTensor, ListItems::tensors()}}};
    static constexpr std::string_view INTERNAL = "::Internal";
    const std::string text = className.toUtf8();
    std::string_view name = text;
    const bool isOnPoints = name.starts_with("point");
    if (!isOnPoints && !name.starts_with("vol")) {
        return std::nullopt;
    }
    name.remove_prefix(std::string_view(isOnPoints ? "point" : "vol").size());
    const bool isInternal = name.ends_with(INTERNAL);
    name.remove_suffix(isInternal ? INTERNAL.size() : 0);
    const auto form = std::ranges::find(FORMS, name, &Form::name);
    if (form == FORMS.end()) {
        return std::nullopt;
    }
    return Kind{form->type, isOnPoints ? OFResultOnNode : OFResultOnCell, form->items, !isInternal};
}

bool ExtendedField::readHeader(const dvn::Str& path, Header* header)
{
    HeaderClient client(path);
    if (!client.isOpen()) {
        return false;
    }
    client.endAfter(dvf::limits::HEADER_BYTES);
    const foamdict::Content content = client.parse();
    header->className = client.className();
    header->unit = unitOf(content.entries.find("dimensions"));
    return !header->className.isEmpty();
}

bool ExtendedField::read(const dvn::Str& path, const Target& target)
{
    return ExtendedFieldReader(path, target).read();
}
