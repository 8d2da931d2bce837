#include "NSystem.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <optional>
#include <string>

namespace {

// Restores HOME when the test ends.
class HomeGuard {
public:
    HomeGuard() {
        if (const char* home = ::getenv("HOME")) {
            m_saved = home;
        }
    }
    ~HomeGuard() {
        if (m_saved) {
            ::setenv("HOME", m_saved->c_str(), 1);
        } else {
            ::unsetenv("HOME");
        }
    }

private:
    std::optional<std::string> m_saved;
};

std::string passwordHome() {
    const passwd* entry = ::getpwuid(::getuid());
    return entry != nullptr && entry->pw_dir != nullptr ? entry->pw_dir : "";
}

} // namespace

TEST(NSystem, UserHomeComesFromHome) {
    HomeGuard guard;
    ::setenv("HOME", "/home/Zoë Li", 1);
    EXPECT_EQ(NSystem::userHome(), NString("/home/Zoë Li"));
}

TEST(NSystem, UserHomeFallsBackToThePasswordDatabase) {
    HomeGuard guard;
    ::unsetenv("HOME");
    EXPECT_EQ(NSystem::userHome(), NString(passwordHome()));
    ::setenv("HOME", "", 1);
    EXPECT_EQ(NSystem::userHome(), NString(passwordHome()));
}
