#include "Failure.h"

namespace pallix::tool {

void failUsage(const std::string& message) {
    throw Failure(kUsage, message);
}

void failUnreadable(const std::string& message) {
    throw Failure(kUnreadable, message);
}

void failNotFound(const std::string& message) {
    throw Failure(kNotFound, message);
}

void failRejected(const std::string& message) {
    throw Failure(kRejected, message);
}

} // namespace pallix::tool
