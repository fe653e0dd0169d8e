// SPDX-License-Identifier: GPL-3.0-or-later
// The page "Caution": what makes the monitor quicker to say unsafe, and slower to say safe, and of
// what it notifies the desktop.
#pragma once

#include "records/condition_controls.h"
#include "records/notice_controls.h"

class QWidget;

namespace skyhold {

QWidget* makeCautionPage(ConditionControls& conditions, NoticeControls& notices, QWidget* parent);

} // namespace skyhold
