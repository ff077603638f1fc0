// SPDX-License-Identifier: Apache-2.0
// The text form of numbers.
#include "core/numeric.h"

namespace weft {

namespace text = tidemark::text;

namespace {

constexpr uint32_t elementsPerLine = 20;

TM_String toText(int32_t number) { return std::to_string(number); }
TM_String toText(int64_t number) { return std::to_string(number); }
TM_String toText(float number) { return text::shortest(number); }

void fromText(const TM_String& text, int32_t& number) { number = text::toInt32(text); }
void fromText(const TM_String& text, int64_t& number) { number = text::toInt64(text); }
void fromText(const TM_String& text, float& number) { number = text::toFloat(text); }

// The parts of a structured element in the order of the text.
template <typename T>
struct Parts;

template <>
struct Parts<Vector3<float>> {
    static constexpr uint32_t count = 3;
    static auto& at(auto& vector, uint32_t i) { return vector[static_cast<int>(i)]; }
};
template <>
struct Parts<Color4<float>> {
    static constexpr uint32_t count = 4;
    static auto& at(auto& color, uint32_t i) { return color[static_cast<int>(i)]; }
};
template <>
struct Parts<Quaternion<float>> {
    static constexpr uint32_t count = 4;
    static auto& at(auto& quaternion, uint32_t i) {
        if (i == 0) return quaternion.w;
        if (i == 1) return quaternion.x;
        return i == 2 ? quaternion.y : quaternion.z;
    }
};
template <>
struct Parts<Matrix4<float>> {
    static constexpr uint32_t count = 16;
    static auto& at(auto& matrix, uint32_t i) { return matrix.x[i / 4][i % 4]; }
};

template <typename T>
void appendElement(TM_String& out, const T& element) {
    if constexpr (std::is_arithmetic_v<T>) {
        out += toText(element);
    } else {
        for (uint32_t i = 0; i < Parts<T>::count; ++i) {
            out += i == 0 ? '(' : ',';
            out += toText(Parts<T>::at(element, i));
        }
        out += ')';
    }
}

template <typename T>
TM_String arrayText(const Numeric& number) {
    const Array<T>& array = number.values<T>();
    const uint32_t count = array.size() < number.size() ? array.size() : number.size();
    // Matrices take the commas of the vectors beside them. Readers of old texts rely on it.
    const uint32_t commas =
        numericTypeFor<T> == NumericType::matrix4 ? number.values<Vector3<float>>().size() : count;
    TM_String out;
    for (uint32_t i = 0; i < count; ++i) {
        appendElement(out, array[i]);
        if (uint64_t(i) + 1 < commas) out += ',';
        if (i % elementsPerLine == elementsPerLine - 1) out += '\n';
    }
    return out;
}

template <typename T>
void readPlain(const TM_String& body, Array<T>& array) {
    for (const TM_String& piece : text::split(body, ",")) {
        T element{};
        fromText(piece, element);
        array.append(element);
    }
}

std::string_view withoutOuterParentheses(std::string_view body) {
    if (!body.empty() && body.back() == ',') body.remove_suffix(1);
    if (!body.empty() && body.front() == '(') body.remove_prefix(1);
    if (!body.empty() && body.back() == ')') body.remove_suffix(1);
    return body;
}

template <typename T>
void readStructured(const TM_String& body, Array<T>& array) {
    for (const TM_String& piece : text::split(withoutOuterParentheses(body), "),(")) {
        const Array<TM_String> parts = text::split(piece, ",");
        if (parts.size() != Parts<T>::count) continue;
        T element = tidemark::ElementDefault<T>::value();
        for (uint32_t i = 0; i < parts.size(); ++i) fromText(parts[i], Parts<T>::at(element, i));
        array.append(element);
    }
}

// The selector in "[n]", or none.
NumericType selectorOf(std::string_view token) {
    if (token.size() < 3 || token.front() != '[' || token.back() != ']') return NumericType::none;
    const int32_t selector = text::toInt32(token.substr(1, token.size() - 2));
    if (selector < 1 || selector > static_cast<int32_t>(NumericType::matrix4)) {
        return NumericType::none;
    }
    return static_cast<NumericType>(selector);
}

} // namespace

TM_String Numeric::asString() const {
    TM_String out;
    withElementType(type_, [&]<typename T>() {
        out = text::format("[%d] ", static_cast<int>(type_)) + arrayText<T>(*this);
    });
    return out;
}

void Numeric::fromString(const TM_String& text) {
    const TM_String line = text::replaceAll(text, "\n", "");
    const std::size_t blank = line.find(' ');
    const NumericType type = selectorOf(std::string_view(line).substr(0, blank));
    const TM_String body = blank == TM_String::npos ? TM_String() : line.substr(blank + 1);
    withElementType(type, [&]<typename T>() {
        Array<T>& array = refValues<T>();
        array.clear();
        if constexpr (std::is_arithmetic_v<T>) {
            if (!body.empty()) readPlain(body, array);
        } else {
            readStructured(body, array);
        }
        type_ = type;
        size_ = array.size();
    });
}

} // namespace weft
