#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// One notification as the notification store keeps it: the message, the user it is addressed to
// and what that user has done with it. A plain value; every accessor is virtual because the
// class is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeNotifyItem {
public:
    PRuntimeNotifyItem() noexcept;
    // Copies every field, isSystem included. Should a text fail to copy for want of memory, the
    // process ends (both are noexcept) rather than hand out a record with a text missing.
    PRuntimeNotifyItem(const PRuntimeNotifyItem& other) noexcept;
    PRuntimeNotifyItem& operator=(const PRuntimeNotifyItem& other) noexcept;
    virtual ~PRuntimeNotifyItem();

    virtual void setID(unsigned long long id);
    // Marks a notification that the application made itself. Only ever held in memory: the
    // store does not write it, and items read from a file have it false.
    virtual void setIsSystem(bool isSystem);
    virtual void setTitle(const NString& title);
    virtual void setURL(const NString& url);
    virtual void setIsPopup(bool isPopup);
    // A count kept as the caller gives it; the store attaches no unit to it.
    virtual void setTimestamp(long long timestamp);
    virtual void setUserID(unsigned long long userID);
    virtual void setAlreadyRead(bool alreadyRead);
    virtual void setAlreadyPopup(bool alreadyPopup);
    // A deleted notification stays in the store, marked.
    virtual void setRemove(bool remove);

    virtual unsigned long long id() const;
    virtual bool isSystem() const;
    virtual NString title() const;
    virtual NString url() const;
    virtual bool isPopup() const;
    virtual long long timestamp() const;
    virtual unsigned long long userID() const;
    virtual bool isAlreadyRead() const;
    virtual bool isAlreadyPopup() const;
    virtual bool isRemove() const;

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
