#include "PRuntimeString.h"

PRuntimeString::PRuntimeString() noexcept = default;

PRuntimeString::~PRuntimeString() = default;
