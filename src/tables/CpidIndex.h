#pragma once

#include "NString.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pallix::tables {

// Finds the row of a chip and board pair in constant time, with the answers of the walk it
// replaces: the walk prints the numbers with "%04X" and "%02X" and compares those texts exactly
// with each row's, so a row can only ever match when its texts are exactly what printf prints
// for some pair of numbers. Each such row is filed under its pair; the earliest row of a pair
// keeps the place, and any other row is left out, being one that no lookup could find.
class CpidIndex {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    // Forgets every row and makes room for `rows` rows, so that a table's load files them all
    // without growing.
    void reset(std::size_t rows);
    // Files the table's next row, the one at position rows(), by its texts.
    void add(const NString& cpid, const NString& bdid);
    // The rows filed so far.
    std::size_t rows() const noexcept { return m_keys.size(); }
    // The position of the pair's earliest row, or else that of the chip's earliest board-00
    // row, or npos.
    std::size_t find(unsigned chip, unsigned board) const noexcept;

private:
    std::size_t lookup(std::uint64_t key) const noexcept;
    void insert(std::size_t position) noexcept;
    void grow();

    // Each row's pair, by position; a row that no lookup can match has one that is never read.
    std::vector<std::uint64_t> m_keys;
    // Positions of rows, at most three quarters full, the size a power of two: open addressing
    // with linear probing. Keeping the pairs out of the slots makes the slots small enough to
    // stay in the cache while a load files 10,000 rows.
    std::vector<std::size_t> m_slots;
    std::size_t m_used = 0;
};

} // namespace pallix::tables
