#include "PRuntimeAnimation.h"

PRuntimeAnimation::PRuntimeAnimation() noexcept = default;

PRuntimeAnimation::~PRuntimeAnimation() = default;
