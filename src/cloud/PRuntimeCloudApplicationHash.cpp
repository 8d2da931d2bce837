#include "PRuntimeCloudApplicationHash.h"

#include <utility>

PRuntimeCloudApplicationHash::PRuntimeCloudApplicationHash(NString name, NString hash,
                                                           NString url) noexcept
    : m_name(std::move(name)), m_hash(std::move(hash)), m_url(std::move(url)) {}

PRuntimeCloudApplicationHash::~PRuntimeCloudApplicationHash() = default;

const NString& PRuntimeCloudApplicationHash::name() const {
    return m_name;
}

const NString& PRuntimeCloudApplicationHash::hash() const {
    return m_hash;
}

const NString& PRuntimeCloudApplicationHash::url() const {
    return m_url;
}
