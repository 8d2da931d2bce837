#pragma once

#include <string>

namespace pallix::bench {

// A directory of its own under the system's temporary directory, removed with everything in it
// when the object goes. The temporary directory is where a user's files usually live too (the
// same file system as the home), so an fsync there costs what it costs the application.
class ScratchDirectory {
public:
    explicit ScratchDirectory(const std::string& label);
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

} // namespace pallix::bench
