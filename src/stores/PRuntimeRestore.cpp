#include "PRuntimeRestore.h"

// The sub-objects are members in the order of the accessors, so the language builds them in that
// order and destroys them in the reverse one; nothing is read until they are used.
PRuntimeRestore::PRuntimeRestore() noexcept = default;

PRuntimeRestore::~PRuntimeRestore() = default;

PRuntimeRestoreAutoActivate* PRuntimeRestore::autoActivate() {
    return &m_autoActivate;
}

PRuntimeRestoreCustomFirmware* PRuntimeRestore::customFirmware() {
    return &m_customFirmware;
}

PRuntimeRestoreOtherFirmware* PRuntimeRestore::otherFirmware() {
    return &m_otherFirmware;
}

PRuntimeRestoreError* PRuntimeRestore::restoreError() {
    return &m_restoreError;
}
