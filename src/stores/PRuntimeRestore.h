#pragma once

#include "PRuntimeRestoreAutoActivate.h"
#include "PRuntimeRestoreCustomFirmware.h"
#include "PRuntimeRestoreError.h"
#include "PRuntimeRestoreOtherFirmware.h"
#include "PallixRuntimeExport.h"

// The restore function's state: which devices to activate after a restore, the firmware files
// matched by hand to download addresses, extra firmware directories and the restore error
// table. It owns the four sub-objects; each accessor hands out the object itself.
//
// The order of the virtual operations is part of the binary interface; so is the order of the
// parts, which are built in that order and destroyed in the reverse one.
class PALLIX_RUNTIME_EXPORT PRuntimeRestore {
public:
    PRuntimeRestore() noexcept;
    virtual ~PRuntimeRestore();

    virtual PRuntimeRestoreAutoActivate* autoActivate();
    virtual PRuntimeRestoreCustomFirmware* customFirmware();
    virtual PRuntimeRestoreOtherFirmware* otherFirmware();
    virtual PRuntimeRestoreError* restoreError();

    PRuntimeRestore(const PRuntimeRestore&) = delete;
    PRuntimeRestore& operator=(const PRuntimeRestore&) = delete;

private:
    PRuntimeRestoreAutoActivate m_autoActivate;
    PRuntimeRestoreCustomFirmware m_customFirmware;
    PRuntimeRestoreOtherFirmware m_otherFirmware;
    PRuntimeRestoreError m_restoreError;
};
