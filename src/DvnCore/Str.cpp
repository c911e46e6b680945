// SPDX-License-Identifier: MIT
#include "DvnCore/Str.h"

#include "LibCore/Numbers.h"
#include "LibCore/String.h"

#include <cstdint>
#include <utility>

namespace dvn {
namespace {

template <typename Number>
Number numberOr(bool isNumber, Number value, Number defaultValue)
{
    return isNumber ? value : defaultValue;
}

void report(bool* target, bool isNumber)
{
    if (target != nullptr) {
        *target = isNumber;
    }
}

bool parseUInt(const std::wstring& text, unsigned int* value)
{
    long long wide = 0;
    const bool isNumber = dvf::extractInt64(text, &wide) && static_cast<unsigned long long>(wide) <= UINT32_MAX;
    *value = isNumber ? static_cast<unsigned int>(wide) : 0U;
    return isNumber;
}

} // namespace

Str::Str() : m_text(std::make_unique<dvf::String>()) {}

Str::Str(const char* text) : m_text(std::make_unique<dvf::String>(text)) {}

Str::Str(const wchar_t* text) : m_text(std::make_unique<dvf::String>(std::wstring(text == nullptr ? L"" : text))) {}

Str::Str(const std::string& text) : m_text(std::make_unique<dvf::String>(text)) {}

Str::Str(const std::wstring& text) : m_text(std::make_unique<dvf::String>(text)) {}

Str::Str(char character) : m_text(std::make_unique<dvf::String>(std::string(1, character))) {}

Str::Str(dvf::String text) : m_text(std::make_unique<dvf::String>(std::move(text))) {}

Str::Str(const Str& other) : m_text(std::make_unique<dvf::String>(other.text())) {}

Str::Str(Str&& other) noexcept = default;

Str::~Str() = default;

Str& Str::operator=(const Str& other)
{
    if (this != &other) {
        m_text = std::make_unique<dvf::String>(other.text());
    }
    return *this;
}

Str& Str::operator=(Str&& other) noexcept = default;

void Str::swap(Str& other) noexcept
{
    m_text.swap(other.m_text);
}

const dvf::String& Str::text() const
{
    static const dvf::String EMPTY;
    return m_text == nullptr ? EMPTY : *m_text;
}

std::size_t Str::size() const
{
    return text().units().size();
}

bool Str::isEmpty() const
{
    return text().units().empty();
}

const wchar_t* Str::c_str() const
{
    return text().units().c_str();
}

const std::wstring& Str::toStdWString() const
{
    return text().units();
}

std::string Str::toStdString() const
{
    return text().toStdString();
}

std::string Str::toUtf8() const
{
    return text().toUtf8();
}

Str Str::toLower() const
{
    return Str(text().toLower());
}

Str Str::toUpper() const
{
    return Str(text().toUpper());
}

Str Str::trimmed() const
{
    return Str(text().trimmed());
}

Str Str::trimmedLeft() const
{
    return Str(text().trimmedLeft());
}

Str Str::trimmedRight() const
{
    return Str(text().trimmedRight());
}

Str Str::simplified() const
{
    return Str(text().simplified());
}

std::vector<Str> Str::split(const Str& delimiters, std::size_t most) const
{
    std::vector<dvf::String> pieces = text().split(delimiters.text(), most);
    std::vector<Str> result;
    result.reserve(pieces.size());
    for (dvf::String& piece : pieces) {
        result.push_back(Str(std::move(piece)));
    }
    return result;
}

std::size_t Str::find(const Str& sought, std::size_t start) const
{
    return text().find(sought.text(), start);
}

bool Str::startsWith(const Str& prefix) const
{
    return text().units().starts_with(prefix.text().units());
}

Str Str::subStr(std::size_t start, std::size_t length) const
{
    return Str(text().subString(start, length));
}

void Str::replace(const Str& from, const Str& to)
{
    dvf::String changed = text();
    changed.replace(from.text(), to.text());
    *this = Str(std::move(changed));
}

Str Str::arg(const Str& insertion, int fieldWidth, char fill) const
{
    return Str(text().arg(insertion.text(), fieldWidth, static_cast<wchar_t>(fill)));
}

Str Str::arg(char character, int fieldWidth, char fill) const
{
    return arg(Str(character), fieldWidth, fill);
}

Str Str::arg(int value, int fieldWidth, char fill) const
{
    return arg(Str(std::to_wstring(value)), fieldWidth, fill);
}

Str Str::arg(long long value, int fieldWidth, char fill) const
{
    return arg(Str(std::to_wstring(value)), fieldWidth, fill);
}

Str Str::arg(unsigned int value, int fieldWidth, char fill) const
{
    return arg(Str(std::to_wstring(value)), fieldWidth, fill);
}

Str Str::arg(unsigned long value, int fieldWidth, char fill) const
{
    return arg(Str(std::to_wstring(value)), fieldWidth, fill);
}

Str Str::arg(unsigned long long value, int fieldWidth, char fill) const
{
    return arg(Str(std::to_wstring(value)), fieldWidth, fill);
}

Str Str::arg(float value, int fieldWidth, char format, int precision, char fill) const
{
    return arg(number(value, format, precision), fieldWidth, fill);
}

Str Str::arg(double value, int fieldWidth, char format, int precision, char fill) const
{
    return arg(number(value, format, precision), fieldWidth, fill);
}

Str Str::number(int value)
{
    return Str(std::to_wstring(value));
}

Str Str::number(unsigned int value)
{
    return Str(std::to_wstring(value));
}

Str Str::number(float value, char format, int precision)
{
    return Str(dvf::String::number(static_cast<double>(value), format, precision));
}

Str Str::number(double value, char format, int precision)
{
    return Str(dvf::String::number(value, format, precision));
}

double Str::toDouble(bool* isNumber) const
{
    double value = 0.0;
    report(isNumber, dvf::extractDouble(text().units(), &value));
    return value;
}

float Str::toFloat(bool* isNumber) const
{
    float value = 0.0F;
    report(isNumber, dvf::extractFloat(text().units(), &value));
    return value;
}

int Str::toInt(bool* isNumber) const
{
    int value = 0;
    report(isNumber, dvf::extractInt(text().units(), &value));
    return value;
}

unsigned int Str::toUInt(bool* isNumber) const
{
    unsigned int value = 0;
    report(isNumber, parseUInt(text().units(), &value));
    return value;
}

double Str::toDouble(double defaultValue) const
{
    bool isNumber = false;
    const double value = toDouble(&isNumber);
    return numberOr(isNumber, value, defaultValue);
}

float Str::toFloat(float defaultValue) const
{
    bool isNumber = false;
    const float value = toFloat(&isNumber);
    return numberOr(isNumber, value, defaultValue);
}

int Str::toInt(int defaultValue) const
{
    bool isNumber = false;
    const int value = toInt(&isNumber);
    return numberOr(isNumber, value, defaultValue);
}

unsigned int Str::toUInt(unsigned int defaultValue) const
{
    bool isNumber = false;
    const unsigned int value = toUInt(&isNumber);
    return numberOr(isNumber, value, defaultValue);
}

Str& Str::operator+=(const Str& other)
{
    *this = *this + other;
    return *this;
}

bool operator==(const Str& a, const Str& b)
{
    return a.toStdWString() == b.toStdWString();
}

bool operator!=(const Str& a, const Str& b)
{
    return !(a == b);
}

bool operator<(const Str& a, const Str& b)
{
    return a.toStdWString() < b.toStdWString();
}

Str operator+(const Str& a, const Str& b)
{
    return Str(a.toStdWString() + b.toStdWString());
}

Str operator+(const char* a, const Str& b)
{
    return Str(a) + b;
}

} // namespace dvn
