#include "ui/window/reading_tile.h"

#include "ui/look/look.h"
#include "ui/widgets/bind.h"

#include <QPaintEvent>
#include <QPainter>

namespace skyhold {

namespace {

constexpr int kHeight = 112;
constexpr int kStripTop = 84;
constexpr int kStripHeight = 21;

} // namespace

ReadingTile::ReadingTile(Label& header, const QString& headerName, Label& value,
                         const QString& valueName, QWidget* parent)
    : Card(parent)
    , header_(new Readout(this))
    , value_(new Readout(this))
    , unit_(new Readout(this))
    , condition_(new Readout(this))
    , at_(new Readout(this)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    header_->setObjectName(headerName);
    header_->setTone(Tone::Dim);
    value_->setObjectName(valueName);
    unit_->setTone(Tone::Dim);
    at_->setTone(Tone::Dim);
    at_->hide();
    unit_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    bind(header_, header);
    bind(value_, value);
    follow(unit_, value.Caption, [this](const QString& text) { unit_->setHidden(text.isEmpty()); });
}

void ReadingTile::showCondition(Label& condition, const QString& name) {
    condition_->setObjectName(name);
    bind(condition_, condition);
}

void ReadingTile::showUnit(const QString& unit) {
    unit_->setText(unit);
    place();
}

void ReadingTile::showUnit(Label& unit) {
    follow(unit_, unit.Caption, [this](const QString& text) { showUnit(text); });
}

void ReadingTile::showTrend(Trend trend, const TrendScale& scale) {
    trend_ = std::move(trend);
    scale_ = scale;
    update(strip());
}

void ReadingTile::setOld(bool old, const QString& at) {
    setEdge(old ? Edge::Line : Edge::None);
    for (Readout* readout : {header_, value_, unit_, condition_})
        readout->setOld(old);
    at_->setText(value_->text().isEmpty() ? QString() : QStringLiteral("at ") + at);
    at_->setHidden(!old);
    update();
}

QSize ReadingTile::sizeHint() const {
    return {128, kHeight};
}

QSize ReadingTile::minimumSizeHint() const {
    return {96, kHeight};
}

QRect ReadingTile::strip() const {
    return {8, kStripTop, width() - 16, kStripHeight};
}

void ReadingTile::paintEvent(QPaintEvent* event) {
    Card::paintEvent(event);
    // A new value above it leaves the strip as it is.
    if (trend_.runs.empty() || at_->isVisible() || !event->rect().intersects(strip()))
        return;
    QPainter painter(this);
    painter.fillRect(QRect(strip().left(), strip().bottom() + 2, strip().width(), 1), look::kEdge);
    constexpr int kLineMargin = 1;
    drawTrend(painter, QRectF(strip()).adjusted(0, kLineMargin, -kLineMargin, -kLineMargin), trend_,
              scale_, look::kDimText);
}

void ReadingTile::resizeEvent(QResizeEvent*) {
    place();
}

// The size of the letters follows the width, so that neighbours look alike.
void ReadingTile::place() {
    constexpr int kNarrow = 120;
    const bool narrow = width() < kNarrow;
    const int inset = narrow ? 8 : 10;
    header_->setPixelSize(narrow ? 12 : 14);
    unit_->setPixelSize(narrow ? 11 : 13);
    value_->setPixelSize(narrow ? 25 : 29, true);
    condition_->setPixelSize(narrow ? 12 : 14, true);
    at_->setPixelSize(12);

    const int inner = width() - 2 * inset;
    const int unitWidth = unit_->fontMetrics().horizontalAdvance(unit_->text()) + 2;
    header_->setGeometry(inset, 6, inner - unitWidth - 2, 20);
    unit_->setGeometry(inset + inner - unitWidth, 6, unitWidth, 20);
    value_->setGeometry(inset, 26, inner, 36);
    condition_->setGeometry(inset, 62, inner, 20);
    at_->setGeometry(inset, kStripTop, inner, kStripHeight);
}

} // namespace skyhold
