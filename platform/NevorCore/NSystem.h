#pragma once

#include "NString.h"
#include "NevorCoreExport.h"

namespace NSystem {

// The user's home directory: HOME when set and not empty, else the password database's entry
// for the current user; empty when neither is known.
NEVORCORE_EXPORT NString userHome();

} // namespace NSystem
