// SPDX-License-Identifier: MIT
//
// The system's alias data handler (type 'dhlr', subtype 'alis', manufacturer 'appl'): reads the
// file that an alias names. Other data handlers delegate to it what they do not do themselves.
#pragma once

namespace toolbox
{

void RegisterAliasDataHandler();

} // namespace toolbox
