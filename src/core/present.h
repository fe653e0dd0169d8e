// SPDX-License-Identifier: GPL-3.0-or-later
// Display: the one place where a cycle fills captions and colours. Nothing reads them back but the
// members of the automation class that are defined by a shown text.
#pragma once

#include "model/cycle_result.h"
#include "platform/text_forms.h"
#include "records/records.h"

namespace skyhold {

// The code of a source that is old, missing or failed; empty while both are good.
QString sourceCode(const Observation& observation);

// Shows a cycle, with the status codes that it raised. The records' readings are those of the
// cycle.
void present(const CycleResult& result, const QString& codes, const NumberForms& forms,
             Records& records);

// Shows the verdict alone, which may change between two cycles. The readings hold it.
void presentVerdict(const CycleResult& result, Records& records);

// Shows the published verdict as text and lamp.
void Disp_UnsafeFlag(const CurrentReadings& readings, ConditionControls& controls);

// "Unsafe" for -1, which is how clients send a set flag, and "Safe" for 0; else empty.
QString SafeText(int flag);

// Shows that there is no verdict: a session begins.
void presentNoVerdict(Records& records);

} // namespace skyhold
