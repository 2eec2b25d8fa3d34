// SPDX-License-Identifier: MIT
//
// The bundle factory of the tests: each test says what it makes.
#pragma once

#include "src/plugin/MakeNewPlugin.h"

#include <functional>

namespace test
{

// What MakeNewPlugin does for the length of a test.
class ScriptedFactory
{
public:
    explicit ScriptedFactory(std::function<VornPlugin*(CFBundleRef)> make);
    ~ScriptedFactory();
    ScriptedFactory(const ScriptedFactory&) = delete;
    ScriptedFactory& operator=(const ScriptedFactory&) = delete;
};

} // namespace test
