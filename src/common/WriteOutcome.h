#pragma once

namespace pallix {

// Whether the last file the library wrote on this thread reached the disk. The operations that
// save report nothing, by their signatures; PRuntime::lastWriteSucceeded() hands this out to a
// caller that needs to know, so that it never has to read the file back.
void recordWrite(bool succeeded) noexcept;
bool lastWriteSucceeded() noexcept;

} // namespace pallix
