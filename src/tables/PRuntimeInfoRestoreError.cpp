#include "PRuntimeInfoRestoreError.h"

#include <utility>

PRuntimeInfoRestoreError::PRuntimeInfoRestoreError() noexcept = default;

PRuntimeInfoRestoreError::PRuntimeInfoRestoreError(long long code, const NString& describe,
                                                   const NString& solution) noexcept
    : m_code(code), m_describe(describe), m_solution(solution) {}

PRuntimeInfoRestoreError::PRuntimeInfoRestoreError(long long code, NString&& describe,
                                                   NString&& solution) noexcept
    : m_code(code), m_describe(std::move(describe)), m_solution(std::move(solution)) {}

PRuntimeInfoRestoreError::PRuntimeInfoRestoreError(const PRuntimeInfoRestoreError&) = default;

PRuntimeInfoRestoreError::PRuntimeInfoRestoreError(PRuntimeInfoRestoreError&&) noexcept = default;

PRuntimeInfoRestoreError&
PRuntimeInfoRestoreError::operator=(const PRuntimeInfoRestoreError&) = default;

PRuntimeInfoRestoreError&
PRuntimeInfoRestoreError::operator=(PRuntimeInfoRestoreError&&) noexcept = default;

PRuntimeInfoRestoreError::~PRuntimeInfoRestoreError() = default;

bool PRuntimeInfoRestoreError::isMatch(long long code) const {
    return m_code == code;
}

long long PRuntimeInfoRestoreError::code() const {
    return m_code;
}

const NString& PRuntimeInfoRestoreError::describe() const {
    return m_describe;
}

const NString& PRuntimeInfoRestoreError::solution() const {
    return m_solution;
}
