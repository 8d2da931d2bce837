#include "PRuntimeWindow.h"

PRuntimeWindow::PRuntimeWindow() noexcept = default;

PRuntimeWindow::~PRuntimeWindow() = default;
