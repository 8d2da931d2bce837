#include "PRuntimeRestoreError.h"

PRuntimeRestoreError::PRuntimeRestoreError() noexcept = default;

PRuntimeRestoreError::~PRuntimeRestoreError() = default;
