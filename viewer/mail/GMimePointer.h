// SPDX-License-Identifier: MIT
#pragma once

#include <gmime/gmime.h>
#include <memory>

namespace viewer
{

struct GMimeRelease {
    void operator()(void* object) const { g_object_unref(object); }
};

// One reference to an object of GMime's, owned.
template <typename Object>
using GMimePointer = std::unique_ptr<Object, GMimeRelease>;

struct GMimeFree {
    void operator()(char* text) const { g_free(text); }
};

using GMimeText = std::unique_ptr<char, GMimeFree>;

} // namespace viewer
