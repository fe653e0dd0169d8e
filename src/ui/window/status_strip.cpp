// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/status_strip.h"

#include "ui/dialogs/kiv_legend.h"
#include "ui/look/look.h"
#include "ui/look/window_unit.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/copy_text.h"
#include "ui/widgets/open_editor.h"
#include "ui/widgets/readout.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// The left button over the item; the keys still select its text.
class ClickFilter : public QObject {
  public:
    ClickFilter(QObject* item, std::function<void()> act)
        : QObject(item)
        , act_(std::move(act)) {}

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::MouseButtonPress ||
            static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton)
            return false;
        act_();
        return true;
    }

  private:
    std::function<void()> act_;
};

void onClick(QWidget* item, std::function<void()> act) {
    item->setCursor(Qt::PointingHandCursor);
    item->installEventFilter(new ClickFilter(item, std::move(act)));
}

} // namespace

StatusStrip::StatusStrip(SessionControls& session, QWidget* parent)
    : QWidget(parent) {
    setFixedHeight(28);
    auto* status = new Readout(this);
    auto* codes = new Readout(this);
    status->setObjectName(u"Statusbar1"_s);
    codes->setObjectName(u"Statusbar2"_s);
    status->setPixelSize(14);
    codes->setPixelSize(14, true);
    for (Readout* line : {status, codes}) {
        line->setTone(Tone::Strip);
        line->setContentsMargins(4, 0, 4, 0);
        followLook(line, [line] { line->setGround(look::kStrip); });
        allowCopying(line);
    }
    codes->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    status->setAccessibleName(u"Status"_s);
    codes->setAccessibleName(u"Status codes"_s);
    codes->setToolTip(u"Status codes; click for their meanings"_s);
    bind(status, session.Statusbar1);
    bind(codes, session.Statusbar2);
    // What a session said last, of a refreshed file perhaps, goes with it. The words of a start
    // that failed stay: it never ran.
    const auto ran = std::make_shared<bool>(false);
    follow(status, session.State, [status, &session, ran](SessionState state) {
        const bool ended = state == SessionState::Idle && *ran;
        *ran = state == SessionState::Running;
        const Colour stated = session.Statusbar1.ForeColor;
        status->setText(ended ? u"Monitoring stopped"_s : session.Statusbar1.Caption.value());
        status->setInk(ended || stated == 0 ? QColor() : screenColour(stated));
    });

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(look::kMargin, 2, look::kMargin, 2);
    layout->setSpacing(look::kGap);
    layout->addWidget(status, 2);
    layout->addWidget(codes, 1);

    const auto explain = [this, codes] {
        KivLegend::openNear(codes, this, codes->text());
    };
    openEditorOn(codes, explain);
    onClick(codes, explain);
}

void StatusStrip::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    QMetaObject::invokeMethod(
        this, [this] { growWithWindow(); }, Qt::QueuedConnection);
}

void StatusStrip::growWithWindow() {
    const qreal unit = windowUnit(*this);
    setFixedHeight(qRound(28 * unit));
    for (Readout* line : findChildren<Readout*>(Qt::FindDirectChildrenOnly))
        line->setPixelSize(qRound(14 * unit), line->font().bold());
}

void StatusStrip::paintEvent(QPaintEvent* event) {
    QPainter(this).fillRect(event->rect(), look::kStrip);
}

} // namespace skyhold
