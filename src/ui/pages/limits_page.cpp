#include "ui/pages/limits_page.h"

#include "conditions/threshold_rules.h"
#include "ui/bind.h"
#include "ui/hold_focus.h"
#include "ui/kiv_color.h"
#include "ui/kiv_get_number.h"
#include "ui/kiv_wind_pars.h"
#include "ui/look.h"
#include "ui/open_editor.h"
#include "ui/pages/page_parts.h"
#include "ui/readout.h"
#include "ui/verdict_icon.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

struct LimitGroup {
    QString title;
    const char* suffix; // of the control names
    Quantity quantity;
    Label* unit;          // null: it stands in the title
    ThreeLabels* sectors; // of wind and gust
};

// Stands beside a limit in force that would be refused if it were typed: settings, units and
// automation clients are not asked.
QLabel* makeFaultMark(QWidget* group, Quantity quantity, std::size_t i,
                      ConditionControls& conditions) {
    auto* mark = new QLabel(group);
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

void addLevel(QGridLayout* grid, const LimitGroup& made, std::size_t i,
              ConditionControls& conditions, const ShowMessage& showMessage) {
    QWidget* group = grid->parentWidget();
    const QByteArray suffix(made.suffix);
    Label& level = conditions.Color[made.quantity][i];
    CheckBox& unsafe = conditions.Cond[made.quantity][i];

    auto* swatch = new Swatch(group);
    swatch->setObjectName(indexed("Color" + suffix, i));
    swatch->setPixelSize(13);
    bind(swatch, level);
    makeEditable(swatch, u"Change the name and colour of this level"_s,
                 [swatch, &level, &unsafe] { KivColor(level, &unsafe, swatch).exec(); });

    KivGetNumber* limit =
        makeNumber(group, indexed("Limit" + suffix, i), conditions.Limit[made.quantity][i]);
    limit->setToolTip(u"Upper limit of this level"_s);
    limit->setFixedWidth(60); // leaves room for the level's name
    holdFocusWhile(
        limit,
        [limit, i, &conditions, quantity = made.quantity] {
            // A box that is left empty would stand for 0.
            const double value =
                limit->holdsNumber() ? conditions.Limit[quantity][i].Value.value() : 0;
            return limitFault(conditions, quantity, i, value);
        },
        [&showMessage](const QString& text) {
            if (showMessage)
                showMessage({text, MessageStyle::Ok, {}});
        });

    const int row = static_cast<int>(i) * 2 + 1;
    QLabel* mark = makeFaultMark(group, made.quantity, i, conditions);
    mark->setObjectName(indexed("Fault" + suffix, i));
    grid->addWidget(swatch, row, 0);
    auto* number = new QHBoxLayout;
    number->setSpacing(look::kGap);
    number->addWidget(mark);
    number->addWidget(limit);
    grid->addLayout(number, row, 1, Qt::AlignRight);
    if (!made.sectors)
        return;

    Label& sector = (*made.sectors)[i];
    auto* label = new Readout(group);
    label->setObjectName(indexed("Direction" + suffix, i));
    label->setPixelSize(13);
    bind(label, sector);
    makeEditable(label, u"Change the sector: from and to in degrees, then minutes"_s,
                 [label, &sector] { KivWindPars(sector, label).exec(); });
    label->reserve(u"-000 0000  00"_s);
    auto* caption = new QLabel(u"Sector"_s, group);
    auto* line = new QHBoxLayout;
    line->setContentsMargins(0, 0, 0, 4);
    line->setSpacing(look::kGap);
    line->addStretch();
    line->addWidget(caption);
    line->addWidget(label);
    grid->addLayout(line, row + 1, 0, 1, 2);
}

QWidget* makeGroup(const LimitGroup& made, ConditionControls& conditions,
                   const ShowMessage& showMessage, QWidget* page) {
    auto* group = new QGroupBox(made.title, page);
    if (made.unit)
        follow(group, made.unit->Caption, [group, title = made.title](const QString& unit) {
            group->setTitle(u"%1 (%2)"_s.arg(title, unit));
        });
    auto* grid = new QGridLayout(group);
    grid->setContentsMargins(14, 8, 14, 10);
    grid->setHorizontalSpacing(look::kGap);
    grid->setVerticalSpacing(6);
    grid->setColumnStretch(0, 1);
    for (std::size_t i = 0; i < 3; ++i)
        addLevel(grid, made, i, conditions, showMessage);
    grid->setRowStretch(7, 1);
    return group;
}

} // namespace

QWidget* makeLimitsPage(ConditionControls& conditions, UnitControls& units,
                        const ShowMessage& showMessage, QWidget* parent) {
    const std::array<LimitGroup, 5> groups{{
        {u"Wind"_s, "Wind", Quantity::Wind, &units.SpeedUnitText, &conditions.Direction[Quantity::Wind]},
        {u"Gust"_s, "Gust", Quantity::Gust, &units.SpeedUnitText, &conditions.Direction[Quantity::Gust]},
        {u"Temperature"_s, "Temp", Quantity::Temperature, &units.TemperatureUnitText, nullptr},
        {u"Dew-point spread"_s, "Dew", Quantity::Dew, &units.TemperatureUnitText, nullptr},
        {u"Humidity (%)"_s, "Hum", Quantity::Humidity, nullptr, nullptr},
    }};
    auto* page = new QWidget(parent);
    QVBoxLayout* column = pageColumn(page);
    addHint(column, u"A value up to and including a limit belongs to that level. A pencil, a "
                    u"right-click or the menu key changes a level's name and colour, or a "
                    u"sector."_s);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    for (const LimitGroup& made : groups)
        row->addWidget(makeGroup(made, conditions, showMessage, page), 1);
    column->addLayout(row);
    column->addStretch();
    return page;
}

} // namespace skyhold
