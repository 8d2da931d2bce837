#include "PRuntimeCrashCode.h"

PRuntimeCrashCode::PRuntimeCrashCode() noexcept = default;

PRuntimeCrashCode::~PRuntimeCrashCode() = default;
