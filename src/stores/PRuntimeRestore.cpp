#include "PRuntimeRestore.h"

// The sub-objects are members in the order of the accessors, so the language builds them in that
// order and destroys them in the reverse one; nothing is read until they are used.
PRuntimeRestore::PRuntimeRestore() noexcept = default;

PRuntimeRestore::~PRuntimeRestore() = default;

PRuntimeRestoreAutoActivate* PRuntimeRestore::autoActivate() noexcept {
    return &m_autoActivate;
}

PRuntimeRestoreCustomFirmware* PRuntimeRestore::customFirmware() noexcept {
    return &m_customFirmware;
}

PRuntimeRestoreOtherFirmware* PRuntimeRestore::otherFirmware() noexcept {
    return &m_otherFirmware;
}

PRuntimeRestoreError* PRuntimeRestore::restoreError() noexcept {
    return &m_restoreError;
}
