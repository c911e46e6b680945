// SPDX-License-Identifier: MIT
//
// Shared by all fuzz targets. The same objects are linked with libFuzzer, which searches for inputs, and with a plain
// main, which replays the inputs that are kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// The bytes of one run, taken from the front. An exhausted input gives zeros.
class FuzzInput
{
public:
    explicit FuzzInput(std::string_view bytes) : m_rest(bytes) {}

    bool isEmpty() const { return m_rest.empty(); }
    std::string_view text(std::size_t length)
    {
        const std::string_view piece = m_rest.substr(0, length);
        m_rest.remove_prefix(piece.size());
        return piece;
    }
    std::string_view rest() { return text(m_rest.size()); }
    std::uint8_t byte() { return isEmpty() ? std::uint8_t{0} : static_cast<std::uint8_t>(text(1).front()); }
    /// A number from 0 to `end` - 1.
    int below(int end) { return byte() % end; }

private:
    std::string_view m_rest;
};

/// Everything that one run delivers, as bytes, so that NaN equals NaN and any two runs can be compared.
struct Outcome
{
    std::string bytes;
    /// True if the result may differ between two correct runs: the outcome of a count larger than the file depends on
    /// the file's form, and how far other workers got before an exception depends on chance.
    bool isDoubtful = false;

    /// Adds numbers, texts and lists of these, each list with its length.
    template <typename... Items>
    void add(const Items&... items)
    {
        (addItem(items), ...);
    }

private:
    template <typename Item>
    void addItem(const Item& item)
    {
        if constexpr (std::is_arithmetic_v<Item> || std::is_enum_v<Item>) {
            bytes.append(reinterpret_cast<const char*>(&item), sizeof item);
        } else if constexpr (std::is_convertible_v<Item, std::string_view>) {
            add(std::string_view(item).size());
            bytes += item;
        } else {
            add(std::size(item));
            for (const auto& entry : item) {
                add(entry);
            }
        }
    }
};

/// Ends the process with the finding unless `isGood`, for faults that no sanitizer detects.
void expect(bool isGood, const std::string& finding);
void expectEqual(const Outcome& a, const Outcome& b, const std::string& finding);

/// Makes a call. False, with a note in the outcome, if one of the documented exceptions ended it; others pass through.
bool tolerate(Outcome* outcome, const std::function<void()>& call);

/// Makes a call with this number of threads and collects what it delivers, including error and info lines.
Outcome observe(int threads, const std::function<void(Outcome*)>& call);

/// Expands the short forms that keep inputs small. Each is an escape character, a letter and a byte k:
///
/// - R repeats the line that ends here until there are (k + 1)^2 of it,
/// - D becomes 32 (k + 1) digits,
/// - O makes this the place from which chunks are counted; before, that is the start of the first list,
/// - P adds line feeds until the text after it starts k - 128 bytes past the border of a chunk.
///
/// The result is at most `mostChunks` chunks long, because long texts are slow.
std::string expanded(std::string_view text, std::size_t mostChunks);
inline constexpr char ESCAPE = '\x1b';

struct FuzzTarget
{
    const char* name;
    void (*run)(FuzzInput input);
};

/// The targets of each source file, and all of them.
std::vector<FuzzTarget> fileTargets();
std::vector<FuzzTarget> valueTargets();
std::vector<FuzzTarget> caseTargets();
std::vector<FuzzTarget> grammarTargets();
const std::vector<FuzzTarget>& fuzzTargets();
/// The target of this name; null if there is none.
const FuzzTarget* findTarget(std::string_view name);
