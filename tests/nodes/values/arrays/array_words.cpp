// SPDX-License-Identifier: Apache-2.0
// Letters as elements of every type.
#include "nodes/values/arrays/array_words.h"

#include <ostream>

#include "core/bit_array.h"
#include "core/numeric.h"
#include "core/pointer_value.h"
#include "core/string_value.h"
#include "nodes/values/stored_element.h"

namespace sluice_tests {

namespace {

using namespace weft;

constexpr char neutral = '.';
constexpr char letters[] = ".abcdefghijklmnopqrstuvwxyz";

int rankOf(char letter) { return letter - 'a' + 1; }

template <typename T>
T elementOf(char letter) {
    if (letter == neutral) return tidemark::ElementDefault<T>::value();
    const int rank = rankOf(letter);
    const auto real = static_cast<float>(rank);
    if constexpr (std::is_same_v<T, int32_t>) return rank;
    if constexpr (std::is_same_v<T, int64_t>) return rank + 5'000'000'000;
    if constexpr (std::is_same_v<T, float>) return real + 0.5f;
    if constexpr (std::is_same_v<T, Vector3<float>>) return {7, -1, real};
    if constexpr (std::is_same_v<T, Color4<float>>) return {0.5f, 0, 1, real};
    if constexpr (std::is_same_v<T, Quaternion<float>>) return {1, 2, 3, real};
    if constexpr (std::is_same_v<T, Matrix4<float>>) {
        T matrix;
        matrix[3][2] = real;
        return matrix;
    }
    if constexpr (std::is_same_v<T, TM_String>) return TM_String(1, letter);
    if constexpr (std::is_same_v<T, Tag>)
        return {"a word that is not short: " + std::to_string(rank)};
    // Nobody looks at what a pointer points to.
    static unsigned char places[sizeof letters];
    if constexpr (std::is_same_v<T, void*>) return &places[rank];
}

template <typename T>
TM_String lettersOf(const tidemark::Array<T>& elements) {
    TM_String found;
    for (const T& element : elements) {
        char letter = '?';
        for (const char each : TM_String(letters)) {
            if (elementOf<T>(each) == element) letter = each;
        }
        found += letter;
    }
    return found;
}

template <typename T>
void fill(tidemark::Array<T>& array, const TM_String& word) {
    array.clear();
    array.reserve(static_cast<uint32_t>(word.size()));
    for (const char letter : word) array.append(elementOf<T>(letter));
}

bool bitOf(char letter) { return letter != neutral && rankOf(letter) % 2 == 1; }

// Calls `visit(array, value)` with the array of elements of any value but bits.
template <typename Visit>
void visitElements(Value& value, Visit visit) {
    if (auto* number = valueAs<Numeric>(&value)) {
        withElementType(number->type(), [&]<typename T>() {
            visit(number->refValues<T>());
            number->updateSize();
        });
    } else if (auto* text = valueAs<StringValue>(&value)) {
        visit(text->refValues());
    } else if (auto* tags = valueAs<TagValue>(&value)) {
        visit(tags->refValues());
    } else {
        visit(dynamic_cast<PointerValueBase&>(value).refValues());
    }
}

} // namespace

void PrintTo(const ArrayWord& word, std::ostream* out) {
    *out << word.word << " " << word.specialization;
}

const std::vector<ArrayWord>& arrayWords() {
    static const std::vector<ArrayWord> words = {
        {"Num", "Integer"}, {"Num", "Integer64"},  {"Num", "Real"},    {"Num", "Vector3"},
        {"Num", "Color4"},  {"Num", "Quaternion"}, {"Num", "Matrix4"}, {"String", ""},
        {"Curve", ""},      {"Key", ""},           {"Bit", ""},        {"Tag", ""},
        {"Anchor", ""}};
    return words;
}

TM_String typeOf(TM_String pattern, const TM_String& word) {
    return pattern.replace(pattern.find('*'), 1, word);
}

void putLetters(Attribute& pin, const TM_String& word) {
    if (auto* bits = valueAs<BitArrayValue>(pin.value())) {
        bits->resize(static_cast<uint32_t>(word.size()), false);
        for (uint32_t i = 0; i < word.size(); ++i) bits->setBit(i, bitOf(word[i]));
    } else {
        visitElements(*pin.value(), [&](auto& array) { fill(array, word); });
    }
    pin.valueChanged();
}

TM_String lettersIn(const Attribute& pin) {
    Value& value = *pin.currentValue();
    if (valueAs<BitArrayValue>(&value)) return value.asString();
    TM_String found;
    visitElements(value, [&](const auto& array) { found = lettersOf(array); });
    if (value.size() != found.size()) found += " of size " + std::to_string(value.size());
    return found;
}

TM_String lettersAs(const Attribute& pin, const TM_String& word) {
    if (!valueAs<BitArrayValue>(pin.value())) return word;
    TM_String bits;
    for (const char letter : word) bits += bitOf(letter) ? '1' : '0';
    return bits;
}

Room roomOf(const Attribute& pin) {
    Value& value = *pin.currentValue();
    if (auto* bits = valueAs<BitArrayValue>(&value)) {
        return {bits->wordData(), static_cast<uint32_t>(bits->bitCapacity())};
    }
    Room room{};
    visitElements(value, [&](auto& array) { room = {array.data(), array.capacity()}; });
    return room;
}

void makeRoom(Attribute& pin, uint32_t capacity) {
    if (auto* bits = valueAs<BitArrayValue>(pin.value())) {
        const uint32_t count = bits->size();
        bits->resize(capacity, false);
        bits->resize(count, false);
    } else {
        visitElements(*pin.value(), [&](auto& array) { array.reserve(capacity); });
    }
}

} // namespace sluice_tests
