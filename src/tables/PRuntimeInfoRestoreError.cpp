#include "PRuntimeInfoRestoreError.h"

#include <new>
#include <utility>

PRuntimeInfoRestoreError::PRuntimeInfoRestoreError() noexcept = default;

PRuntimeInfoRestoreError::PRuntimeInfoRestoreError(long long code, const NString& describe,
                                                   const NString& solution) noexcept
    : m_code(code) {
    try {
        // Built aside and moved in, so that a failed copy leaves no half-filled text pair.
        NString copies[] = {describe, solution};
        m_describe = std::move(copies[0]);
        m_solution = std::move(copies[1]);
    } catch (const std::bad_alloc&) {
    }
}

PRuntimeInfoRestoreError::PRuntimeInfoRestoreError(const PRuntimeInfoRestoreError&) = default;

PRuntimeInfoRestoreError::PRuntimeInfoRestoreError(PRuntimeInfoRestoreError&&) noexcept = default;

PRuntimeInfoRestoreError&
PRuntimeInfoRestoreError::operator=(const PRuntimeInfoRestoreError&) = default;

PRuntimeInfoRestoreError&
PRuntimeInfoRestoreError::operator=(PRuntimeInfoRestoreError&&) noexcept = default;

PRuntimeInfoRestoreError::~PRuntimeInfoRestoreError() = default;

bool PRuntimeInfoRestoreError::isMatch(long long code) const noexcept {
    return m_code == code;
}

long long PRuntimeInfoRestoreError::code() const noexcept {
    return m_code;
}

const NString& PRuntimeInfoRestoreError::describe() const noexcept {
    return m_describe;
}

const NString& PRuntimeInfoRestoreError::solution() const noexcept {
    return m_solution;
}
