// SPDX-License-Identifier: MIT
#pragma once

// Ends the process, telling of the promise that was broken, unless it `holds`: that is how a
// fuzzer notices.
void Require(bool holds, const char* promise);
