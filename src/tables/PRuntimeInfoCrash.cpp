#include "PRuntimeInfoCrash.h"

#include <new>
#include <utility>

PRuntimeInfoCrash::PRuntimeInfoCrash() noexcept = default;

PRuntimeInfoCrash::PRuntimeInfoCrash(const NString& key, const NString& reason,
                                     const NString& solution) noexcept {
    try {
        // Built aside and moved in, so that a failed copy leaves no half-filled row.
        NString copies[] = {key, reason, solution};
        m_key = std::move(copies[0]);
        m_reason = std::move(copies[1]);
        m_solution = std::move(copies[2]);
    } catch (const std::bad_alloc&) {
    }
}

PRuntimeInfoCrash::PRuntimeInfoCrash(const PRuntimeInfoCrash&) = default;

PRuntimeInfoCrash::PRuntimeInfoCrash(PRuntimeInfoCrash&&) noexcept = default;

PRuntimeInfoCrash& PRuntimeInfoCrash::operator=(const PRuntimeInfoCrash&) = default;

PRuntimeInfoCrash& PRuntimeInfoCrash::operator=(PRuntimeInfoCrash&&) noexcept = default;

PRuntimeInfoCrash::~PRuntimeInfoCrash() = default;

bool PRuntimeInfoCrash::isMatch(const NString& key) const noexcept {
    if (key.empty()) {
        return false;
    }
    try {
        // The same test as the string's case-insensitive containment, both ways, with each
        // text folded once instead of once per direction.
        const NString row = m_key.foldCase();
        const NString query = key.foldCase();
        return row.contains(query) || query.contains(row);
    } catch (const std::bad_alloc&) {
        // Folding the case needs copies of both texts; without memory nothing can be said.
        return false;
    }
}

const NString& PRuntimeInfoCrash::key() const noexcept {
    return m_key;
}

const NString& PRuntimeInfoCrash::reason() const noexcept {
    return m_reason;
}

const NString& PRuntimeInfoCrash::solution() const noexcept {
    return m_solution;
}
