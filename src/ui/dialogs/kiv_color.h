// SPDX-License-Identifier: GPL-3.0-or-later
// The editor of a level's colour and description, or of a graph's colour alone.
#pragma once

#include "records/controls.h"
#include "ui/dialogs/dialog_parts.h"

class QLineEdit;

namespace skyhold {

class KivColor : public EditorDialog {
    Q_OBJECT

  public:
    // Opens next to `item`. OK writes the chosen colour into the label and, when there is an
    // unsafe box, the trimmed description into the captions of both; without one only the colour
    // is edited. Cancel writes nothing.
    KivColor(Label& label, CheckBox* unsafeBox, const QWidget* item);

    void accept() override;

  private:
    QWidget* makePalette();

    Label& label_;
    CheckBox* unsafeBox_;
    Colour chosen_;
    QLineEdit* description_ = nullptr;
};

} // namespace skyhold
