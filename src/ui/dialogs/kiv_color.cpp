// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/kiv_color.h"

#include "ui/look/look.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// Rows from pale to dark, columns through the hues; 0x00BBGGRR.
constexpr std::size_t kRows = 6;
constexpr std::size_t kColumns = 8;
constexpr std::array<Colour, kRows * kColumns> kPalette{
    0xFFFFFF, 0xC0C0FF, 0xC0E0FF, 0xC0FFFF, 0xC0FFC0, 0xFFFFC0, 0xFFC0C0, 0xFFC0FF,
    0xE0E0E0, 0x8080FF, 0x80C0FF, 0x80FFFF, 0x80FF80, 0xFFFF80, 0xFF8080, 0xFF80FF,
    0xC0C0C0, 0x0000FF, 0x0080FF, 0x00FFFF, 0x00FF00, 0xFFFF00, 0xFF0000, 0xFF00FF,
    0x808080, 0x0000C0, 0x0040C0, 0x00C0C0, 0x00C000, 0xC0C000, 0xC00000, 0xC000C0,
    0x404040, 0x000080, 0x004080, 0x008080, 0x008000, 0x808000, 0x800000, 0x800080,
    0x000000, 0x000040, 0x404080, 0x004040, 0x004000, 0x404000, 0x400000, 0x400040};

// Looks that do not show every hue leave only the name to recognise a colour by.
QString nameOf(std::size_t index) {
    constexpr std::array<const char*, kRows> kGreys{"White", "Very light grey", "Light grey",
                                                    "Grey",  "Dark grey",       "Black"};
    constexpr std::array<const char*, kRows> kShades{"Pale",   "Light", "Full",
                                                     "Medium", "Dark",  "Very dark"};
    constexpr std::array<const char*, kColumns> kHues{"",      "red",  "orange", "yellow",
                                                      "green", "cyan", "blue",   "magenta"};
    const std::size_t row = index / kColumns;
    const std::size_t column = index % kColumns;
    if (column == 0)
        return QString::fromLatin1(kGreys[row]);
    return QString::fromLatin1(kShades[row]) + u' ' + QString::fromLatin1(kHues[column]);
}

class ColourButton : public QAbstractButton {
  public:
    ColourButton(Colour colour, const QString& name, QWidget* parent)
        : QAbstractButton(parent)
        , colour_(colour) {
        setCheckable(true);
        setFixedSize(34, 26);
        setObjectName(u"Swatch"_s + QString::number(colour));
        setAccessibleName(name);
        setToolTip(name);
    }

    Colour colour() const { return colour_; }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(look::light(screenColour(colour_)));
        painter.setPen(QPen(look::kEdge, 1));
        painter.drawRoundedRect(QRectF(rect()).adjusted(3.5, 3.5, -3.5, -3.5), 3, 3);
        if (!isChecked() && !hasFocus())
            return;
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(isChecked() ? look::kText : look::kAccent, 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    }

  private:
    Colour colour_;
};

} // namespace

KivColor::KivColor(Label& label, CheckBox* unsafeBox, const QWidget* item)
    : EditorDialog(item->window())
    , label_(label)
    , unsafeBox_(unsafeBox)
    , chosen_(label.BackColor) {
    setObjectName(u"KivColor"_s);
    setWindowTitle(unsafeBox ? u"Level colour and description"_s : u"Colour"_s);
    QVBoxLayout* column = dialogColumn(this);
    if (unsafeBox_) {
        auto* caption = new QLabel(u"&Description"_s, this);
        description_ = new QLineEdit(label.Caption, this);
        description_->setObjectName(u"TxtDescription"_s);
        description_->selectAll();
        caption->setBuddy(description_);
        auto* row = new QHBoxLayout;
        row->setSpacing(look::kMargin);
        row->addWidget(caption);
        row->addWidget(description_);
        column->addLayout(row);
    }
    column->addWidget(makePalette());
    addOkAndCancel(this, column);
    placeNear(this, item);
}

QWidget* KivColor::makePalette() {
    auto* holder = new QWidget(this);
    auto* grid = new QGridLayout(holder);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(2);
    auto* group = new QButtonGroup(holder);
    for (std::size_t i = 0; i < kPalette.size(); ++i) {
        auto* button = new ColourButton(kPalette[i], nameOf(i), holder);
        button->setChecked(kPalette[i] == chosen_);
        group->addButton(button);
        grid->addWidget(button, static_cast<int>(i / kColumns), static_cast<int>(i % kColumns));
        connect(button, &QAbstractButton::clicked, this,
                [this, button] { chosen_ = button->colour(); });
    }
    tabToChosen(*group);
    return holder;
}

void KivColor::accept() {
    label_.BackColor = chosen_;
    if (unsafeBox_) {
        const QString description = description_->text().trimmed();
        label_.Caption = description;
        unsafeBox_->Caption = description;
    }
    QDialog::accept();
}

} // namespace skyhold
