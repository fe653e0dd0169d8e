// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/bind.h"

#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"
#include "ui/widgets/kiv_get_number.h"
#include "ui/widgets/readout.h"

#include <QAbstractButton>
#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace skyhold {

namespace {

class KeptNotifier : public QObject {
  public:
    KeptNotifier(QObject* owner, QPropertyNotifier notifier)
        : QObject(owner)
        , notifier_(std::move(notifier)) {}

  private:
    QPropertyNotifier notifier_;
};

void followEnabled(QWidget* widget, QProperty<bool>& enabled) {
    follow(widget, enabled, [widget](bool on) { widget->setEnabled(on); });
}

void followFill(LampWidget* widget, Lamp& lamp) {
    follow(widget, lamp.FillColor,
           [widget](Colour colour) { widget->setColour(screenColour(colour)); });
}

} // namespace

void holdNotifier(QObject* owner, QPropertyNotifier notifier) {
    new KeptNotifier(owner, std::move(notifier));
}

void followVisible(QWidget* widget, QProperty<bool>& visible) {
    follow(widget, visible, [widget](bool shown) {
        // With its window it is shown anyway. Shown by itself before that, it would be measured at
        // once, in a font that it may not keep.
        const QWidget* parent = widget->parentWidget();
        const bool shownLater = parent && !parent->isVisible() &&
                                !widget->testAttribute(Qt::WA_WState_ExplicitShowHide);
        if (!shown || !shownLater)
            widget->setHidden(!shown);
    });
}

void bind(QLabel* widget, Label& record) {
    widget->setTextFormat(Qt::PlainText); // captions come from files and other programs
    follow(widget, record.Caption, [widget](const QString& text) { widget->setText(text); });
    const auto paint = [widget, &record] {
        QPalette palette;
        if (record.ForeColor != 0)
            palette.setColor(QPalette::WindowText,
                             look::ink(screenColour(record.ForeColor), look::kWindow));
        widget->setPalette(palette);
    };
    follow(widget, record.ForeColor, [paint](Colour) { paint(); });
    followLook(widget, paint);
    followVisible(widget, record.Visible);
}

void bind(Readout* widget, Label& record) {
    const QColor own = widget->ink();
    follow(widget, record.Caption, [widget](const QString& text) { widget->setText(text); });
    follow(widget, record.ForeColor, [widget, own](Colour colour) {
        widget->setInk(colour == 0 ? own : screenColour(colour));
    });
    followVisible(widget, record.Visible);
}

void bind(Swatch* widget, Label& record) {
    follow(widget, record.Caption, [widget](const QString& text) { widget->setText(text); });
    follow(widget, record.BackColor,
           [widget](Colour colour) { widget->setFill(screenColour(colour)); });
    followVisible(widget, record.Visible);
}

void bind(QCheckBox* widget, CheckBox& record) {
    follow(widget, record.Value, [widget](int value) { widget->setChecked(value == 1); });
    follow(widget, record.Caption, [widget, own = widget->text()](QString text) {
        // The user's own words: an ampersand in them is an ampersand.
        widget->setText(text.isEmpty() ? own : text.replace(u'&', QStringLiteral("&&")));
    });
    followEnabled(widget, record.Enabled);
    followVisible(widget, record.Visible);
    QObject::connect(widget, &QCheckBox::clicked, widget,
                     [&record](bool checked) { record.set(checked ? 1 : 0); });
}

void bind(QPushButton* widget, Button& record) {
    follow(widget, record.Caption, [widget, own = widget->text()](const QString& text) {
        widget->setText(text.isEmpty() ? own : text);
    });
    followEnabled(widget, record.Enabled);
    followVisible(widget, record.Visible);
}

void bind(KivGetNumber* widget, NumberBox& record) {
    widget->setDigitsMostSignificant(record.DigitsMostSignificant);
    widget->setDigitsDecimal(record.DigitsDecimal);
    widget->setAllowNegative(record.AllowNegative);
    follow(widget, record.Value, [widget, &record](double value) {
        // A text that already says so stays as it was typed.
        if (!widget->holdsNumber() || widget->value() != value) {
            widget->setValue(value);
            record.Edit.reset();
        }
    });
    followEnabled(widget, record.Enabled);
    QObject::connect(widget, &KivGetNumber::textTyped, widget, [&record](double value) {
        if (!record.Edit)
            record.Edit = NumberEdit{.before = record.Value};
        record.Edit->typed = value;
    });
    // A rule may correct a value, or restart a history, so it waits for the whole number.
    QObject::connect(widget, &KivGetNumber::valueEdited, widget, [&record](double value) {
        if (!record.Change)
            record.set(value);
    });
    QObject::connect(widget, &KivGetNumber::valueEntered, widget, [&record](double value) {
        record.Edit.reset();
        if (record.Value != value)
            record.set(value);
    });
}

void bind(QButtonGroup* widget, OptionGroup& record) {
    follow(widget, record.Index, [widget](int index) {
        if (QAbstractButton* chosen = widget->button(index)) {
            chosen->setChecked(true);
        } else {
            widget->setExclusive(false); // an exclusive group keeps one chosen
            for (QAbstractButton* button : widget->buttons())
                button->setChecked(false);
            widget->setExclusive(true);
        }
        tabToChosen(*widget);
    });
    follow(widget, record.Enabled, [widget](bool on) {
        for (QAbstractButton* button : widget->buttons())
            button->setEnabled(on);
    });
    QObject::connect(widget, &QButtonGroup::idClicked, widget, [&record](int index) {
        if (index != record.Index)
            record.choose(index);
    });
}

void bind(QComboBox* widget, ComboBox& record) {
    widget->clear();
    widget->addItems(record.Entries);
    follow(widget, record.ListIndex, [widget](int index) { widget->setCurrentIndex(index); });
    followEnabled(widget, record.Enabled);
    QObject::connect(widget, &QComboBox::activated, widget, [&record](int index) {
        if (index != record.ListIndex)
            record.choose(index);
    });
}

void bind(QLineEdit* widget, TextBox& record) {
    follow(widget, record.Text, [widget](const QString& text) {
        if (widget->text() != text)
            widget->setText(text);
    });
    followEnabled(widget, record.Enabled);
    QObject::connect(widget, &QLineEdit::textEdited, widget,
                     [&record](const QString& text) { record.Text = text; });
}

void bind(LampWidget* widget, Lamp& record) {
    followFill(widget, record);
    followVisible(widget, record.Visible);
}

void bind(LampWidget* first, LampWidget* second, LampPair& record) {
    followFill(first, record.first);
    followFill(second, record.second);
    followVisible(first, record.Visible);
    followVisible(second, record.Visible);
}

void bind(QWidget* widget, Frame& record) {
    followVisible(widget, record.Visible);
}

void bind(QAction* action, MenuEntry& record) {
    follow(action, record.Enabled, [action](bool on) { action->setEnabled(on); });
    follow(action, record.Visible, [action](bool on) { action->setVisible(on); });
    follow(action, record.Checked, [action](bool on) {
        if (action->isCheckable())
            action->setChecked(on);
    });
}

} // namespace skyhold
