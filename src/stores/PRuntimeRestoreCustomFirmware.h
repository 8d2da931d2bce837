#pragma once

#include "NMutex.h"
#include "NString.h"
#include "PallixRuntimeExport.h"

#include <functional>
#include <map>

// Firmware files that the user has matched by hand to a firmware download address, kept in
// "/RestoreIpsw.xml" of the configuration directory. The file is the only lasting state: every
// operation reads it again first, so changes made by another instance or by hand are seen at
// once, and an entry whose local file has gone is dropped from every answer and from the file
// at the next write. Safe to share between threads.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeRestoreCustomFirmware {
public:
    using Visitor = std::function<void(const NString& local)>;

    PRuntimeRestoreCustomFirmware() noexcept;
    virtual ~PRuntimeRestoreCustomFirmware();

protected:
    // Rebuilds the table from the file, keeping the entries whose local file exists.
    virtual void _read();
    // Replaces the file with the table.
    virtual void _write();

public:
    // Matches `url` to `local` (replacing an earlier match) and rewrites the file. Empty texts
    // are kept as they are.
    virtual void append(const NString& url, const NString& local);
    // Forgets the match of `url`; the file is rewritten either way.
    virtual void remove(const NString& url);
    // Calls `visit` with the local path of `url`, if `url` is matched and `visit` is set, and
    // returns whether it is matched. `visit` runs under the store's lock, which is recursive:
    // it may use the store again.
    virtual bool find(const NString& url, const Visitor& visit);
    // Assigns the local path of `url` to `local` and returns true when `url` is matched;
    // otherwise leaves `local` as it was.
    virtual bool find(const NString& url, NString& local);
    // The local path of `url`, or an empty text when it is not matched.
    virtual NString find(const NString& url);

    // Beyond the virtual operations: calls `visit` with every match, by address, after reading
    // the file again like every operation (entries whose local file has gone are left out).
    void traverse(const std::function<void(const NString& url, const NString& local)>& visit);

    PRuntimeRestoreCustomFirmware(const PRuntimeRestoreCustomFirmware&) = delete;
    PRuntimeRestoreCustomFirmware& operator=(const PRuntimeRestoreCustomFirmware&) = delete;

private:
    // Never becomes true: the file is read again by every operation.
    bool m_loaded = false;
    // Recursive because _write() takes it again while an operation holds it.
    NMutex m_mutex;
    std::map<NString, NString> m_matches;
};
