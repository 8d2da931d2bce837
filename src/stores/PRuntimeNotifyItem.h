#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// One notification as the notification store keeps it: the message, the user it is addressed to
// and what that user has done with it. A plain value; every accessor is virtual because the
// class is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeNotifyItem {
public:
    PRuntimeNotifyItem() noexcept;
    // Copies every field, isSystem included. Should a text fail to copy for want of memory, it
    // is left empty rather than letting the failure escape.
    PRuntimeNotifyItem(const PRuntimeNotifyItem& other) noexcept;
    PRuntimeNotifyItem& operator=(const PRuntimeNotifyItem& other) noexcept;
    virtual ~PRuntimeNotifyItem();

    virtual void setID(unsigned long long id) noexcept;
    // Marks a notification that the application made itself. Only ever held in memory: the
    // store does not write it, and items read from a file have it false.
    virtual void setIsSystem(bool isSystem) noexcept;
    virtual void setTitle(const NString& title) noexcept;
    virtual void setURL(const NString& url) noexcept;
    virtual void setIsPopup(bool isPopup) noexcept;
    // A count kept as the caller gives it; the store attaches no unit to it.
    virtual void setTimestamp(long long timestamp) noexcept;
    virtual void setUserID(unsigned long long userID) noexcept;
    virtual void setAlreadyRead(bool alreadyRead) noexcept;
    virtual void setAlreadyPopup(bool alreadyPopup) noexcept;
    // A deleted notification stays in the store, marked.
    virtual void setRemove(bool remove) noexcept;

    virtual unsigned long long id() const noexcept;
    virtual bool isSystem() const noexcept;
    virtual NString title() const noexcept;
    virtual NString url() const noexcept;
    virtual bool isPopup() const noexcept;
    virtual long long timestamp() const noexcept;
    virtual unsigned long long userID() const noexcept;
    virtual bool isAlreadyRead() const noexcept;
    virtual bool isAlreadyPopup() const noexcept;
    virtual bool isRemove() const noexcept;

private:
    unsigned long long m_id = 0;
    bool m_isSystem = false;
    NString m_title;
    NString m_url;
    bool m_isPopup = false;
    long long m_timestamp = 0;
    unsigned long long m_userID = 0;
    bool m_alreadyRead = false;
    bool m_alreadyPopup = false;
    bool m_remove = false;
};
