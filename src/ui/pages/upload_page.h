// SPDX-License-Identifier: GPL-3.0-or-later
// The upload: its server, how often it is looked for changed files, and which files there are.
#pragma once

#include "records/file_controls.h"

class QWidget;

namespace skyhold {

// `flgUpload` switches the upload on for the next session.
QWidget* makeUploadPage(UploadControls& upload, CheckBox& flgUpload, QWidget* parent);

} // namespace skyhold
