#include "PRuntimeFactory.h"

PRuntimeFactory::PRuntimeFactory() noexcept = default;

PRuntimeFactory::~PRuntimeFactory() = default;
