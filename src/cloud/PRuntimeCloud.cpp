#include "PRuntimeCloud.h"

PRuntimeCloud::PRuntimeCloud() noexcept = default;

PRuntimeCloud::~PRuntimeCloud() = default;
