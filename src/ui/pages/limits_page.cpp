#include "ui/pages/limits_page.h"

#include "conditions/threshold_rules.h"
#include "ui/dialogs/kiv_color.h"
#include "ui/dialogs/kiv_wind_pars.h"
#include "ui/look/look.h"
#include "ui/look/verdict_icon.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/hold_focus.h"
#include "ui/widgets/kiv_get_number.h"
#include "ui/widgets/open_editor.h"
#include "ui/widgets/readout.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

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

void addLevel(QGridLayout* grid, const QuantityRow& shown, std::size_t i,
              ConditionControls& conditions, const ShowMessage& showMessage) {
    QWidget* group = grid->parentWidget();
    const QByteArray suffix(shown.suffix);
    Label& level = conditions.Color[shown.quantity][i];
    CheckBox& unsafe = conditions.Cond[shown.quantity][i];

    auto* swatch = new Swatch(group);
    swatch->setObjectName(indexed("Color" + suffix, i));
    swatch->setPixelSize(13);
    bind(swatch, level);
    makeEditable(swatch, u"Change the name and colour of this level"_s,
                 [swatch, &level, &unsafe] { KivColor(level, &unsafe, swatch).exec(); });

    KivGetNumber* limit =
        makeNumber(group, indexed("Limit" + suffix, i), conditions.Limit[shown.quantity][i]);
    limit->setToolTip(u"Upper limit of this level"_s);
    limit->setFixedWidth(60); // leaves room for the level's name
    holdFocusWhile(
        limit,
        [limit, i, &conditions, quantity = shown.quantity] {
            // A box that is left empty would stand for 0.
            const double value =
                limit->holdsNumber() ? conditions.Limit[quantity][i].Value.value() : 0;
            return limitFault(conditions, quantity, i, value);
        },
        [&showMessage, quantity = shown.quantity](const QString& text) {
            if (showMessage)
                showMessage(refusedLimit(quantity, text));
        });

    const int row = static_cast<int>(i) * 2 + 1;
    QLabel* mark = makeFaultMark(group, shown.quantity, i, conditions);
    mark->setObjectName(indexed("Fault" + suffix, i));
    grid->addWidget(swatch, row, 0);
    auto* number = new QHBoxLayout;
    number->setSpacing(look::kGap);
    number->addWidget(mark);
    number->addWidget(limit);
    grid->addLayout(number, row, 1, Qt::AlignRight);
    if (!shown.hasSectors())
        return;

    Label& sector = conditions.Direction[shown.quantity][i];
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

QWidget* makeGroup(const QuantityRow& shown, ConditionControls& conditions, UnitControls& units,
                   const ShowMessage& showMessage, QWidget* page) {
    const QString title = QString::fromUtf16(shown.title);
    auto* group = new QGroupBox(u"%1 (%2)"_s.arg(title, u"%"_s), page);
    if (Label* unit = unitLabel(shown.measure, units))
        follow(group, unit->Caption, [group, title](const QString& text) {
            group->setTitle(u"%1 (%2)"_s.arg(title, text));
        });
    auto* grid = new QGridLayout(group);
    grid->setContentsMargins(14, 8, 14, 10);
    grid->setHorizontalSpacing(look::kGap);
    grid->setVerticalSpacing(6);
    grid->setColumnStretch(0, 1);
    for (std::size_t i = 0; i < 3; ++i)
        addLevel(grid, shown, i, conditions, showMessage);
    grid->setRowStretch(7, 1);
    return group;
}

} // namespace

QWidget* makeLimitsPage(ConditionControls& conditions, UnitControls& units,
                        const ShowMessage& showMessage, QWidget* parent) {
    auto* page = new QWidget(parent);
    QVBoxLayout* column = pageColumn(page);
    addHint(column, u"A value up to and including a limit belongs to that level. A pencil, a "
                    u"right-click or the menu key changes a level's name and colour, or a "
                    u"sector."_s);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    for (const Quantity quantity : kStationQuantities)
        row->addWidget(makeGroup(rowOf(quantity), conditions, units, showMessage, page), 1);
    column->addLayout(row);
    column->addStretch();
    return page;
}

} // namespace skyhold
