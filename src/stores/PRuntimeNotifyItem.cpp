#include "PRuntimeNotifyItem.h"

#include "Operation.h"

PRuntimeNotifyItem::PRuntimeNotifyItem() noexcept = default;

PRuntimeNotifyItem::PRuntimeNotifyItem(const PRuntimeNotifyItem& other) noexcept
    : m_id(other.m_id), m_isSystem(other.m_isSystem), m_title(other.m_title), m_url(other.m_url),
      m_isPopup(other.m_isPopup), m_timestamp(other.m_timestamp), m_userID(other.m_userID),
      m_alreadyRead(other.m_alreadyRead), m_alreadyPopup(other.m_alreadyPopup),
      m_remove(other.m_remove) {}

PRuntimeNotifyItem& PRuntimeNotifyItem::operator=(const PRuntimeNotifyItem& other) noexcept {
    if (this != &other) {
        m_id = other.m_id;
        m_isSystem = other.m_isSystem;
        m_title = other.m_title;
        m_url = other.m_url;
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

void PRuntimeNotifyItem::setID(unsigned long long id) {
    m_id = id;
}

void PRuntimeNotifyItem::setIsSystem(bool isSystem) {
    m_isSystem = isSystem;
}

void PRuntimeNotifyItem::setTitle(const NString& title) {
    pallix::operation([&] { m_title = title; });
}

void PRuntimeNotifyItem::setURL(const NString& url) {
    pallix::operation([&] { m_url = url; });
}

void PRuntimeNotifyItem::setIsPopup(bool isPopup) {
    m_isPopup = isPopup;
}

void PRuntimeNotifyItem::setTimestamp(long long timestamp) {
    m_timestamp = timestamp;
}

void PRuntimeNotifyItem::setUserID(unsigned long long userID) {
    m_userID = userID;
}

void PRuntimeNotifyItem::setAlreadyRead(bool alreadyRead) {
    m_alreadyRead = alreadyRead;
}

void PRuntimeNotifyItem::setAlreadyPopup(bool alreadyPopup) {
    m_alreadyPopup = alreadyPopup;
}

void PRuntimeNotifyItem::setRemove(bool remove) {
    m_remove = remove;
}

unsigned long long PRuntimeNotifyItem::id() const {
    return m_id;
}

bool PRuntimeNotifyItem::isSystem() const {
    return m_isSystem;
}

NString PRuntimeNotifyItem::title() const {
    return pallix::operation([&] { return m_title; });
}

NString PRuntimeNotifyItem::url() const {
    return pallix::operation([&] { return m_url; });
}

bool PRuntimeNotifyItem::isPopup() const {
    return m_isPopup;
}

long long PRuntimeNotifyItem::timestamp() const {
    return m_timestamp;
}

unsigned long long PRuntimeNotifyItem::userID() const {
    return m_userID;
}

bool PRuntimeNotifyItem::isAlreadyRead() const {
    return m_alreadyRead;
}

bool PRuntimeNotifyItem::isAlreadyPopup() const {
    return m_alreadyPopup;
}

bool PRuntimeNotifyItem::isRemove() const {
    return m_remove;
}
