// SPDX-License-Identifier: MIT
//
// Where a virtual operation lies in its class's table.
#pragma once

#if defined(__GXX_ABI_VERSION) && defined(__x86_64__)
#define VORN_KNOWS_VIRTUAL_SLOTS

#include <cstdint>
#include <cstring>

namespace test
{

// Places count from 0; a virtual destructor takes two. A pointer to a virtual member begins with
// one more than the place's distance in bytes.
template <class Member>
std::uintptr_t VirtualSlot(Member member)
{
    std::uintptr_t value = 0;
    static_assert(sizeof member >= sizeof value);
    std::memcpy(&value, &member, sizeof value);
    return (value - 1) / sizeof(void*);
}

} // namespace test

#endif
