// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/kiv_wind_pars.h"

#include "platform/text_forms.h"
#include "ui/look/look.h"
#include "ui/widgets/compass_diagram.h"
#include "ui/widgets/kiv_get_number.h"

#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

KivWindPars::KivWindPars(Label& direction, const QWidget* item, std::optional<double> windFrom)
    : EditorDialog(item->window())
    , direction_(direction)
    , sector_(sectorForEditing(direction.Caption))
    , sliderFrom_(new QSlider(Qt::Vertical, this))
    , sliderTo_(new QSlider(Qt::Vertical, this))
    , diagram_(new CompassDiagram(this))
    , duration_(new KivGetNumber(this)) {
    setObjectName(u"KivWindPars"_s);
    setWindowTitle(u"Wind sector"_s);
    sliderFrom_->setObjectName(u"SliderFrom"_s);
    sliderFrom_->setRange(-359, 359);
    sliderTo_->setObjectName(u"SliderTo"_s);
    sliderTo_->setRange(-359, 0);
    // On both sliders up is more degrees.
    sliderTo_->setInvertedAppearance(true);
    sliderTo_->setInvertedControls(true);
    diagram_->setObjectName(u"Diagram"_s);
    connect(sliderFrom_, &QSlider::valueChanged, this, &KivWindPars::turnFrom);
    connect(sliderTo_, &QSlider::valueChanged, this, [this](int value) { turnTo(-value); });
    diagram_->setWind(windFrom);
    connect(diagram_, &CompassDiagram::edgesTurned, this, [this](int from, int to) {
        sector_ = sectorBetween(from, to, sector_.minutes);
        showSector();
    });
    connect(diagram_, &CompassDiagram::fromDragged, this,
            [this](int degrees) { turnFrom(sector_.from + degrees); });
    connect(diagram_, &CompassDiagram::toDragged, this,
            [this](int degrees) { turnTo(sector_.to + degrees); });

    QVBoxLayout* column = dialogColumn(this);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    row->addWidget(makeBound(u"&From"_s, fromText_, sliderFrom_));
    row->addWidget(diagram_);
    row->addWidget(makeBound(u"&To"_s, toText_, sliderTo_));
    column->addLayout(row);
    setTabOrder(sliderFrom_, diagram_);
    setTabOrder(diagram_, sliderTo_);
    auto* wind = new QLabel(windFrom ? u"The arrow is the wind now: from %1°"_s.arg(
                                           formatNumber(*windFrom, u"0", localeNumberForms()))
                                     : u"Where the wind comes from now is not known"_s,
                            this);
    wind->setObjectName(u"LblWindNow"_s);
    wind->setAlignment(Qt::AlignHCenter);
    column->addWidget(wind);
    auto* hint = new QLabel(u"The shaded sector is the unsafe one. Drag its edges along the rim, "
                            u"or turn them by the arrows and Page Up and Page Down; the space bar "
                            u"goes to the other edge. Elsewhere a drag up or down turns its start, "
                            u"with the right button its end; the sliders do the same."_s,
                            this);
    hint->setWordWrap(true);
    column->addWidget(hint);

    auto* caption = new QLabel(u"&Duration for UNSAFE (min)"_s, this);
    duration_->setObjectName(u"Duration"_s);
    duration_->setFixedWidth(64);
    duration_->setDigitsMostSignificant(2);
    duration_->setDigitsDecimal(0);
    duration_->setValue(sector_.minutes);
    caption->setBuddy(duration_);
    auto* durationRow = new QHBoxLayout;
    durationRow->addWidget(caption);
    durationRow->addWidget(duration_);
    durationRow->addStretch();
    column->addLayout(durationRow);
    addOkAndCancel(this, column);
    showSector();
    placeNear(this, item);
}

QWidget* KivWindPars::makeBound(const QString& caption, QLabel*& shown, QSlider* slider) {
    auto* holder = new QWidget(this);
    auto* column = new QVBoxLayout(holder);
    column->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(caption, holder);
    label->setAlignment(Qt::AlignHCenter);
    label->setBuddy(slider);
    shown = new QLabel(holder);
    shown->setAlignment(Qt::AlignHCenter);
    shown->setMinimumWidth(52);
    column->addWidget(label);
    column->addWidget(slider, 1, Qt::AlignHCenter);
    column->addWidget(shown);
    return holder;
}

void KivWindPars::turnFrom(int from) {
    moveSectorFrom(sector_, from);
    showSector();
}

void KivWindPars::turnTo(int to) {
    moveSectorTo(sector_, to);
    showSector();
}

void KivWindPars::showSector() {
    const QSignalBlocker quietFrom(sliderFrom_);
    const QSignalBlocker quietTo(sliderTo_);
    sliderFrom_->setValue(sector_.from);
    sliderTo_->setValue(-sector_.to);
    fromText_->setText(u"%1°"_s.arg(sector_.from));
    toText_->setText(u"%1°"_s.arg(sector_.to));
    diagram_->setSector(sector_.from, sector_.to);
}

void KivWindPars::accept() {
    sector_.minutes = static_cast<int>(roundHalfEven(duration_->value()));
    direction_.Caption = editedSectorText(sector_);
    QDialog::accept();
}

} // namespace skyhold
