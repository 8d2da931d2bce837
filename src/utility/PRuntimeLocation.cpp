#include "PRuntimeLocation.h"

PRuntimeLocation::PRuntimeLocation() noexcept = default;

PRuntimeLocation::~PRuntimeLocation() = default;
