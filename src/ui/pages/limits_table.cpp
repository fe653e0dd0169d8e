// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/limits_table.h"

#include "conditions/sector_text.h"
#include "conditions/threshold_rules.h"
#include "history/level_times.h"
#include "judge/nearest.h"
#include "ui/dialogs/dialog_parts.h"
#include "ui/dialogs/kiv_color.h"
#include "ui/dialogs/kiv_wind_pars.h"
#include "ui/look/look.h"
#include "ui/look/verdict_icon.h"
#include "ui/pages/alarm_cells.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/alarm_box.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/hold_focus.h"
#include "ui/widgets/kiv_get_number.h"
#include "ui/widgets/open_editor.h"
#include "units/unit_text.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

enum Column { kNow, kStripe, kName, kLimit, kUnsafe, kAlarm, kSound, kSector, kTonight, kColumns };

constexpr int kRow = 20;        // of a level, at least
constexpr int kTallestRow = 28; // where there is room
constexpr int kHeader = 20;
constexpr int kBetween = 4; // quantities
constexpr int kBox = 18;    // inside the frame of the level in force
constexpr QColor kSafeStripe(0x2e, 0x7d, 0x46);
constexpr QColor kUnsafeStripe(0xb0, 0x2c, 0x35);
constexpr int kRowsOfQuantity = kLevelCount + 1;

// Stands beside a limit in force that would be refused if it were typed: settings, units and
// automation clients are not asked.
QLabel* makeFaultMark(QWidget* parent, Quantity quantity, std::size_t i,
                      ConditionControls& conditions) {
    auto* mark = new QLabel(parent);
    followLook(mark, [mark] {
        constexpr int kSide = 16;
        mark->setPixmap(drawVerdictIcon(VerdictIcon::Fault).pixmap(kSide));
    });
    const auto judge = [mark, quantity, i, &conditions] {
        const double value = conditions.Limit[quantity][i].Value;
        const QString fault = limitFault(conditions, quantity, i, value);
        mark->setToolTip(fault);
        mark->setAccessibleName(fault);
        mark->setHidden(fault.isEmpty());
    };
    for (NumberBox& limit : conditions.Limit[quantity])
        follow(mark, limit.Value, [judge](double) { judge(); });
    for (Label& level : conditions.Color[quantity])
        follow(mark, level.Caption, [judge](const QString&) { judge(); });
    return mark;
}

Readout* makeReadout(QWidget* parent, int pixels, Tone tone) {
    auto* readout = new Readout(parent);
    readout->setPixelSize(pixels);
    readout->setTone(tone);
    return readout;
}

// A box without a text; what it is for is its accessible name. `quantity` in words.
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

QString titleOf(const QuantityRow& shown) {
    return QString::fromUtf16(shown.title);
}

} // namespace

LimitsTable::LimitsTable(MonitoringCore& core, QWidget* parent)
    : Card(parent)
    , core_(core)
    , grid_(new QGridLayout(this)) {
    setObjectName(u"LimitsTable"_s);
    standForGroup();
    constexpr int kQuantities = static_cast<int>(kQuantityCount);
    setMaximumHeight(kHeader + kQuantities * (3 * kTallestRow + kBetween) + 16);
    grid_->setContentsMargins(10, 6, 10, 6);
    grid_->setHorizontalSpacing(8);
    grid_->setVerticalSpacing(0);
    addHeader();
    for (const QuantityRow& shown : quantityTable())
        addQuantity(shown);
    SessionControls& session = core_.records.session;
    follow(this, session.CyclesDone, [this](std::int64_t) { showNow(); });
    follow(this, session.State, [this](SessionState) { showNow(); });
}

int LimitsTable::rowOfLevel(Quantity quantity, std::size_t i) const {
    return 1 + static_cast<int>(quantity) * kRowsOfQuantity + static_cast<int>(i);
}

void LimitsTable::addHeader() {
    constexpr std::array<std::pair<const char16_t*, int>, kColumns> kHeads{{
        {u"Quantity, now", 134},
        {u"", 12},
        {u"Level", 128},
        {u"Up to", 104},
        {u"Unsafe", 44},
        {u"Alarm", 34},
        {u"Sound", 100},
        {u"Wind from, for", 176},
        {u"Tonight", 76},
    }};
    for (int column = 0; column < kColumns; ++column) {
        const auto& [text, width] = kHeads[static_cast<std::size_t>(column)];
        Readout* head = makeReadout(this, 11, Tone::Dim);
        head->setText(QString::fromUtf16(text));
        head->setFixedHeight(kHeader);
        if (column == kTonight) {
            head->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            head->setToolTip(u"How long each level lasted since noon"_s);
        }
        grid_->addWidget(head, 0, column);
        grid_->setColumnMinimumWidth(column, width);
    }
    for (const Column column : {kNow, kName, kLimit, kSound, kSector, kTonight})
        grid_->setColumnStretch(column, 1);
}

void LimitsTable::addQuantity(const QuantityRow& shown) {
    const int first = rowOfLevel(shown.quantity, 0);
    for (int i = 0; i < static_cast<int>(kLevelCount); ++i) {
        grid_->setRowMinimumHeight(first + i, kRow);
        grid_->setRowStretch(first + i, 1);
    }
    grid_->setRowMinimumHeight(first + static_cast<int>(kLevelCount), kBetween);
    addNow(shown);
    for (std::size_t i = 0; i < kLevelCount; ++i)
        addLevel(shown, i);
}

void LimitsTable::addNow(const QuantityRow& shown) {
    Now& now = now_[shown.quantity];
    const QByteArray suffix(shown.suffix);
    const int first = rowOfLevel(shown.quantity, 0);

    AlarmControls& alarms = core_.records.alarms;
    const auto indicator = static_cast<std::size_t>(shown.indicator);
    auto* mark = new PlayMark(alarms.PlayAlarm[indicator], alarms.SoundFault, this);
    mark->setObjectName(indexed("PlayAlarm", indicator));
    Readout* title = makeReadout(this, 12, Tone::Text);
    title->setPixelSize(12, true);
    title->setText(titleOf(shown));
    auto* head = new QHBoxLayout;
    head->setSpacing(0);
    head->addWidget(title, 1);
    head->addWidget(mark);
    grid_->addLayout(head, first, kNow);

    now.value = makeReadout(this, 17, Tone::Text);
    now.value->setPixelSize(17, true);
    now.value->setObjectName(QString::fromLatin1("Now" + suffix));
    now.value->reserve(u"-0000"_s);
    now.unit = makeReadout(this, 11, Tone::Dim);
    auto* line = new QHBoxLayout;
    line->setSpacing(4);
    line->addWidget(now.value);
    line->addWidget(now.unit, 1);
    grid_->addLayout(line, first + 1, kNow);

    now.left = makeReadout(this, 11, Tone::Dim);
    now.left->setObjectName(QString::fromLatin1("Left" + suffix));
    grid_->addWidget(now.left, first + 2, kNow);
}

void LimitsTable::addLevel(const QuantityRow& shown, std::size_t i) {
    const QByteArray suffix(shown.suffix);
    const int row = rowOfLevel(shown.quantity, i);
    addName(shown, i);
    addLimit(shown, i);

    CheckBox& unsafe = core_.records.conditions.Cond[shown.quantity][i];
    QCheckBox* box = makeUnsafeBox(unsafe, indexed("Cond" + suffix, i), titleOf(shown), this);
    grid_->addWidget(box, row, kUnsafe, Qt::AlignCenter);
    follow(this, unsafe.Value, [this](int) { update(); });

    const AlarmUse use{core_.records.alarms, core_.records.readings, core_.media,
                       core_.showMessage};
    const AlarmCells cells = makeAlarmCells(use, core_.records.alarms.Alarm[shown.quantity][i],
                                            indexed("Alarm" + suffix, i),
                                            u"%1, level %2"_s.arg(titleOf(shown)).arg(i + 1), this);
    grid_->addWidget(cells.box, row, kAlarm, Qt::AlignVCenter);
    grid_->addWidget(cells.sound, row, kSound, Qt::AlignVCenter);
    if (shown.hasSectors())
        addSector(shown, i);

    Readout* tonight = makeReadout(this, 12, Tone::Text);
    tonight->setObjectName(indexed("Tonight" + suffix, i));
    tonight->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    grid_->addWidget(tonight, row, kTonight);
    now_[shown.quantity].tonight[i] = tonight;
}

void LimitsTable::addName(const QuantityRow& shown, std::size_t i) {
    ConditionControls& conditions = core_.records.conditions;
    CheckBox& unsafe = conditions.Cond[shown.quantity][i];
    const int row = rowOfLevel(shown.quantity, i);
    if (!shown.hasLimits()) {
        Readout* name = makeReadout(this, 12, Tone::Text);
        name->setContentsMargins(Swatch::kChipRoom, 0, 0, 0);
        follow(name, unsafe.Caption, [name](const QString& text) { name->setText(text); });
        grid_->addWidget(name, row, kName);
        return;
    }
    Label& level = conditions.Color[shown.quantity][i];
    auto* name = new Swatch(this);
    name->setObjectName(indexed("Color" + QByteArray(shown.suffix), i));
    name->setPixelSize(12);
    name->shrinkToChip();
    bind(name, level);
    name->setAccessibleName(u"Name and colour: %1, level %2"_s.arg(titleOf(shown)).arg(i + 1));
    makeEditable(name, u"Change the name and colour of this level"_s,
                 [name, &level, &unsafe] { KivColor(level, &unsafe, name).exec(); });
    name->setFixedHeight(kRow);
    grid_->addWidget(name, row, kName);
}

void LimitsTable::addLimit(const QuantityRow& shown, std::size_t i) {
    const int row = rowOfLevel(shown.quantity, i);
    if (!shown.hasLimits()) {
        Readout* by = makeReadout(this, 11, Tone::Dim);
        by->setText(u"by the sensor"_s);
        by->setToolTip(u"The sensor program knows the limits of what it measures"_s);
        grid_->addWidget(by, row, kLimit);
        return;
    }
    ConditionControls& conditions = core_.records.conditions;
    const QByteArray suffix(shown.suffix);
    const Quantity quantity = shown.quantity;
    KivGetNumber* limit =
        makeNumber(this, indexed("Limit" + suffix, i), conditions.Limit[quantity][i]);
    limit->setAccessibleName(u"Limit: %1, level %2"_s.arg(titleOf(shown)).arg(i + 1));
    limit->setToolTip(u"Upper limit of this level: a value up to and including it belongs to it"_s);
    limit->setFixedSize(54, kBox);
    holdFocusWhile(
        limit,
        [limit, i, &conditions, quantity] {
            // A box that is left empty would stand for 0.
            const double value =
                limit->holdsNumber() ? conditions.Limit[quantity][i].Value.value() : 0;
            return limitFault(conditions, quantity, i, value);
        },
        [this, quantity](const QString& text) {
            if (core_.showMessage)
                core_.showMessage(refusedLimit(quantity, text));
        });
    QLabel* mark = makeFaultMark(this, quantity, i, conditions);
    mark->setObjectName(indexed("Fault" + suffix, i));
    Readout* unit = makeReadout(this, 11, Tone::Dim);
    unit->setText(u"%"_s);
    if (Label* shownUnit = unitLabel(shown.measure, core_.records.units))
        follow(unit, shownUnit->Caption, [unit](const QString& text) { unit->setText(text); });
    auto* line = new QHBoxLayout;
    line->setSpacing(4);
    line->addWidget(limit);
    line->addWidget(unit, 1);
    line->addWidget(mark);
    grid_->addLayout(line, row, kLimit, Qt::AlignVCenter);
}

void LimitsTable::addSector(const QuantityRow& shown, std::size_t i) {
    Label& sector = core_.records.conditions.Direction[shown.quantity][i];
    Readout* words = makeReadout(this, 12, Tone::Text);
    words->setObjectName(indexed("Direction" + QByteArray(shown.suffix), i));
    follow(words, sector.Caption, [this, words](const QString& text) {
        words->setText(sectorWords(text, core_.records.units.Cardinal));
    });
    followVisible(words, sector.Visible);
    words->setAccessibleName(u"Wind sector: %1, level %2"_s.arg(titleOf(shown)).arg(i + 1));
    makeEditable(words, u"Change the sector and the time for which the wind must blow from it"_s,
                 [this, words, &sector] {
                     const CurrentReadings& readings = core_.records.readings;
                     const bool live = core_.records.session.running() && readings.StationValid;
                     KivWindPars(sector, words,
                                 live ? readings.WindDirection : std::optional<double>())
                         .exec();
                 });
    words->setFixedHeight(kRow);
    grid_->addWidget(words, rowOfLevel(shown.quantity, i), kSector);
}

void LimitsTable::showNow() {
    for (const QuantityRow& shown : quantityTable())
        showQuantity(shown);
    update();
}

// Only what a working source said in a session that runs is marked; what is older is grey.
void LimitsTable::showQuantity(const QuantityRow& shown) {
    const CycleResult& result = core_.result;
    const Observation& observation = result.observation;
    const Now& now = now_[shown.quantity];
    const bool works =
        shown.hasLimits() ? observation.station.usable() : !observation.sensor.failed();
    const bool known = result.number > 0 && observation.values[shown.quantity].has_value();
    const double value = observation.values[shown.quantity].value_or(0);
    const bool live = core_.records.session.running() && works && known;
    const std::int32_t level = result.judgement.levels[shown.quantity];
    const bool hasLevel = live && level >= 1 && level <= static_cast<std::int32_t>(kLevelCount);
    marked_[shown.quantity] = hasLevel ? level : 0;

    const LevelRules& rules = result.rules.levels[shown.quantity];
    const bool unsafe = hasLevel && rules.unsafe[static_cast<std::size_t>(level - 1)];
    const bool whole = shown.measure == Measure::Cycles || shown.measure == Measure::Kelvin;
    now.value->setText(known ? formatNumber(value, whole ? u"0" : u"0.0", core_.forms) : u"–"_s);
    now.value->setInk(screenColour(unsafe ? kOrange : kGreen));
    now.value->setOld(!live);
    now.unit->setText(known ? shownUnit(shown.measure, result.temperatureUnit, result.speedUnit)
                            : QString());

    std::optional<double> room;
    if (hasLevel && shown.hasLimits())
        room = leftToUnsafe(value, level, rules, result.rules.beyondIsUnsafe);
    QString left;
    if (unsafe)
        left = u"unsafe level"_s;
    else if (room)
        left = formatNumber(*room, u"0.0", core_.forms) + u" to unsafe"_s;
    else if (known && !live)
        left = u"last reading"_s;
    now.left->setText(left);
    const auto nearest = nearestLimit(observation, result.rules, result.judgement);
    const bool isNearest = live && nearest && nearest->quantity == shown.quantity;
    now.left->setPixelSize(11, isNearest);
    now.left->setTone(isNearest ? Tone::Text : Tone::Dim);
}

void LimitsTable::showTimes(const LevelTimes& times) {
    for (const QuantityRow& shown : quantityTable()) {
        for (std::size_t i = 0; i < kLevelCount; ++i) {
            Readout* tonight = now_[shown.quantity].tonight[i];
            const std::int64_t seconds = times.ms(shown.quantity, i) / 1'000;
            tonight->setText(seconds > 0 ? durationText(seconds) : u"–"_s);
            const bool unsafe = core_.records.conditions.Cond[shown.quantity][i].checked();
            tonight->setInk(seconds > 0 && unsafe ? screenColour(kOrange) : QColor());
        }
    }
}

void LimitsTable::paintEvent(QPaintEvent* event) {
    Card::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int right = contentsRect().right() - 5;
    for (const QuantityRow& shown : quantityTable()) {
        const QRect first = grid_->cellRect(rowOfLevel(shown.quantity, 0), kStripe);
        painter.fillRect(QRect(10, first.top() - kBetween / 2 - 1, width() - 20, 1), look::kEdge);
        for (std::size_t i = 0; i < kLevelCount; ++i) {
            const QRect cell = grid_->cellRect(rowOfLevel(shown.quantity, i), kStripe);
            const bool unsafe = core_.records.conditions.Cond[shown.quantity][i].checked();
            if (marked_[shown.quantity] == static_cast<int>(i) + 1) {
                const QRectF frame(cell.left() + 3.5, cell.top() + 0.5, right - cell.left() - 4,
                                   cell.height() - 1);
                painter.setPen(look::kText);
                painter.setBrush(look::kButton);
                painter.drawRoundedRect(frame, 3, 3);
                const double middle = frame.center().y();
                const std::array<QPointF, 3> wedge{QPointF(frame.left() + 1, middle),
                                                   QPointF(frame.left() + 7, middle - 5),
                                                   QPointF(frame.left() + 7, middle + 5)};
                painter.setPen(Qt::NoPen);
                painter.setBrush(look::kText);
                painter.drawPolygon(wedge.data(), static_cast<int>(wedge.size()));
            }
            painter.fillRect(QRect(cell.left() - 3, cell.top() + 1, 5, cell.height() - 2),
                             look::light(unsafe ? kUnsafeStripe : kSafeStripe));
        }
    }
}

} // namespace skyhold
