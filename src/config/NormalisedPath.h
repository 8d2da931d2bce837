#pragma once

#include "NString.h"

namespace pallix::config {

// The form in which the lists store and compare paths: the framework's lexical normalisation,
// so that two spellings of one folder count as one entry. An empty path stays empty.
NString normalisedPath(const NString& path);

} // namespace pallix::config
