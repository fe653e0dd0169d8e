// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/window/session_card.h"

#include "core/session.h"
#include "ui/look/look.h"
#include "ui/widgets/bind.h"
#include "ui/window/panel_inks.h"
#include "ui/window/panel_shapes.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr int kWidth = 190;
constexpr int kRoofWidth = 32;
constexpr int kRoofHeight = 20;

// The switch in words, with the roof as it stands drawn before them.
class RoofReadout : public Readout {
  public:
    using Readout::Readout;

    void showRoof(const PanelSize& size) {
        const qreal scale = size.compact ? 0.6 : 1;
        roof_ = QSizeF(size.length(kRoofWidth * scale), size.length(kRoofHeight * scale));
        setContentsMargins(qRound(roof_.width()) + size.length(8), 0, 0, 0);
    }

  protected:
    void paintEvent(QPaintEvent* event) override {
        if (!text().isEmpty()) {
            QPainter painter(this);
            const QRectF area({0, (height() - roof_.height()) / 2}, roof_);
            drawRoof(painter, area, text() == u"Opened"_s, shownInk());
        }
        Readout::paintEvent(event);
    }

  private:
    QSizeF roof_;
};

// The roof stays as the session left it.
Readout* makeLeftOpen(MonitoringCore& core, QWidget* card, std::function<void()> changed) {
    SessionControls& session = core.records.session;
    Readout* left = makeReadout(card, u"LblLeftOpen"_s, 13, true);
    followLook(left, [left] {
        left->setGround(look::kField);
        left->setInk(panel::warning(look::kField));
    });
    left->setText(u"left open"_s);
    const auto showLeft = [left, &core, &session, changed = std::move(changed)] {
        const Label& roof = core.records.display.LValSwitch;
        left->setVisible(!session.begun() && roof.Visible && roof.Caption.value() == u"Opened"_s);
        changed();
    };
    follow(left, session.State, [showLeft](SessionState) { showLeft(); });
    follow(left, core.records.display.LValSwitch.Caption,
           [showLeft](const QString&) { showLeft(); });
    return left;
}

QPushButton* makeButton(QWidget* card, const QString& name, const QString& text, Button& record) {
    auto* button = new QPushButton(text, card);
    button->setObjectName(name);
    QFont font = button->font();
    font.setBold(true);
    button->setFont(font);
    bind(button, record);
    return button;
}

} // namespace

PanelPart makeSessionCard(MonitoringCore& core, QWidget* parent, std::vector<Readout*>& ofSession) {
    SessionControls& session = core.records.session;
    auto* card = new Card(parent);
    card->standAsWell();

    Readout* caption = makeCaption(card, u"Roof switch"_s);
    caption->setObjectName(u"LblSwitch"_s);
    followVisible(caption, core.records.display.LblSwitch.Visible);
    auto* value = new RoofReadout(card);
    value->setObjectName(u"LValSwitch"_s);
    bind(value, core.records.display.LValSwitch);
    ofSession.push_back(value);
    // In the compact card words that matter more take the caption's room.
    const auto compact = std::make_shared<bool>(false);
    const auto nameRoof = [caption, compact, &session, &core] {
        const bool leftOpen =
            !session.begun() && core.records.display.LValSwitch.Caption.value() == u"Opened"_s;
        caption->setText(!*compact ? u"Roof switch"_s : leftOpen ? QString() : u"Roof"_s);
        caption->reserve(caption->text());
    };
    Readout* left = makeLeftOpen(core, card, nameRoof);

    QPushButton* start = makeButton(card, u"ButtStart"_s, u"&Start"_s, session.ButtStart);
    followLook(start, [start] {
        QPalette primary;
        if (lookInForce() != Look::Desktop)
            primary.setColor(QPalette::Button, look::kPrimary);
        start->setPalette(primary);
    });
    QPushButton* stop = makeButton(card, u"ButtStop"_s, u"S&top"_s, session.ButtStop);
    QObject::connect(start, &QPushButton::clicked, card, [&core] { StartSession(core); });
    QObject::connect(stop, &QPushButton::clicked, card, [&core] { StopByUser(core); });

    auto* layout = new QVBoxLayout(card);
    auto* words = new QBoxLayout(QBoxLayout::TopToBottom); // side by side in the compact panel
    auto* head = new QHBoxLayout;
    head->setSpacing(0);
    head->addWidget(caption);
    head->addStretch();
    head->addWidget(left);
    words->addLayout(head);
    words->addWidget(value, 1);
    layout->addLayout(words);
    layout->addStretch();
    // Side by side: when the last client leaves an idle monitor, both are offered.
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(look::kGap);
    buttons->addWidget(start);
    buttons->addWidget(stop);
    layout->addLayout(buttons);

    return {card, [=](const PanelSize& size) {
                const bool small = size.compact;
                card->setFixedSize(size.length(kWidth), bannerHeight(size));
                const int side = size.length(small ? 8 : 12);
                const int edge = size.length(small ? 5 : 8);
                layout->setContentsMargins(side, edge, side, edge);
                layout->setSpacing(size.length(2));
                words->setDirection(small ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
                words->setSpacing(size.length(small ? 8 : 2));
                caption->setPixelSize(size.letters(small ? 12 : 13));
                *compact = small;
                nameRoof();
                value->setPixelSize(size.letters(small ? 15 : 20), true);
                value->showRoof(size);
                left->setPixelSize(size.letters(small ? 11 : 13), true);
                left->reserve(left->text());
                for (QPushButton* button : {start, stop}) {
                    button->setFixedHeight(size.length(small ? 28 : 34));
                    QFont font = button->font();
                    font.setPixelSize(size.letters(15));
                    button->setFont(font);
                }
            }};
}

} // namespace skyhold
