#pragma once

#include <string>

namespace pallix::test {

// The bytes of tests/data/<name>, the file as the library wrote it for the same content before
// any change to its writer.
std::string goldenBytes(const std::string& name);

// Whether `bytes` equal the golden file tests/data/<name>. When they do not, the bytes are
// left in "<base name>.actual" in the working directory, so that a deliberate change of a
// format can be inspected and taken over; `where` receives that path.
bool matchesGolden(const std::string& name, const std::string& bytes, std::string& where);

} // namespace pallix::test
