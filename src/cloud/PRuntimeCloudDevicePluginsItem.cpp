#include "PRuntimeCloudDevicePluginsItem.h"

#include <utility>

PRuntimeCloudDevicePluginsItem::PRuntimeCloudDevicePluginsItem(NString version, NString url,
                                                               NString hash) noexcept
    : m_version(std::move(version)), m_url(std::move(url)), m_hash(std::move(hash)) {}

PRuntimeCloudDevicePluginsItem::~PRuntimeCloudDevicePluginsItem() = default;

const NString& PRuntimeCloudDevicePluginsItem::version() const {
    return m_version;
}

const NString& PRuntimeCloudDevicePluginsItem::url() const {
    return m_url;
}

const NString& PRuntimeCloudDevicePluginsItem::hash() const {
    return m_hash;
}
