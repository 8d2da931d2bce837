#include "PRuntimeNotify.h"

PRuntimeNotify::PRuntimeNotify() noexcept = default;

PRuntimeNotify::~PRuntimeNotify() = default;
