#include "PRuntimeCloudDeviceProcessItem.h"

#include <utility>

PRuntimeCloudDeviceProcessItem::PRuntimeCloudDeviceProcessItem(NString startsWith, NString contains,
                                                               NString endsWith,
                                                               NString name) noexcept
    : m_startsWith(std::move(startsWith)), m_contains(std::move(contains)),
      m_endsWith(std::move(endsWith)), m_name(std::move(name)) {}

PRuntimeCloudDeviceProcessItem::~PRuntimeCloudDeviceProcessItem() = default;

const NString& PRuntimeCloudDeviceProcessItem::startsWith() const {
    return m_startsWith;
}

const NString& PRuntimeCloudDeviceProcessItem::contains() const {
    return m_contains;
}

const NString& PRuntimeCloudDeviceProcessItem::endsWith() const {
    return m_endsWith;
}

const NString& PRuntimeCloudDeviceProcessItem::name() const {
    return m_name;
}
