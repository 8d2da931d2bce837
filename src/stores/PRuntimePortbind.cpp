#include "PRuntimePortbind.h"

PRuntimePortbind::PRuntimePortbind() noexcept = default;

PRuntimePortbind::~PRuntimePortbind() = default;
