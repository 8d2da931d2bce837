#include "CpidIndex.h"

#include "Conversions.h"

#include <limits>

namespace pallix::tables {

namespace {

// A pair is one 64-bit key, the chip in the high half.
static_assert(std::numeric_limits<unsigned>::digits <= 32, "a pair must fit one 64-bit key");

constexpr std::size_t kChipWidth = 4;
constexpr std::size_t kBoardWidth = 2;
// The most digits printf writes for an unsigned number.
constexpr std::size_t kMostDigits = std::numeric_limits<unsigned>::digits / 4;
constexpr std::size_t kFewestSlots = 16;
constexpr std::size_t kEmpty = CpidIndex::npos;

// The number that "%0<width>X" prints as exactly this text, if there is one: upper-case digits
// only, at least `width` of them, and more only when the first is not a 0, which printf would
// not have written. Any other text ("8a00", " 8A00", "08A00") matches no printed number.
bool printedNumber(const NString& text, std::size_t width, unsigned& number) noexcept {
    const std::size_t size = text.size();
    const char* digits = text.data();
    if (size < width || size > kMostDigits || (size > width && digits[0] == '0')) {
        return false;
    }
    unsigned value = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const char c = digits[i];
        unsigned digit = 0;
        if (c >= '0' && c <= '9') {
            digit = static_cast<unsigned>(c - '0');
        } else if (c >= 'A' && c <= 'F') {
            digit = static_cast<unsigned>(c - 'A' + 10);
        } else {
            return false;
        }
        value = (value << 4) | digit;
    }
    number = value;
    return true;
}

constexpr std::uint64_t keyOf(unsigned chip, unsigned board) noexcept {
    return (static_cast<std::uint64_t>(chip) << 32) | board;
}

// Fibonacci hashing: the multiplication spreads neighbouring chips and boards over the slots.
std::size_t home(std::uint64_t key, std::size_t mask) noexcept {
    return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15ull) >> 32) & mask;
}

bool tooFull(std::size_t used, std::size_t slots) noexcept {
    return used * 4 > slots * 3;
}

} // namespace

void CpidIndex::reset(std::size_t rows) {
    m_keys.clear();
    m_used = 0;
    if (rows == 0) {
        m_slots.clear();
        return;
    }
    m_keys.reserve(rows);
    std::size_t size = kFewestSlots;
    while (tooFull(rows, size)) {
        size *= 2;
    }
    m_slots.assign(size, kEmpty);
}

void CpidIndex::add(const NString& cpid, const NString& bdid) {
    unsigned chip = 0;
    unsigned board = 0;
    const bool matchable =
        printedNumber(cpid, kChipWidth, chip) && printedNumber(bdid, kBoardWidth, board);
    m_keys.push_back(keyOf(chip, board));
    if (!matchable) {
        return;
    }
    if (m_slots.empty() || tooFull(m_used + 1, m_slots.size())) {
        grow();
    }
    insert(m_keys.size() - 1);
}

std::size_t CpidIndex::find(unsigned chip, unsigned board) const noexcept {
    const std::size_t position = lookup(keyOf(chip, board));
    if (position != npos || board == pallix::format::kFallbackBoard) {
        return position;
    }
    return lookup(keyOf(chip, pallix::format::kFallbackBoard));
}

std::size_t CpidIndex::lookup(std::uint64_t key) const noexcept {
    if (m_slots.empty()) {
        return npos;
    }
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = home(key, mask);; i = (i + 1) & mask) {
        const std::size_t position = m_slots[i];
        if (position == kEmpty || m_keys[position] == key) {
            return position;
        }
    }
}

void CpidIndex::insert(std::size_t position) noexcept {
    const std::uint64_t key = m_keys[position];
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = home(key, mask);; i = (i + 1) & mask) {
        std::size_t& slot = m_slots[i];
        if (slot == kEmpty) {
            slot = position;
            ++m_used;
            return;
        }
        if (m_keys[slot] == key) {
            // An earlier row has the pair and keeps it.
            return;
        }
    }
}

void CpidIndex::grow() {
    std::vector<std::size_t> old(m_slots.empty() ? kFewestSlots : m_slots.size() * 2, kEmpty);
    old.swap(m_slots);
    m_used = 0;
    for (const std::size_t position : old) {
        if (position != kEmpty) {
            insert(position);
        }
    }
}

} // namespace pallix::tables
