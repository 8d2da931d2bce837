#pragma once

#include <stdexcept>
#include <string>

// How every subcommand of the tool ends when it cannot do what it was asked: it throws a
// Failure, and main() prints the message on standard error ("pallix: <message>") and exits with
// the failure's status. There is no other way of failing, so that the statuses mean the same
// thing everywhere:
//   0  success
//   1  not found, rejected, or warnings only
//   2  usage error, or input that cannot be read
namespace pallix::tool {

enum ExitStatus : int {
    kSuccess = 0,
    kNotFound = 1,
    kRejected = 1,
    kUsage = 2,
    kUnreadable = 2,
};

class Failure : public std::runtime_error {
public:
    Failure(int status, const std::string& message)
        : std::runtime_error(message), m_status(status) {}
    int status() const { return m_status; }

private:
    int m_status;
};

[[noreturn]] void failUsage(const std::string& message);
[[noreturn]] void failUnreadable(const std::string& message);
[[noreturn]] void failNotFound(const std::string& message);
[[noreturn]] void failRejected(const std::string& message);

} // namespace pallix::tool
