#include "ui/pages/unsafe_page.h"

#include "conditions/alarms.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/dialogs/kiv_sound_form.h"
#include "ui/look/look.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/alarm_box.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/kiv_get_number.h"
#include "ui/widgets/open_editor.h"
#include "ui/widgets/readout.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

// Columns: the quantity, then for each level its unsafe box, its limit on its colour, its alarm box
// and its sound.
constexpr int kTitle = 1;
constexpr int kPerLevel = 5; // the fifth keeps the levels apart
constexpr int kTwoColumns = 2;
constexpr int columnOf(int level) {
    return kTitle + 1 + level * kPerLevel;
}

// The limit of a level on the level's colour.
Swatch* makeLimit(NumberBox& limit, Label& level, const QString& name, QWidget* parent) {
    auto* chip = new Swatch(parent);
    chip->setObjectName(name);
    chip->setPixelSize(12);
    chip->setFixedSize(52, 20);
    chip->setToolTip(u"Its upper limit and colour, as set on the page Limits"_s);
    follow(chip, limit.Value, [chip](double value) {
        chip->setText(u"\u2264 "_s +
                      textOfNumber(value, {}, {.DigitsDecimal = 1, .forms = localeNumberForms()}));
    });
    follow(chip, level.BackColor, [chip](Colour colour) { chip->setFill(screenColour(colour)); });
    return chip;
}

// A sound that was chosen for an alarm that is off would be missed when it matters.
void offerAlarm(CheckBox& alarm, const QString& what, const ShowMessage& showMessage) {
    if (alarm.Tag.value().isEmpty() || alarm.checked() || !alarm.Enabled)
        return;
    const QString text =
        u"The alarm of %1 is off: its sound will not be heard. Switch it on?"_s.arg(what);
    if (showMessage({text, MessageStyle::YesNo, {}}) == MessageAnswer::Yes)
        alarm.set(1);
}

class AlarmTable {
  public:
    AlarmTable(AlarmControls& alarms, CurrentReadings& readings, MediaControl& media,
               const ShowMessage& showMessage, QWidget* parent)
        : alarms_(alarms)
        , readings_(readings)
        , media_(media)
        , showMessage_(showMessage)
        , parent_(parent)
        , grid_(new QGridLayout(parent)) {
        grid_->setContentsMargins(10, 4, 12, 4);
        grid_->setHorizontalSpacing(4);
        grid_->setVerticalSpacing(1);
        for (int level = 0; level < 3; ++level) {
            const int column = columnOf(level);
            grid_->addWidget(makeDimmed(u"Unsafe"_s, parent), 0, column);
            grid_->addWidget(makeDimmed(u"Limit"_s, parent), 0, column + 1);
            grid_->addWidget(makeDimmed(u"Alarm"_s, parent), 0, column + 2);
            grid_->addWidget(makeDimmed(u"Sound"_s, parent), 0, column + 3);
            grid_->setColumnStretch(column, 2);
            grid_->setColumnStretch(column + 3, 3);
            if (level > 0)
                grid_->setColumnMinimumWidth(column - 1, 6);
        }
    }

    void addQuantity(const QuantityRow& shown, ConditionControls& conditions) {
        const QByteArray suffix(shown.suffix);
        const QString title = QString::fromUtf16(shown.title);
        beginRow(title, static_cast<std::size_t>(shown.indicator));
        for (std::size_t i = 0; i < kLevelCount; ++i) {
            // The sensor program knows the limits of its own quantities.
            if (shown.hasLimits())
                grid_->addWidget(makeLimit(conditions.Limit[shown.quantity][i],
                                           conditions.Color[shown.quantity][i],
                                           indexed("LimitCond" + suffix, i), parent_),
                                 row_, columnOf(static_cast<int>(i)) + 1, Qt::AlignVCenter);
            CheckBox& record = conditions.Cond[shown.quantity][i];
            addLevel(static_cast<int>(i),
                     makeCheck(parent_, indexed("Cond" + suffix, i), record.Caption, record),
                     indexed("Alarm" + suffix, i), alarms_.Alarm[shown.quantity][i],
                     u"%1, level %2"_s.arg(title).arg(i + 1), shown.hasLimits() ? 1 : kTwoColumns);
        }
    }

    // A source that may fail: it has a single state.
    void addSource(const QString& title, std::size_t indicator, QWidget* unsafe,
                   const QString& alarmName, CheckBox& alarm) {
        beginRow(title, indicator);
        addLevel(0, unsafe, alarmName, alarm, title, kTwoColumns);
    }

    // A row of its own, for what belongs to all quantities.
    void addAcross(QWidget* widget) {
        grid_->setRowStretch(++row_, 1);
        grid_->addWidget(widget, row_, columnOf(0), 1, -1, Qt::AlignVCenter);
    }

    // Fills the place of a level in the last row.
    void addBeside(int level, QWidget* widget) {
        grid_->addWidget(widget, row_, columnOf(level), 1, 4, Qt::AlignVCenter);
    }
    QHBoxLayout* addBeside(int level) {
        auto* line = new QHBoxLayout;
        grid_->addLayout(line, row_, columnOf(level), 1, 4, Qt::AlignVCenter);
        return line;
    }

  private:
    void beginRow(const QString& title, std::size_t indicator) {
        ++row_;
        grid_->setRowStretch(row_, 1);
        auto* mark = new PlayMark(alarms_.PlayAlarm[indicator], alarms_.SoundFault, parent_);
        mark->setObjectName(indexed("PlayAlarm", indicator));
        grid_->addWidget(mark, row_, 0, Qt::AlignVCenter);
        auto* label = new QLabel(title, parent_);
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
        grid_->addWidget(label, row_, kTitle, Qt::AlignVCenter);
    }

    // `what` says in words what the alarm is for. Without limit the unsafe box takes its column,
    // too.
    void addLevel(int level, QWidget* unsafe, const QString& alarmName, CheckBox& alarm,
                  const QString& what, int unsafeColumns) {
        auto* box = new AlarmBox(alarm, parent_);
        box->setObjectName(alarmName);
        box->setAccessibleName(u"Alarm: "_s + what);
        box->setToolTip(u"Alarm while this lasts. Right-click, or press the menu key or Shift+F10, "
                        u"to choose its sound"_s);
        auto* sound = new SoundName(alarm, parent_);
        sound->setObjectName(u"Sound"_s + alarmName);
        sound->setAccessibleName(u"Sound: "_s + what);

        const auto released = [&alarm, &alarms = alarms_, &readings = readings_, &media = media_,
                               &showMessage = showMessage_, box, what](Qt::MouseButton button) {
            EditAlarmSound(static_cast<int>(button), alarm, readings, [&](CheckBox& target) {
                KivSoundForm form(target, alarms.LastMusicDir, media, box->window());
                if (form.exec() == QDialog::Accepted)
                    offerAlarm(target, what, showMessage);
            });
        };
        const auto edit = [released] {
            released(Qt::RightButton);
        };
        QObject::connect(box, &AlarmBox::mouseReleased, box, released);
        QObject::connect(box, &AlarmBox::editWanted, box, edit);
        openEditorFrom(sound, edit);
        const int column = columnOf(level);
        grid_->addWidget(unsafe, row_, column, 1, unsafeColumns, Qt::AlignVCenter);
        grid_->addWidget(box, row_, column + 2, Qt::AlignVCenter);
        grid_->addWidget(sound, row_, column + 3, Qt::AlignVCenter);
    }

    AlarmControls& alarms_;
    CurrentReadings& readings_;
    MediaControl& media_;
    const ShowMessage& showMessage_;
    QWidget* parent_;
    QGridLayout* grid_;
    int row_ = 0; // the header
};

// A sensor program that is the master hides its alarm and its box; the box holds all the same.
QWidget* makeMasterNote(CheckBox& unsafe, QWidget* parent) {
    auto* note = new Readout(parent);
    note->setObjectName(u"LblMaster"_s);
    note->setPixelSize(13);
    note->setTone(Tone::Dim);
    follow(note, unsafe.Value, [note](int failureIsUnsafe) {
        note->setText(failureIsUnsafe == 1 ? u"Master: its failure is unsafe"_s
                                           : u"Master: its failure is not unsafe"_s);
    });
    follow(note, unsafe.Visible, [note](bool boxShown) { note->setHidden(boxShown); });
    return note;
}

void addQuantities(AlarmTable& table, ConditionControls& conditions) {
    for (const QuantityRow& shown : quantityTable())
        table.addQuantity(shown, conditions);
}

} // namespace

QWidget* makeUnsafePage(ConditionControls& conditions, AlarmControls& alarms,
                        CurrentReadings& readings, MediaControl& media,
                        const ShowMessage& showMessage, QWidget* parent) {
    auto* page = new QWidget(parent);
    auto* card = new Card(page);
    card->standForGroup();
    card->setMaximumHeight(430); // a taller window does not pull the rows apart
    AlarmTable table(alarms, readings, media, showMessage, card);
    addQuantities(table, conditions);
    QCheckBox* beyond = makeCheck(card, u"BeyondLimitUnsafe"_s, {}, conditions.BeyondLimitUnsafe);
    beyond->setToolTip(u"A value above the third limit has no level. Unless this is ticked, it is "
                       u"reported but not judged"_s);
    table.addAcross(beyond);

    table.addSource(u"Weather station"_s, 8,
                    makeCheck(card, u"WSDataOldUnsafe"_s, {}, conditions.WSDataOldUnsafe),
                    u"AlarmWS"_s, alarms.AlarmWS);
    table.addBeside(1, makeCheck(card, u"SuspendSoundAlarm"_s, {}, alarms.SuspendSoundAlarm));
    table.addBeside(2, makeDimmed(u"Safe Condition Delay Period"_s, card));

    table.addSource(u"Cloud sensor"_s, 9,
                    makeCheck(card, u"NBDataOldUnsafe"_s, {}, conditions.NBDataOldUnsafe),
                    u"AlarmNB"_s, alarms.AlarmNB);
    table.addBeside(0, makeMasterNote(conditions.NBDataOldUnsafe, card));
    auto* timeout = new Readout(card);
    timeout->setObjectName(u"Label120"_s);
    timeout->setPixelSize(13);
    timeout->setTone(Tone::Dim);
    bind(timeout, alarms.TimeoutAlarmCaption);
    table.addBeside(1, timeout);
    addNumberRow(table.addBeside(2), u"&Delay Period"_s, u"SafeDelayVal"_s, conditions.SafeDelayVal,
                 u"(secs)"_s);

    table.addSource(u"Roof"_s, 10, makeDimmed(u"Has not moved"_s, card), u"AlarmRoof"_s,
                    alarms.AlarmRoof);

    QVBoxLayout* column = pageColumn(page);
    column->addWidget(card, 1);
    column->addStretch();
    return page;
}

} // namespace skyhold
