#include "PRuntimeRestore.h"

PRuntimeRestore::PRuntimeRestore() noexcept = default;

PRuntimeRestore::~PRuntimeRestore() = default;
