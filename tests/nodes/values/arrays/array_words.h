// SPDX-License-Identifier: Apache-2.0
// Arrays of any element type as words of letters, so that one table of examples holds for all:
//
//     putLetters(pin, "abcb");       // four elements, the second equal to the last
//     EXPECT_EQ(lettersIn(pin), lettersAs(pin, "abcb"));
//
// A point stands for the neutral element, null for pointers. Later letters are larger, by the last
// component only where elements have several.
#pragma once

#include <iosfwd>
#include <vector>

#include "core/attribute.h"

namespace sluice_tests {

using tidemark::TM_String;

/// An element type by the word in its nodes' names and, for numbers, its specialization.
struct ArrayWord {
    const char* word;
    const char* specialization;
};
void PrintTo(const ArrayWord& word, std::ostream* out);

/// Every element type that has array operations; `Tag` and `Anchor` are of these tests.
const std::vector<ArrayWord>& arrayWords();

/// The name of a type, from a pattern with a star for the word: "Array*Slice".
TM_String typeOf(TM_String pattern, const TM_String& word);

/// Puts elements into the own value of the attribute.
void putLetters(weft::Attribute& pin, const TM_String& letters);

/// The elements that a reader of the attribute sees; of bits, zeros and ones.
TM_String lettersIn(const weft::Attribute& pin);

/// What `lettersIn` tells of these letters: bits have two elements only.
TM_String lettersAs(const weft::Attribute& pin, const TM_String& letters);

/// Where the elements are that the attribute's readers see, and for how many there is room.
struct Room {
    const void* place;
    uint32_t capacity;
};
Room roomOf(const weft::Attribute& pin);

/// Makes room for `capacity` elements in the own value of the attribute.
void makeRoom(weft::Attribute& pin, uint32_t capacity);

} // namespace sluice_tests
