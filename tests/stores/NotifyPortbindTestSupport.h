#pragma once

// Shared fixtures of the notification and port binding store tests: a configuration directory
// of their own, reading files back, and running a piece of code where the directory cannot be
// written even by the superuser.

#include "NApplication.h"
#include "PRuntimeNotifyItem.h"
#include "TemporaryDirectory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>

namespace pallix::test {

// A fresh configuration directory, set as the application's for the test's process.
class ConfigDirectory {
public:
    ConfigDirectory() : m_path(m_root.file("config")) {
        ::mkdir(m_path.c_str(), 0755);
        NApplication::setDirectoryConfig(NString(m_path));
    }

    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + name; }
    // A directory beside the configuration directory, for scratch work.
    std::string outside(const std::string& name) const { return m_root.file(name); }
    // Lets another user reach the configuration directory (the root of the temporary tree is
    // private by default).
    void openToEveryone() const { ::chmod(m_root.path().c_str(), 0755); }

private:
    TemporaryDirectory m_root{"pallix-stores"};
    std::string m_path;
};

inline bool fileExists(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
}

// While alive, the process acts as an unprivileged user when it started as the superuser, so
// that permissions bind it; otherwise it changes nothing.
class Unprivileged {
public:
    Unprivileged() : m_wasRoot(::geteuid() == 0) {
        if (m_wasRoot) {
            m_dropped = ::seteuid(65534) == 0;
        }
    }
    ~Unprivileged() {
        if (m_wasRoot && m_dropped) {
            (void)::seteuid(0);
        }
    }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

    // Whether the process is now bound by permissions.
    bool effective() const { return !m_wasRoot || m_dropped; }

private:
    bool m_wasRoot;
    bool m_dropped = false;
};

inline PRuntimeNotifyItem makeItem(unsigned long long id, const std::string& title,
                                   unsigned long long userID = 0, long long timestamp = 0) {
    PRuntimeNotifyItem item;
    item.setID(id);
    item.setTitle(NString(title));
    item.setURL(NString("https://example.invalid/n/" + std::to_string(id)));
    item.setUserID(userID);
    item.setTimestamp(timestamp);
    return item;
}

} // namespace pallix::test
