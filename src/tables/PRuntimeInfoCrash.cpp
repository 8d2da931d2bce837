#include "PRuntimeInfoCrash.h"

#include "Operation.h"

#include <utility>

PRuntimeInfoCrash::PRuntimeInfoCrash() noexcept = default;

PRuntimeInfoCrash::PRuntimeInfoCrash(const NString& key, const NString& reason,
                                     const NString& solution) noexcept
    : m_key(key), m_reason(reason), m_solution(solution) {}

PRuntimeInfoCrash::PRuntimeInfoCrash(NString&& key, NString&& reason, NString&& solution) noexcept
    : m_key(std::move(key)), m_reason(std::move(reason)), m_solution(std::move(solution)) {}

PRuntimeInfoCrash::PRuntimeInfoCrash(const PRuntimeInfoCrash&) = default;

PRuntimeInfoCrash::PRuntimeInfoCrash(PRuntimeInfoCrash&&) noexcept = default;

PRuntimeInfoCrash& PRuntimeInfoCrash::operator=(const PRuntimeInfoCrash&) = default;

PRuntimeInfoCrash& PRuntimeInfoCrash::operator=(PRuntimeInfoCrash&&) noexcept = default;

PRuntimeInfoCrash::~PRuntimeInfoCrash() = default;

bool PRuntimeInfoCrash::isMatch(const NString& key) const {
    return pallix::operation([&] {
        if (key.empty()) {
            return false;
        }

        // The same test as the string's case-insensitive containment, both ways, with each
        // text folded once instead of once per direction.
        const NString row = m_key.foldCase();
        const NString query = key.foldCase();
        return row.contains(query) || query.contains(row);
    });
}

const NString& PRuntimeInfoCrash::key() const {
    return m_key;
}

const NString& PRuntimeInfoCrash::reason() const {
    return m_reason;
}

const NString& PRuntimeInfoCrash::solution() const {
    return m_solution;
}
