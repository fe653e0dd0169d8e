// SPDX-License-Identifier: GPL-3.0-or-later
// The editor of the texts by which units are recognised in the station's file.
#pragma once

#include "records/unit_controls.h"

#include <QDialog>

class QLineEdit;

namespace skyhold {

class KivUnitSymbols : public QDialog {
    Q_OBJECT

  public:
    // OK writes the unit texts in upper case, and the characters to be removed as they are.
    KivUnitSymbols(UnitControls& units, QWidget* parent);

    void accept() override;

  private:
    struct Box {
        QLineEdit* edit;
        QString& text;
        bool upperCase;
    };
    std::vector<Box> boxes_;
};

} // namespace skyhold
