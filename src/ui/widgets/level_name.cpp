#include "ui/widgets/level_name.h"

#include "ui/look/look.h"
#include "ui/widgets/bind.h"

#include <QCheckBox>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kSide = 12; // of the colour
constexpr int kLeft = 2;

} // namespace

LevelName::LevelName(bool coloured, QWidget* parent)
    : Swatch(parent)
    , coloured_(coloured) {
    setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setContentsMargins(kLeft + kSide + 6, 0, 0, 0);
}

QColor LevelName::shownInk() const {
    return look::kText;
}

void LevelName::paintEvent(QPaintEvent* event) {
    Readout::paintEvent(event);
    if (!coloured_)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor shown = look::ground(fill());
    painter.setPen(shown.darker(130));
    painter.setBrush(shown);
    painter.drawRoundedRect(QRectF(kLeft + 0.5, (height() - kSide) / 2 + 0.5, kSide, kSide), 2, 2);
}

QCheckBox* makeUnsafeBox(CheckBox& record, const QString& name, const QString& quantity,
                         QWidget* parent) {
    auto* box = new QCheckBox(parent);
    box->setObjectName(name);
    follow(box, record.Caption, [box, quantity](const QString& level) {
        const QString what = u"Unsafe: %1, %2"_s.arg(quantity, level);
        box->setAccessibleName(what);
        box->setToolTip(what);
    });
    follow(box, record.Value, [box](int value) { box->setChecked(value == 1); });
    follow(box, record.Enabled, [box](bool on) { box->setEnabled(on); });
    followVisible(box, record.Visible);
    QObject::connect(box, &QCheckBox::clicked, box,
                     [&record](bool checked) { record.set(checked ? 1 : 0); });
    return box;
}

} // namespace skyhold
