#include "PRuntimeCpid.h"

PRuntimeCpid::PRuntimeCpid() noexcept = default;

PRuntimeCpid::~PRuntimeCpid() = default;
