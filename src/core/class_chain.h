// SPDX-License-Identifier: Apache-2.0
// Class names of an object, from the first base to the most derived class, at the cost of one
// pointer per object.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace weft {

/// One link of the chain; links live as long as the process.
struct ClassChain {
    std::string_view name;
    const ClassChain* base;
};

/// A string literal as a template argument: `appendClass<"Add">()`.
template <std::size_t length>
struct ClassName {
    char text[length];
    consteval ClassName(const char (&literal)[length]) { std::copy_n(literal, length, text); }
};

/// The link for class `name` on top of `base`. A name stands for one class: the first base that it
/// is used with stays.
template <ClassName name>
const ClassChain* classLink(const ClassChain* base) {
    static const ClassChain link{std::string_view(name.text, sizeof(name.text) - 1), base};
    return &link;
}

} // namespace weft
