// SPDX-License-Identifier: MIT
#pragma once

#include "src/image/VornImagePlugin.h"

#include <functional>

namespace test
{

// An image whose decoder is the test.
class TestImage : public VornImagePlugin
{
public:
    using VornImagePlugin::VornImagePlugin;

    Boolean CanHandleData(const char*, const char*) override { return true; }
    void Render() override { render(); }

    std::function<void()> render = [] {};
};

} // namespace test
