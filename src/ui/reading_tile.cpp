#include "ui/reading_tile.h"

#include "ui/bind.h"
#include "ui/look.h"

namespace skyhold {

ReadingTile::ReadingTile(Label& header, const QString& headerName, Label& value,
                         const QString& valueName, QWidget* parent)
    : Card(parent)
    , header_(new Readout(this))
    , value_(new Readout(this))
    , unit_(new Readout(this))
    , condition_(new Readout(this)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    header_->setObjectName(headerName);
    header_->setPixelSize(14);
    header_->setInk(look::kDimText);
    value_->setObjectName(valueName);
    value_->setPixelSize(28, true);
    unit_->setPixelSize(13);
    unit_->setInk(look::kDimText);
    unit_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    condition_->setPixelSize(15, true);
    bind(header_, header);
    bind(value_, value);
    follow(unit_, value.Caption, [this](const QString& text) { unit_->setHidden(text.isEmpty()); });
}

void ReadingTile::showCondition(Label& condition, const QString& name) {
    condition_->setObjectName(name);
    bind(condition_, condition);
}

void ReadingTile::showUnit(const QString& unit) { unit_->setText(unit); }

void ReadingTile::showUnit(Label& unit) {
    follow(unit_, unit.Caption, [this](const QString& text) { unit_->setText(text); });
}

QSize ReadingTile::sizeHint() const { return {128, 104}; }

QSize ReadingTile::minimumSizeHint() const { return {96, 104}; }

void ReadingTile::resizeEvent(QResizeEvent*) {
    constexpr int kInset = 10;
    constexpr int kUnitWidth = 42;
    const int inner = width() - 2 * kInset;
    header_->setGeometry(kInset, 8, inner, 20);
    value_->setGeometry(kInset, 32, inner - kUnitWidth, 36);
    unit_->setGeometry(kInset + inner - kUnitWidth, 40, kUnitWidth, 24);
    condition_->setGeometry(kInset, 74, inner, 22);
}

} // namespace skyhold
