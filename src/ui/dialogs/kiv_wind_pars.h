// SPDX-License-Identifier: GPL-3.0-or-later
// The editor of a wind level's sector and minimum time.
#pragma once

#include "conditions/sector_text.h"
#include "records/controls.h"
#include "ui/dialogs/dialog_parts.h"

class QLabel;
class QSlider;

namespace skyhold {

class CompassDiagram;
class KivGetNumber;

class KivWindPars : public EditorDialog {
    Q_OBJECT

  public:
    // Opens next to `item` with the sector text of the label; OK writes the new text into it.
    // `windFrom`: where the wind comes from now, in degrees; nothing when that is not known.
    KivWindPars(Label& direction, const QWidget* item, std::optional<double> windFrom = {});

    void accept() override;

  private:
    QWidget* makeBound(const QString& caption, QLabel*& shown, QSlider* slider);
    void turnFrom(int from);
    void turnTo(int to);
    void showSector();

    Label& direction_;
    Sector sector_;
    QSlider* sliderFrom_;
    QSlider* sliderTo_; // holds the negative of "to": it runs the other way
    QLabel* fromText_ = nullptr;
    QLabel* toText_ = nullptr;
    CompassDiagram* diagram_;
    KivGetNumber* duration_; // minutes
};

} // namespace skyhold
