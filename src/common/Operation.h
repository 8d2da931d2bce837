#pragma once

#include <utility>

namespace pallix {

// Runs the body of one of the library's operations. The operations never throw to their caller,
// yet an exception escaping inside one of them (an allocation failure in a container, a
// caller's callback that throws, a host's override that throws) must not be swallowed either,
// which would leave the operation silently half done: it ends the process. This function is
// noexcept, so an exception that reaches it calls std::terminate() there, before the caller
// could see it.
//
// Virtual operations carry no noexcept specifier of their own, so that a host's override
// written without one compiles; their bodies run through this function instead.
template <typename Body> decltype(auto) operation(Body&& body) noexcept {
    return std::forward<Body>(body)();
}

} // namespace pallix
