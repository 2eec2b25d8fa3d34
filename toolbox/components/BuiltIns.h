// SPDX-License-Identifier: MIT
//
// Components that come with the toolbox. Who has one adds the function that registers it, during
// static initialisation; the Component Manager runs it before it is first searched.
#pragma once

namespace toolbox
{

using BuiltInRegistration = void (*)();
void AddBuiltInRegistration(BuiltInRegistration registration);

} // namespace toolbox
