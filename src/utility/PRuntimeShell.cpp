#include "PRuntimeShell.h"

PRuntimeShell::PRuntimeShell() noexcept = default;

PRuntimeShell::~PRuntimeShell() = default;
