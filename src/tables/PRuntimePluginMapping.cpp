#include "PRuntimePluginMapping.h"

PRuntimePluginMapping::PRuntimePluginMapping() noexcept = default;

PRuntimePluginMapping::~PRuntimePluginMapping() = default;
