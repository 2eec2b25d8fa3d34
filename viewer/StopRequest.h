// SPDX-License-Identifier: MIT
//
// Somebody outside wants the program to end.
#pragma once

namespace viewer
{

// May be called from a signal handler: the page ends at the next instant.
void AskToStop();
bool StopWasAsked();
// What wakes whoever sleeps; must itself be fit for a signal handler. Null: nothing.
void SetStopAlarm(void (*alarm)());

} // namespace viewer
