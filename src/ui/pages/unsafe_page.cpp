#include "ui/pages/unsafe_page.h"

#include "ui/bind.h"
#include "ui/kiv_get_number.h"
#include "ui/look.h"
#include "ui/pages/page_parts.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

struct UnsafeGroup {
    QString title;
    const char* control;
    Quantity quantity;
    // The sensor program's own names may never have been heard.
    std::array<QString, 3> levels;
};

QWidget* makeLevels(const UnsafeGroup& made, ConditionControls& conditions, QWidget* page) {
    QVBoxLayout* column = addGroup(page, made.title);
    QWidget* group = column->parentWidget();
    for (std::size_t i = 0; i < 3; ++i)
        column->addWidget(makeCheck(group, indexed(made.control, i), made.levels[i],
                                    conditions.unsafe(made.quantity)[i]));
    column->addStretch();
    return group;
}

QWidget* makeSources(ConditionControls& conditions, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Failing sources"_s);
    QWidget* group = column->parentWidget();
    addHint(column, u"Weather station"_s);
    column->addWidget(makeCheck(group, u"WSDataOldUnsafe"_s, {}, conditions.WSDataOldUnsafe));
    addHint(column, u"Cloud sensor (Kiv_Nubilo)"_s);
    column->addWidget(makeCheck(group, u"NBDataOldUnsafe"_s, {}, conditions.NBDataOldUnsafe));
    column->addStretch();
    return group;
}

QWidget* makeDelay(ConditionControls& conditions, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Return to safe"_s);
    addHint(column, u"Safe Condition Delay Period"_s);
    addNumberRow(column, u"&Delay Period"_s, u"SafeDelayVal"_s, conditions.SafeDelayVal,
                 u"(secs)"_s);
    column->addStretch();
    return column->parentWidget();
}

} // namespace

QWidget* makeUnsafePage(ConditionControls& conditions, QWidget* parent) {
    const std::array<QString, 3> none;
    const std::array<UnsafeGroup, 8> groups{{
        {u"Cloud"_s, "CondCloud", Quantity::Cloud, {u"Clear"_s, u"Cloudy"_s, u"Overcast"_s}},
        {u"Rain"_s, "CondRain", Quantity::Rain, {u"Dry"_s, u"Wet"_s, u"Rain"_s}},
        {u"Brightness"_s,
         "CondDay",
         Quantity::Brightness,
         {u"Dark"_s, u"Light"_s, u"Very light"_s}},
        {u"Temperature"_s, "CondTemp", Quantity::Temperature, none},
        {u"Wind"_s, "CondWind", Quantity::Wind, none},
        {u"Gust"_s, "CondGust", Quantity::Gust, none},
        {u"Dew-point spread"_s, "CondDew", Quantity::Dew, none},
        {u"Humidity"_s, "CondHum", Quantity::Humidity, none},
    }};
    auto* page = new QWidget(parent);
    QVBoxLayout* column = pageColumn(page);
    column->setSpacing(look::kGap);
    addHint(column, u"A checked level makes the sky unsafe while it lasts."_s);
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(look::kMargin);
    grid->setVerticalSpacing(look::kGap);
    constexpr int kPerRow = 4;
    int place = 0;
    for (const UnsafeGroup& made : groups) {
        grid->addWidget(makeLevels(made, conditions, page), place / kPerRow, place % kPerRow);
        ++place;
    }
    grid->addWidget(makeSources(conditions, page), 0, kPerRow);
    grid->addWidget(makeDelay(conditions, page), 1, kPerRow);
    for (int i = 0; i <= kPerRow; ++i)
        grid->setColumnStretch(i, 1);
    column->addLayout(grid);
    column->addStretch();
    return page;
}

} // namespace skyhold
