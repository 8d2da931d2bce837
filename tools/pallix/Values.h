#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>
#include <optional>
#include <string>

// The values a user types, refused when the file they go to cannot hold them. CLI11's own
// conversions are too lenient for that ("-1" becomes 18446744073709551615 in an unsigned
// option, "nan" is a number), so every number and text of the tool goes through these.
namespace pallix::tool {

// How a whole number may be written: decimal digits; or also hexadecimal after "0x"; or
// hexadecimal digits with or without "0x" (device identifiers).
enum class Digits { Decimal, DecimalOrHex, Hex };

// A whole number within [minimum, maximum], with an optional minus when `minimum` is negative;
// nothing for anything else, "+1", " 1" and "1.0" included. The one integer parser of the tool.
std::optional<long long> parseInteger(const std::string& text, long long minimum, long long maximum,
                                      Digits digits = Digits::Decimal);
std::optional<unsigned long long> parseUnsigned(const std::string& text, unsigned long long maximum,
                                                Digits digits = Digits::Decimal);
// A finite number in decimal notation ("-1.5", "2e-3"), whatever the locale; nothing for
// anything else, "+1", " 1", "0x10" (strtod's hexadecimal), "nan" and "inf" included.
std::optional<double> parseFiniteNumber(const std::string& text);

// Validators for CLI11 options built on the parsers above. A number that they accept is handed
// on in plain decimal: CLI11's own conversion reads a leading 0 as octal ("010" as 8) and "0x"
// as hexadecimal. `why` ends the message of a refusal, in parentheses.
CLI::Validator IntegerIn(long long minimum, long long maximum, const std::string& why = "",
                         Digits digits = Digits::Decimal);
CLI::Validator UnsignedUpTo(unsigned long long maximum, const std::string& why = "");
CLI::Validator XmlText();
// Refuses an empty path, which an unset variable in a script gives and which would otherwise
// read as the option left out; `hint` ends the message, in parentheses.
CLI::Validator NonEmptyPath(const std::string& hint = "");

} // namespace pallix::tool
