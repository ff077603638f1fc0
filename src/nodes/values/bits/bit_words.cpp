// SPDX-License-Identifier: Apache-2.0
// Bit arrays by whole words: packing, turning round, and digits.
#include "nodes/values/bits/bit_words.h"

#include <array>
#include <bit>
#include <cstring>

#include "nodes/values/lanes.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace tidemark::sluice::graph {

using weft::BitArrayValue;

namespace {

constexpr uint32_t wordsAtOnce = 2;
constexpr uint32_t bitsAtOnce = wordsAtOnce * bitsPerWord;

uint64_t pairAt(const uint32_t* words) { return words[0] | uint64_t(words[1]) << bitsPerWord; }

} // namespace

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
    inPieces(wordsFor(source.size()), meter, [&](uint32_t first, uint32_t end) {
        mapLanes(
            out + first, end - first, [](uint32_t word) { return ~word; }, in + first);
    });
}

// Packing. What is packed never overtakes what is read, so the target may be an input.

namespace {

// Appends up to 64 bits at a time.
class BitWriter {
public:
    BitWriter(uint32_t* target, uint32_t room) : target_(target), end_(target + room) {}

    // The bits above `count` are clear.
    void put(uint64_t bits, uint32_t count) {
        const uint64_t low = pending_ | bits << filled_;
        const uint64_t high = bits >> 1 >> (bitsAtOnce - 1 - filled_);
        store(low);
        filled_ += count;
        const uint64_t full = filled_ / bitsAtOnce; // 0 or 1; a branch would often go wrong
        pending_ = (low & (full - 1)) | (high & (0 - full));
        target_ += full * wordsAtOnce;
        filled_ %= bitsAtOnce;
    }

    // Writes what is left.
    void finish() { store(pending_); }

private:
    void store(uint64_t bits) {
        if (target_ + wordsAtOnce <= end_) {
            target_[0] = static_cast<uint32_t>(bits);
            target_[1] = static_cast<uint32_t>(bits >> bitsPerWord);
        } else if (target_ < end_) {
            target_[0] = static_cast<uint32_t>(bits);
        }
    }

    uint32_t* target_;
    uint32_t* end_;
    uint64_t pending_ = 0;
    uint32_t filled_ = 0;
};

// Bits of `word` where `mask` is set, moved to the low end: the parallel suffix method (H. S.
// Warren, Hacker's Delight, 2nd edition, section 7-4) on 64 bits.
uint64_t compressedByShifts(uint64_t word, uint64_t mask) {
    if (mask == ~uint64_t(0)) return word;
    word &= mask;
    uint64_t zeros = ~mask << 1;
    for (uint32_t shift = 1; shift < bitsAtOnce; shift *= 2) {
        uint64_t odd = zeros;
        for (uint32_t step = 1; step < bitsAtOnce; step *= 2) odd ^= odd << step;
        const uint64_t moving = odd & mask;
        mask = (mask ^ moving) | moving >> shift;
        const uint64_t moved = word & moving;
        word = (word ^ moved) | moved >> shift;
        zeros &= ~odd;
    }
    return word;
}

uint32_t packByShifts(const uint32_t* words, const uint32_t* mask, uint32_t pairs, BitWriter& out) {
    BitWriter writer = out; // in registers
    uint32_t total = 0;
    for (uint32_t i = 0; i < pairs * wordsAtOnce; i += wordsAtOnce) {
        const uint64_t chosen = pairAt(mask + i);
        const auto set = static_cast<uint32_t>(std::popcount(chosen));
        if (set > 0) writer.put(compressedByShifts(pairAt(words + i), chosen), set);
        total += set;
    }
    out = writer;
    return total;
}

using Pack = uint32_t (*)(const uint32_t*, const uint32_t*, uint32_t, BitWriter&);

#if defined(__x86_64__)
[[gnu::target("bmi2,popcnt")]] uint32_t
packByInstruction(const uint32_t* words, const uint32_t* mask, uint32_t pairs, BitWriter& out) {
    BitWriter writer = out; // in registers
    uint32_t total = 0;
    for (uint32_t i = 0; i < pairs * wordsAtOnce; i += wordsAtOnce) {
        const uint64_t chosen = pairAt(mask + i);
        const auto set = static_cast<uint32_t>(std::popcount(chosen));
        writer.put(_pext_u64(pairAt(words + i), chosen), set);
        total += set;
    }
    out = writer;
    return total;
}

Pack choosePack() {
    const bool hasInstruction = __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt");
    return hasInstruction ? packByInstruction : packByShifts;
}
#else
Pack choosePack() { return packByShifts; }
#endif

} // namespace

uint32_t compressBits(const uint32_t* words, const uint32_t* mask, uint32_t bits, uint32_t* target,
                      uint32_t room, WorkMeter& meter) {
    static const Pack pack = choosePack();
    BitWriter writer(target, room);
    uint32_t total = 0;
    const uint32_t pairs = bits / bitsAtOnce;
    inPieces(pairs, meter, [&](uint32_t first, uint32_t end) {
        const uint32_t word = first * wordsAtOnce;
        total += pack(words + word, mask + word, end - first, writer);
    });
    if (const uint32_t rest = bits % bitsAtOnce) {
        const uint32_t word = pairs * wordsAtOnce;
        const bool hasSecond = rest > bitsPerWord;
        const uint32_t secondMask = hasSecond ? mask[word + 1] & lowBits(rest - bitsPerWord) : 0;
        const uint32_t lastMask[] = {mask[word] & lowBits(rest), secondMask};
        const uint32_t lastWords[] = {words[word], hasSecond ? words[word + 1] : 0};
        total += pack(lastWords, lastMask, 1, writer);
    }
    writer.finish();
    return total;
}

// Turning round: first whole words, then the gap that the last word began with is closed.

namespace {

constexpr uint32_t turnedAtOnce = 1024;

// `words` ends where the block ends; `turned` has room for one word more, which closes the gap.
[[gnu::always_inline]] inline void turnWords(const uint32_t* words, uint32_t count,
                                             uint32_t* turned) {
    const uint32_t* const last = words + count - 1;
    constexpr uint32_t wordsPerBlock = 16;
    uint32_t i = 0;
    for (; i + wordsPerBlock <= count; i += wordsPerBlock) {
        for (uint32_t k = 0; k < wordsPerBlock; ++k) turned[i + k] = reversed(*(last - i - k));
    }
    for (; i < count; ++i) turned[i] = reversed(*(last - i));
}

[[gnu::always_inline]] inline void closeGap(const uint32_t* turned, uint32_t count, uint32_t gap,
                                            uint32_t* target) {
    const uint32_t rest = bitsPerWord - 1 - gap;
    mapLanesInline(
        target, count, [=](uint32_t low, uint32_t high) { return low >> gap | high << 1 << rest; },
        turned, turned + 1);
}

using Turn = void (*)(const uint32_t* words, uint32_t count, uint32_t gap, uint32_t before,
                      uint32_t* target);

[[gnu::always_inline]] inline void turnBlockInline(const uint32_t* words, uint32_t count,
                                                   uint32_t gap, uint32_t before,
                                                   uint32_t* target) {
    std::array<uint32_t, turnedAtOnce + 1> turned;
    turnWords(words, count, turned.data());
    turned[count] = before;
    closeGap(turned.data(), count, gap, target);
}

void turnBlock(const uint32_t* words, uint32_t count, uint32_t gap, uint32_t before,
               uint32_t* target) {
    turnBlockInline(words, count, gap, before, target);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] void turnBlockInWideLanes(const uint32_t* words, uint32_t count,
                                                  uint32_t gap, uint32_t before, uint32_t* target) {
    turnBlockInline(words, count, gap, before, target);
}
Turn chooseTurn() { return platform::hasWideInstructions() ? turnBlockInWideLanes : turnBlock; }
#else
Turn chooseTurn() { return turnBlock; }
#endif

} // namespace

void reverseBits(const uint32_t* words, uint32_t bits, uint32_t* target, WorkMeter& meter) {
    static const Turn turn = chooseTurn();
    const uint32_t count = wordsFor(bits);
    const uint32_t gap = count * bitsPerWord - bits;
    for (uint32_t first = 0; first < count;) {
        const uint32_t length = std::min(turnedAtOnce, count - first);
        const uint32_t begin = count - first - length;
        const uint32_t before = begin > 0 ? reversed(words[begin - 1]) : 0;
        turn(words + begin, length, gap, before, target + first);
        meter.add(length);
        first += length;
    }
}

// Positions, by a table of those in a byte.

namespace {

constexpr uint32_t bitsPerByte = 8;
using Byte = std::array<int32_t, bitsPerByte>;

constexpr std::array<Byte, 256> makePositions() {
    std::array<Byte, 256> all{};
    for (std::size_t byte = 0; byte < all.size(); ++byte) {
        std::size_t found = 0;
        for (int32_t k = 0; k < int32_t(bitsPerByte); ++k) {
            if (byte >> k & 1) all[byte][found++] = k;
        }
    }
    return all;
}

constexpr std::array<Byte, 256> positionsOf = makePositions();

int32_t* writeFew(uint32_t word, int32_t base, int32_t* next) {
    for (; word != 0; word &= word - 1) *next++ = base + std::countr_zero(word);
    return next;
}

// The table is not what is written: the compiler may take all eight at once.
[[gnu::always_inline]] inline void writeByte(const int32_t* __restrict positions, int32_t base,
                                             int32_t* __restrict next) {
    for (uint32_t k = 0; k < bitsPerByte; ++k) next[k] = base + positions[k];
}

// Writes a whole byte's worth each time: the caller sees to the room for a word's.
[[gnu::always_inline]] inline int32_t* writeMany(uint32_t word, int32_t base, int32_t* next) {
    for (uint32_t shift = 0; shift < bitsPerWord; shift += bitsPerByte) {
        const uint32_t byte = word >> shift & 0xff;
        writeByte(positionsOf[byte].data(), static_cast<int32_t>(base + shift), next);
        next += std::popcount(byte);
    }
    return next;
}

using WritePositions = int32_t* (*)(const uint32_t* words, uint32_t first, uint32_t count,
                                    int32_t* next, const int32_t* end);

[[gnu::always_inline]] inline int32_t* writePositionsInline(const uint32_t* words, uint32_t first,
                                                            uint32_t count, int32_t* next,
                                                            const int32_t* end) {
    for (uint32_t i = first; i < first + count; ++i) {
        if (words[i] == 0) continue;
        const auto base = static_cast<int32_t>(i * bitsPerWord);
        next = end - next >= static_cast<int64_t>(bitsPerWord) ? writeMany(words[i], base, next)
                                                               : writeFew(words[i], base, next);
    }
    return next;
}

int32_t* writeSomePositions(const uint32_t* words, uint32_t first, uint32_t count, int32_t* next,
                            const int32_t* end) {
    return writePositionsInline(words, first, count, next, end);
}

#if defined(__x86_64__)
[[gnu::target("avx2,popcnt")]] int32_t* writeSomePositionsInWideLanes(const uint32_t* words,
                                                                      uint32_t first,
                                                                      uint32_t count, int32_t* next,
                                                                      const int32_t* end) {
    return writePositionsInline(words, first, count, next, end);
}
WritePositions chooseWritePositions() {
    return platform::hasWideInstructions() ? writeSomePositionsInWideLanes : writeSomePositions;
}
#else
WritePositions chooseWritePositions() { return writeSomePositions; }
#endif

} // namespace

void writePositions(const uint32_t* words, uint32_t bits, int32_t* positions, uint32_t count,
                    WorkMeter& meter) {
    static const WritePositions writeSome = chooseWritePositions();
    int32_t* next = positions;
    inPieces(bits / bitsPerWord, meter, [&](uint32_t first, uint32_t end) {
        next = writeSome(words, first, end - first, next, positions + count);
    });
    const uint32_t rest = bits % bitsPerWord;
    if (rest == 0) return;
    writeFew(words[bits / bitsPerWord] & lowBits(rest), static_cast<int32_t>(bits - rest), next);
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
    uint64_t eight;
    std::memcpy(&eight, digits, sizeof eight);
    if constexpr (std::endian::native == std::endian::big) eight = __builtin_bswap64(eight);
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
    inPieces(count / bitsPerWord, meter, [&](uint32_t from, uint32_t end) {
        for (uint32_t i = from; i < end; ++i) {
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
    inPieces(count / bitsPerWord, meter, [&](uint32_t from, uint32_t end) {
        for (uint32_t i = from; i < end; ++i) {
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
