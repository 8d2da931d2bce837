#include "PRuntimeConfig.h"

PRuntimeConfig::PRuntimeConfig() noexcept = default;

PRuntimeConfig::~PRuntimeConfig() = default;
