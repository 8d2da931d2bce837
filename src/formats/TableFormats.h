#pragma once

#include "Conversions.h"

// The four reference tables. Each is a root element holding one element per row, read by
// position whatever its name, with the row's fields in attributes.
namespace pallix::format {

namespace cpid {
inline constexpr char kRoot[] = "DEVICE";
inline constexpr char kChip[] = "CPID";
inline constexpr char kBoard[] = "BDID";
inline constexpr char kModel[] = "MODE";
inline constexpr char kNetwork[] = "NETWORK";
inline constexpr char kProduct[] = "PRODUCT";
inline constexpr char kSupport[] = "SUPPORT";
} // namespace cpid

namespace crash {
inline constexpr char kRoot[] = "CRASH";
inline constexpr char kKey[] = "KEY";
inline constexpr char kReason[] = "REASON";
inline constexpr char kSolution[] = "SOLUTION";
} // namespace crash

namespace restore_error {
inline constexpr char kRoot[] = "APPLE";
inline constexpr char kCode[] = "CODE";
inline constexpr ValueKind kCodeKind = ValueKind::Int64; // a row is kept under its code as read
inline constexpr char kDescription[] = "DESCRIBE";
inline constexpr char kSolution[] = "SOLUTION";
} // namespace restore_error

namespace plugin_mapping {
inline constexpr char kRoot[] = "Nevor";
inline constexpr char kVersion[] = "Version";
inline constexpr char kMapping[] = "Mapping";
} // namespace plugin_mapping

} // namespace pallix::format
