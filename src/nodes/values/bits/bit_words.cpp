// SPDX-License-Identifier: Apache-2.0
// Bit arrays by whole words: packing, turning round, and digits.
#include "nodes/values/bits/bit_words.h"

#include <array>
#include <bit>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace tidemark::sluice::graph {

using weft::BitArrayValue;

void resizeCopy(const BitArrayValue& source, uint32_t count, bool fill, BitArrayValue& target) {
    if (&source != &target) {
        const uint32_t kept = std::min(count, source.size());
        target.resize(count, fill); // the room, at once
        target.resize(kept, fill);
        std::copy_n(source.words().data(), wordsFor(kept), target.wordData());
    }
    target.resize(count, fill);
}

void invertBits(const BitArrayValue& source, BitArrayValue& target, WorkMeter& meter) {
    target.resize(source.size(), false);
    const uint32_t* const in = source.words().data();
    uint32_t* const out = target.wordData();
    inStretches(wordsFor(source.size()), meter, [&](uint32_t first, uint32_t count) {
        mapWords(in + first, in + first, out + first, count,
                 [](uint32_t word, uint32_t) { return ~word; });
    });
}

// Packing. What is packed never overtakes what is read, so the target may be an input.

namespace {

// Appends up to a word's bits at a time.
class BitWriter {
public:
    explicit BitWriter(uint32_t* target) : target_(target) {}

    // `count` is at least 1, the bits above it are clear.
    void put(uint32_t bits, uint32_t count) {
        pending_ |= uint64_t(bits) << filled_;
        filled_ += count;
        *target_ = static_cast<uint32_t>(pending_);
        const uint32_t full = filled_ / bitsPerWord;
        target_ += full;
        pending_ >>= full * bitsPerWord;
        filled_ %= bitsPerWord;
    }

    // Writes what is left.
    void finish() {
        if (filled_ > 0) *target_ = static_cast<uint32_t>(pending_);
    }

private:
    uint32_t* target_;
    uint64_t pending_ = 0;
    uint32_t filled_ = 0;
};

// Bits of `word` where `mask` is set, moved to the low end: the parallel suffix method (H. S.
// Warren, Hacker's Delight, 2nd edition, section 7-4).
uint32_t compressedByShifts(uint32_t word, uint32_t mask) {
    word &= mask;
    uint32_t zeros = ~mask << 1;
    for (uint32_t shift = 1; shift < bitsPerWord; shift *= 2) {
        uint32_t odd = zeros;
        for (uint32_t step = 1; step < bitsPerWord; step *= 2) odd ^= odd << step;
        const uint32_t moving = odd & mask;
        mask = (mask ^ moving) | moving >> shift;
        const uint32_t moved = word & moving;
        word = (word ^ moved) | moved >> shift;
        zeros &= ~odd;
    }
    return word;
}

uint32_t packByShifts(const uint32_t* words, const uint32_t* mask, uint32_t count,
                      BitWriter& writer) {
    uint32_t total = 0;
    for (uint32_t i = 0; i < count; ++i) {
        if (mask[i] == 0) continue;
        const auto set = static_cast<uint32_t>(std::popcount(mask[i]));
        writer.put(mask[i] == allOnes ? words[i] : compressedByShifts(words[i], mask[i]), set);
        total += set;
    }
    return total;
}

using Pack = uint32_t (*)(const uint32_t*, const uint32_t*, uint32_t, BitWriter&);

#if defined(__x86_64__)
[[gnu::target("bmi2,popcnt")]] uint32_t
packByInstruction(const uint32_t* words, const uint32_t* mask, uint32_t count, BitWriter& writer) {
    uint32_t total = 0;
    for (uint32_t i = 0; i < count; ++i) {
        if (mask[i] == 0) continue;
        const auto set = static_cast<uint32_t>(std::popcount(mask[i]));
        writer.put(_pext_u32(words[i], mask[i]), set);
        total += set;
    }
    return total;
}

Pack choosePack() {
    if (__builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt")) {
        return packByInstruction;
    }
    return packByShifts;
}
#else
Pack choosePack() { return packByShifts; }
#endif

} // namespace

uint32_t compressBits(const uint32_t* words, const uint32_t* mask, uint32_t bits, uint32_t* target,
                      WorkMeter& meter) {
    static const Pack pack = choosePack();
    BitWriter writer(target);
    uint32_t total = 0;
    inStretches(bits / bitsPerWord, meter, [&](uint32_t first, uint32_t count) {
        total += pack(words + first, mask + first, count, writer);
    });
    if (const uint32_t rest = bits % bitsPerWord) {
        const uint32_t lastMask = mask[bits / bitsPerWord] & lowBits(rest);
        total += pack(words + bits / bitsPerWord, &lastMask, 1, writer);
    }
    writer.finish();
    return total;
}

void reverseBits(const uint32_t* words, uint32_t bits, uint32_t* target, WorkMeter& meter) {
    const uint32_t count = wordsFor(bits);
    const uint32_t unused = count * bitsPerWord - bits;
    // The 32 elements that end where the elements of word `i` end, `unused` bits before its own.
    const auto endingAt = [&](uint32_t i) {
        const uint64_t both = uint64_t(words[i]) << 32 | (i > 0 ? words[i - 1] : 0);
        return static_cast<uint32_t>(both >> (bitsPerWord - unused));
    };
    inStretches(count, meter, [&](uint32_t first, uint32_t length) {
        uint32_t j = first;
        const uint32_t end = first + length;
        for (; j + 2 < end; j += 2) {
            const uint32_t i = count - 1 - j;
            const uint64_t pair = uint64_t(words[i]) << 32 | words[i - 1];
            const uint64_t before = uint64_t(words[i - 2]) << unused >> bitsPerWord;
            const uint64_t turned = reversed(pair << unused | before);
            target[j] = static_cast<uint32_t>(turned);
            target[j + 1] = static_cast<uint32_t>(turned >> 32);
        }
        for (; j < end; ++j) target[j] = reversed(endingAt(count - 1 - j));
    });
}

// Digits, eight at a time.

namespace {

constexpr uint32_t digitsAtOnce = 8;
using Digits = std::array<char, digitsAtOnce>;

constexpr std::array<Digits, 256> makeDigits() {
    std::array<Digits, 256> all{};
    for (std::size_t byte = 0; byte < all.size(); ++byte) {
        for (uint32_t k = 0; k < digitsAtOnce; ++k) all[byte][k] = byte >> k & 1 ? '1' : '0';
    }
    return all;
}

constexpr std::array<Digits, 256> digitsOf = makeDigits();

// One bit for each of eight characters, clear for '0'.
uint32_t bitsOfEight(const char* digits) {
    constexpr uint64_t lowSeven = 0x7f7f7f7f7f7f7f7fu;
    uint64_t eight = 0;
    for (uint32_t k = 0; k < digitsAtOnce; ++k) {
        eight |= uint64_t(static_cast<unsigned char>(digits[k])) << 8 * k;
    }
    eight ^= 0x3030303030303030u;
    const uint64_t other = ((((eight & lowSeven) + lowSeven) | eight) >> 7) & 0x0101010101010101u;
    // The product gathers the low bit of byte k in bit 56 + k.
    return static_cast<uint32_t>(other * 0x0102040810204080u >> 56);
}

} // namespace

void writeDigits(const uint32_t* words, uint32_t first, uint32_t count, char* digits,
                 WorkMeter& meter) {
    const uint32_t shift = first % bitsPerWord;
    const uint32_t* const start = words + first / bitsPerWord;
    const uint32_t lastWord = wordsFor(uint64_t(shift) + count);
    const auto wordAt = [&](uint32_t i) {
        const uint64_t high = i + 1 < lastWord ? start[i + 1] : 0;
        return static_cast<uint32_t>((high << bitsPerWord | start[i]) >> shift);
    };
    inStretches(count / bitsPerWord, meter, [&](uint32_t from, uint32_t length) {
        for (uint32_t i = from; i < from + length; ++i) {
            const uint32_t word = wordAt(i);
            char* const out = digits + std::size_t(i) * bitsPerWord;
            for (uint32_t k = 0; k < bitsPerWord; k += digitsAtOnce) {
                std::memcpy(out + k, digitsOf[word >> k & 0xff].data(), digitsAtOnce);
            }
        }
    });
    const uint32_t done = count / bitsPerWord * bitsPerWord;
    for (uint32_t i = done; i < count; ++i) {
        digits[i] = wordAt(i / bitsPerWord) >> (i - done) & 1 ? '1' : '0';
    }
}

void readDigits(const char* digits, uint32_t count, uint32_t* words, WorkMeter& meter) {
    inStretches(count / bitsPerWord, meter, [&](uint32_t first, uint32_t length) {
        for (uint32_t i = first; i < first + length; ++i) {
            const char* const in = digits + std::size_t(i) * bitsPerWord;
            words[i] = bitsOfEight(in) | bitsOfEight(in + 8) << 8 | bitsOfEight(in + 16) << 16 |
                       bitsOfEight(in + 24) << 24;
        }
    });
    const uint32_t done = count / bitsPerWord * bitsPerWord;
    if (done == count) return;
    uint32_t rest = 0;
    for (uint32_t i = done; i < count; ++i) rest |= uint32_t(digits[i] != '0') << (i - done);
    words[count / bitsPerWord] = rest;
}

} // namespace tidemark::sluice::graph
