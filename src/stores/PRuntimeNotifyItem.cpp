#include "PRuntimeNotifyItem.h"

namespace {

// Text assignment is the only step of this class that allocates. On failure the target keeps
// a valid value (its old text, or empty for a fresh copy) instead of letting bad_alloc escape.
void assignText(NString& target, const NString& source) noexcept {
    try {
        target = source;
    } catch (...) {
    }
}

NString copyText(const NString& source) noexcept {
    try {
        return source;
    } catch (...) {
        return NString();
    }
}

} // namespace

PRuntimeNotifyItem::PRuntimeNotifyItem() noexcept = default;

PRuntimeNotifyItem::PRuntimeNotifyItem(const PRuntimeNotifyItem& other) noexcept
    : m_id(other.m_id), m_isSystem(other.m_isSystem), m_isPopup(other.m_isPopup),
      m_timestamp(other.m_timestamp), m_userID(other.m_userID), m_alreadyRead(other.m_alreadyRead),
      m_alreadyPopup(other.m_alreadyPopup), m_remove(other.m_remove) {
    assignText(m_title, other.m_title);
    assignText(m_url, other.m_url);
}

PRuntimeNotifyItem& PRuntimeNotifyItem::operator=(const PRuntimeNotifyItem& other) noexcept {
    if (this != &other) {
        m_id = other.m_id;
        m_isSystem = other.m_isSystem;
        assignText(m_title, other.m_title);
        assignText(m_url, other.m_url);
        m_isPopup = other.m_isPopup;
        m_timestamp = other.m_timestamp;
        m_userID = other.m_userID;
        m_alreadyRead = other.m_alreadyRead;
        m_alreadyPopup = other.m_alreadyPopup;
        m_remove = other.m_remove;
    }
    return *this;
}

PRuntimeNotifyItem::~PRuntimeNotifyItem() = default;

void PRuntimeNotifyItem::setID(unsigned long long id) noexcept {
    m_id = id;
}

void PRuntimeNotifyItem::setIsSystem(bool isSystem) noexcept {
    m_isSystem = isSystem;
}

void PRuntimeNotifyItem::setTitle(const NString& title) noexcept {
    assignText(m_title, title);
}

void PRuntimeNotifyItem::setURL(const NString& url) noexcept {
    assignText(m_url, url);
}

void PRuntimeNotifyItem::setIsPopup(bool isPopup) noexcept {
    m_isPopup = isPopup;
}

void PRuntimeNotifyItem::setTimestamp(long long timestamp) noexcept {
    m_timestamp = timestamp;
}

void PRuntimeNotifyItem::setUserID(unsigned long long userID) noexcept {
    m_userID = userID;
}

void PRuntimeNotifyItem::setAlreadyRead(bool alreadyRead) noexcept {
    m_alreadyRead = alreadyRead;
}

void PRuntimeNotifyItem::setAlreadyPopup(bool alreadyPopup) noexcept {
    m_alreadyPopup = alreadyPopup;
}

void PRuntimeNotifyItem::setRemove(bool remove) noexcept {
    m_remove = remove;
}

unsigned long long PRuntimeNotifyItem::id() const noexcept {
    return m_id;
}

bool PRuntimeNotifyItem::isSystem() const noexcept {
    return m_isSystem;
}

NString PRuntimeNotifyItem::title() const noexcept {
    return copyText(m_title);
}

NString PRuntimeNotifyItem::url() const noexcept {
    return copyText(m_url);
}

bool PRuntimeNotifyItem::isPopup() const noexcept {
    return m_isPopup;
}

long long PRuntimeNotifyItem::timestamp() const noexcept {
    return m_timestamp;
}

unsigned long long PRuntimeNotifyItem::userID() const noexcept {
    return m_userID;
}

bool PRuntimeNotifyItem::isAlreadyRead() const noexcept {
    return m_alreadyRead;
}

bool PRuntimeNotifyItem::isAlreadyPopup() const noexcept {
    return m_alreadyPopup;
}

bool PRuntimeNotifyItem::isRemove() const noexcept {
    return m_remove;
}
