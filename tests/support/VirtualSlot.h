#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace pallix::test {

// The virtual-table slot of a virtual member function, counted from 1 as the class
// documentation counts them (1: destructor, 2: deleting destructor, 3: first operation).
//
// Under the Itanium C++ ABI a pointer to a virtual member function holds 1 + the byte offset
// of its entry in the virtual table, so the slot is that offset / pointer size + 1. A
// non-virtual member gives 0.
template <typename Member> std::size_t virtualSlot(Member member) {
    static_assert(std::is_member_function_pointer_v<Member>);
    static_assert(sizeof(Member) == 2 * sizeof(std::ptrdiff_t), "Itanium ABI expected");
    std::ptrdiff_t raw = 0;
    std::memcpy(&raw, &member, sizeof raw);
    if ((raw & 1) == 0) {
        return 0;
    }
    return static_cast<std::size_t>(raw - 1) / sizeof(void*) + 1;
}

} // namespace pallix::test
