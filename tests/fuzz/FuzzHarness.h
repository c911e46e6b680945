// SPDX-License-Identifier: MIT
//
// What all fuzz targets share. The same objects are linked with libFuzzer, which looks for inputs, and with a plain
// main, which replays the inputs that are kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// The bytes of one run, taken from the front; a used-up input goes on as zeros.
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
    /// One of the `end` numbers from 0 on.
    int below(int end) { return byte() % end; }

private:
    std::string_view m_rest;
};

/// All that one run delivers, as bytes, so that NaN equals NaN and any two runs can be compared.
struct Outcome
{
    std::string bytes;
    /// What comes of a count that the file cannot hold depends on its form, and what other workers had done when an
    /// exception ended a call on chance.
    bool isDoubtful = false;

    /// Adds numbers, texts, and lists of what can be added, each with its length.
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

/// Ends the process with the finding unless all is well: for what no sanitizer sees.
void expect(bool isGood, const std::string& finding);
void expectEqual(const Outcome& a, const Outcome& b, const std::string& finding);

/// Makes a call; false, and a note in the outcome, if one of the planned exceptions ended it. Any other passes.
bool tolerate(Outcome* outcome, const std::function<void()>& call);

/// Makes a call with so many threads and gathers what it delivers, with its error and info lines.
Outcome observe(int threads, const std::function<void(Outcome*)>& call);

/// Writes out the short forms that keep inputs small. Each is an escape character, a letter and a byte k:
///
/// - R repeats the line that ends here, so that it stands there (k + 1)^2 times,
/// - D stands for 32 (k + 1) digits,
/// - O makes this the place from which chunks are counted, which at first is the start of the first list,
/// - P puts line feeds until what follows starts k - 128 bytes behind the border of a chunk.
///
/// The result grows to no more than `mostChunks` chunks, because long texts cost speed.
std::string expanded(std::string_view text, std::size_t mostChunks);
inline constexpr char ESCAPE = '\x1b';

struct FuzzTarget
{
    const char* name;
    void (*run)(FuzzInput input);
};

/// The rows of each source, and of all.
std::vector<FuzzTarget> fileTargets();
std::vector<FuzzTarget> valueTargets();
std::vector<FuzzTarget> caseTargets();
const std::vector<FuzzTarget>& fuzzTargets();
/// The target of a name; null if there is none.
const FuzzTarget* findTarget(std::string_view name);
