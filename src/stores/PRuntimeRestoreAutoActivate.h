#pragma once

#include "PallixRuntimeExport.h"

#include <map>
#include <mutex>

// Which devices the restore function activates by itself once their restore has finished. The
// choices live in memory only, for the life of the process; safe to share between threads.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeRestoreAutoActivate {
public:
    PRuntimeRestoreAutoActivate() noexcept;
    virtual ~PRuntimeRestoreAutoActivate();

    virtual bool exist(unsigned long long id) const;
    // Replaces any earlier choice for the device. The removal and the insertion are two lock
    // sections, so another thread may run in between.
    virtual void append(unsigned long long id, bool activate);
    virtual void remove(unsigned long long id);
    // Stores the choice in `activate` and returns true when the device has one; otherwise
    // leaves `activate` as it was.
    virtual bool find(unsigned long long id, bool& activate) const;

    PRuntimeRestoreAutoActivate(const PRuntimeRestoreAutoActivate&) = delete;
    PRuntimeRestoreAutoActivate& operator=(const PRuntimeRestoreAutoActivate&) = delete;

private:
    mutable std::mutex m_mutex;
    std::map<unsigned long long, bool> m_choices;
};
