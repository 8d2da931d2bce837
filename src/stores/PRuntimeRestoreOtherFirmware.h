#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

#include <functional>
#include <mutex>
#include <vector>

// Extra directories in which the restore function looks for firmware files, in the order they
// were added. Memory only; safe to share between threads.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeRestoreOtherFirmware {
public:
    using Visitor = std::function<void(const NString& path)>;

    PRuntimeRestoreOtherFirmware() noexcept;
    virtual ~PRuntimeRestoreOtherFirmware();

    // Adds the directory at the end; duplicates and empty texts are kept.
    virtual void append(const NString& directory);
    // Calls `visit`, when set, with the path that find(name) gives and returns true when there
    // is one.
    virtual bool find(const NString& name, const Visitor& visit);
    // Assigns the path that find(name) gives to `path` and returns true when there is one;
    // otherwise leaves `path` as it was.
    virtual bool find(const NString& name, NString& path);
    // directory + "/" + name for the first directory, in insertion order, in which a file of
    // that name exists; an empty text when there is none.
    virtual NString find(const NString& name);

    PRuntimeRestoreOtherFirmware(const PRuntimeRestoreOtherFirmware&) = delete;
    PRuntimeRestoreOtherFirmware& operator=(const PRuntimeRestoreOtherFirmware&) = delete;

private:
    std::mutex m_mutex;
    std::vector<NString> m_directories;
};
