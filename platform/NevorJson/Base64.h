#pragma once

#include <optional>
#include <string>

namespace nevor::json {

std::string encodeBase64(const std::string& bytes);
// Standard alphabet with padding; nullopt for text that is not base64.
std::optional<std::string> decodeBase64(const std::string& text);

} // namespace nevor::json
