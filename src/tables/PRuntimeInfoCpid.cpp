#include "PRuntimeInfoCpid.h"

#include <utility>

PRuntimeInfoCpid::PRuntimeInfoCpid() noexcept = default;

PRuntimeInfoCpid::PRuntimeInfoCpid(const NString& cpid, const NString& bdid, const NString& mode,
                                   const NString& network, const NString& product,
                                   bool support) noexcept
    : m_cpid(cpid), m_bdid(bdid), m_mode(mode), m_network(network), m_product(product),
      m_support(support) {}

PRuntimeInfoCpid::PRuntimeInfoCpid(NString&& cpid, NString&& bdid, NString&& mode,
                                   NString&& network, NString&& product, bool support) noexcept
    : m_cpid(std::move(cpid)), m_bdid(std::move(bdid)), m_mode(std::move(mode)),
      m_network(std::move(network)), m_product(std::move(product)), m_support(support) {}

PRuntimeInfoCpid::PRuntimeInfoCpid(const PRuntimeInfoCpid&) = default;

PRuntimeInfoCpid::PRuntimeInfoCpid(PRuntimeInfoCpid&&) noexcept = default;

PRuntimeInfoCpid& PRuntimeInfoCpid::operator=(const PRuntimeInfoCpid&) = default;

PRuntimeInfoCpid& PRuntimeInfoCpid::operator=(PRuntimeInfoCpid&&) noexcept = default;

PRuntimeInfoCpid::~PRuntimeInfoCpid() = default;

bool PRuntimeInfoCpid::isMatch(const NString& cpid, const NString& bdid) const {
    return m_cpid == cpid && m_bdid == bdid;
}

const NString& PRuntimeInfoCpid::cpid() const {
    return m_cpid;
}

const NString& PRuntimeInfoCpid::bdid() const {
    return m_bdid;
}

const NString& PRuntimeInfoCpid::mode() const {
    return m_mode;
}

const NString& PRuntimeInfoCpid::network() const {
    return m_network;
}

const NString& PRuntimeInfoCpid::product() const {
    return m_product;
}

bool PRuntimeInfoCpid::support() const {
    return m_support;
}
