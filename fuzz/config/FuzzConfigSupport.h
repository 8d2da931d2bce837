#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace pallix::fuzz {

// The configuration directory of this process: a fresh temporary directory, set as the
// application's configuration and resources directory on first use and removed at exit.
const std::string& configDirectory();

// Puts the fuzz input where the reader looks for it (`name` inside the configuration
// directory).
void writeInput(const std::string& name, const std::uint8_t* data, std::size_t size);

// Empties the configuration record, scalars included, so that every input starts alike.
void resetRecord();

// Saves the record, then reads and saves the result twice more: once a file has been through
// the reader and the writer, another pass must give the very same bytes. Traps otherwise.
void checkWriterIsStable();

} // namespace pallix::fuzz
