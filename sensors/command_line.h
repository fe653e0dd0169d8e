// SPDX-License-Identifier: GPL-3.0-or-later
// The sensor program's options, and what each of them does.
#pragma once

namespace skyhold {

// 0 when it did what it was asked to, 1 when that went wrong, 2 for settings or options that cannot
// be used.
int runSensorProgram();

} // namespace skyhold
