#include "PRuntimeInfoCpid.h"

#include <new>
#include <utility>

PRuntimeInfoCpid::PRuntimeInfoCpid() noexcept = default;

PRuntimeInfoCpid::PRuntimeInfoCpid(const NString& cpid, const NString& bdid, const NString& mode,
                                   const NString& network, const NString& product,
                                   bool support) noexcept {
    try {
        // Built aside and moved in, so that a failed copy leaves no half-filled row.
        NString copies[] = {cpid, bdid, mode, network, product};
        m_cpid = std::move(copies[0]);
        m_bdid = std::move(copies[1]);
        m_mode = std::move(copies[2]);
        m_network = std::move(copies[3]);
        m_product = std::move(copies[4]);
        m_support = support;
    } catch (const std::bad_alloc&) {
    }
}

PRuntimeInfoCpid::PRuntimeInfoCpid(const PRuntimeInfoCpid&) = default;

PRuntimeInfoCpid::PRuntimeInfoCpid(PRuntimeInfoCpid&&) noexcept = default;

PRuntimeInfoCpid& PRuntimeInfoCpid::operator=(const PRuntimeInfoCpid&) = default;

PRuntimeInfoCpid& PRuntimeInfoCpid::operator=(PRuntimeInfoCpid&&) noexcept = default;

PRuntimeInfoCpid::~PRuntimeInfoCpid() = default;

bool PRuntimeInfoCpid::isMatch(const NString& cpid, const NString& bdid) const noexcept {
    return m_cpid == cpid && m_bdid == bdid;
}

const NString& PRuntimeInfoCpid::cpid() const noexcept {
    return m_cpid;
}

const NString& PRuntimeInfoCpid::bdid() const noexcept {
    return m_bdid;
}

const NString& PRuntimeInfoCpid::mode() const noexcept {
    return m_mode;
}

const NString& PRuntimeInfoCpid::network() const noexcept {
    return m_network;
}

const NString& PRuntimeInfoCpid::product() const noexcept {
    return m_product;
}

bool PRuntimeInfoCpid::support() const noexcept {
    return m_support;
}
