#pragma once

namespace pallix {

// The product's web site, opened by PRuntimeShell::OpenTolvane.
inline constexpr char productAddress[] = "https://www.tolvane.com/";

} // namespace pallix
