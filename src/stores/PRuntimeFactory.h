#pragma once

#include "NDeviceInfoFactory.h"
#include "NMutex.h"
#include "PallixRuntimeExport.h"

#include <functional>
#include <map>

// Factory information of devices, kept per device identifier so that it is at hand after the
// device is gone. The file "/Factory.json" of the configuration directory is read on the first
// operation and rewritten whole after every change; the store is safe to share between threads.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeFactory {
public:
    using Visitor = std::function<void(unsigned long long id, const NDeviceInfoFactory& info)>;

    PRuntimeFactory() noexcept;
    virtual ~PRuntimeFactory();

protected:
    // Fills the map from the file; the caller holds the lock.
    virtual void _read();
    // Replaces the file with the map; the caller holds the lock.
    virtual void _write();

public:
    // Loads the file the first time only; a load that finds nothing is not tried again.
    virtual void initialize();
    virtual bool empty();
    virtual bool exist();
    // Inserts the record, or replaces the stored one whole, and rewrites the file. Any id and
    // any record are kept in memory, but an empty record is not written and id 0 is not read
    // back, so neither outlives the process.
    virtual void append(unsigned long long id, const NDeviceInfoFactory& info);
    // Whether a record is kept for the device; traverse() hands out the records themselves.
    virtual bool find(unsigned long long id);
    // Erases the record if there is one; the file is rewritten either way.
    virtual void remove(unsigned long long id);
    // Calls `visit` for every device in ascending id order, on a copy taken under the lock and
    // after releasing it, so that `visit` may use the store.
    virtual void traverse(const Visitor& visit);

    PRuntimeFactory(const PRuntimeFactory&) = delete;
    PRuntimeFactory& operator=(const PRuntimeFactory&) = delete;

private:
    bool m_initialized = false;
    NMutex m_mutex;
    std::map<unsigned long long, NDeviceInfoFactory> m_devices;
};
