// SPDX-License-Identifier: MIT
#include "tests/plugin/ScriptedFactory.h"

#include <utility>

namespace
{

std::function<VornPlugin*(CFBundleRef)> gMake;

} // namespace

VornPlugin* MakeNewPlugin(CFBundleRef bundle)
{
    return gMake(bundle);
}

namespace test
{

ScriptedFactory::ScriptedFactory(std::function<VornPlugin*(CFBundleRef)> make)
{
    gMake = std::move(make);
}

ScriptedFactory::~ScriptedFactory()
{
    gMake = nullptr;
}

} // namespace test
