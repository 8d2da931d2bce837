#pragma once

#include "Conversions.h"

// The stores of the configuration directory (their file names are in FileNames.h).
namespace pallix::format {

// notify.xml: <Nevor><Notify><Item><ID VALUE="..."/>...</Item></Notify></Nevor>. The old layout
// kept one notification per file, under a "ROOT" element, with its time in "Time".
namespace notify {
inline constexpr char kRoot[] = "Nevor";
inline constexpr char kList[] = "Notify";
inline constexpr char kItem[] = "Item";
inline constexpr char kValue[] = "VALUE";
inline constexpr char kId[] = "ID";
inline constexpr char kUserId[] = "UserID";
inline constexpr char kTitle[] = "Title";
inline constexpr char kTimestamp[] = "Timestamp";
inline constexpr char kAddress[] = "URL";
inline constexpr char kRead[] = "Read";
inline constexpr char kPopup[] = "Popup";
inline constexpr char kAlreadyPopup[] = "AlreadyPopup";
inline constexpr char kRemove[] = "Remove";
inline constexpr char kOldRoot[] = "ROOT";
inline constexpr char kOldTimestamp[] = "Time";
// How the store reads the value of each element (the old layout's time as kTimestamp's): a
// number beyond its width, or no number, is read as pugixml's conversion makes it.
struct Value {
    const char* element;
    ValueKind kind;
};
inline constexpr Value kValues[] = {
    {kId, ValueKind::UInt64},      {kUserId, ValueKind::UInt64},
    {kTitle, ValueKind::Text},     {kTimestamp, ValueKind::Int64},
    {kAddress, ValueKind::Text},   {kRead, ValueKind::Boolean},
    {kPopup, ValueKind::Boolean},  {kAlreadyPopup, ValueKind::Boolean},
    {kRemove, ValueKind::Boolean},
};
constexpr ValueKind kindOf(const char* element) {
    for (const Value& value : kValues) {
        if (sameName(value.element, element)) {
            return value.kind;
        }
    }
    return ValueKind::Text;
}
} // namespace notify

// PortBind.xml: <Rilo><BIND><Item SOURCE="..." TARGET="..."/></BIND></Rilo>
namespace portbind {
inline constexpr char kRoot[] = "Rilo";
inline constexpr char kList[] = "BIND";
inline constexpr char kItem[] = "Item";
inline constexpr char kSource[] = "SOURCE";
inline constexpr char kTarget[] = "TARGET";
} // namespace portbind

// RestoreIpsw.xml: <Rilo><MATCH><MATCH URL="..." LOCAL="..."/></MATCH></Rilo>
namespace custom_firmware {
inline constexpr char kRoot[] = "Rilo";
inline constexpr char kList[] = "MATCH";
inline constexpr char kItem[] = "MATCH";
inline constexpr char kAddress[] = "URL";
inline constexpr char kLocal[] = "LOCAL";
} // namespace custom_firmware

// Factory.json: {"<device id>": {"<key>": "<base64>", ...}, ...}; see Conversions.h for the id.

} // namespace pallix::format
