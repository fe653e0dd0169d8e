// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/dialogs/kiv_unit_symbols.h"

#include "ui/dialogs/dialog_parts.h"
#include "ui/look/look.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

KivUnitSymbols::KivUnitSymbols(UnitControls& units, QWidget* parent)
    : QDialog(parent->window()) {
    setObjectName(u"KivUnitSymbols"_s);
    setWindowTitle(u"Unit symbols of the station's file"_s);
    QVBoxLayout* column = dialogColumn(this);
    const auto addGroup = [this, column](const QString& title) {
        auto* group = new QGroupBox(title, this);
        auto* form = new QFormLayout(group);
        form->setContentsMargins(14, 8, 14, 12);
        form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        form->setHorizontalSpacing(look::kMargin);
        form->setVerticalSpacing(look::kGap);
        column->addWidget(group);
        return form;
    };
    const auto addBox = [this](QFormLayout* form, const QString& caption, const QString& name,
                               QString& text, bool upperCase = true) {
        auto* edit = new QLineEdit(text, form->parentWidget());
        edit->setObjectName(name);
        edit->setMinimumWidth(260);
        auto* label = new QLabel(caption, form->parentWidget());
        label->setMinimumWidth(130);
        label->setBuddy(edit);
        form->addRow(label, edit);
        boxes_.push_back({edit, text, upperCase});
    };
    QFormLayout* speed = addGroup(u"Wind speed, symbols separated by blanks"_s);
    addBox(speed, u"&km/hr"_s, u"SymbolKPH"_s, units.StringKPH);
    addBox(speed, u"m/&s"_s, u"SymbolMPS"_s, units.StringMPS);
    addBox(speed, u"&mph"_s, u"SymbolMPH"_s, units.StringMPH);
    addBox(speed, u"k&not"_s, u"SymbolKNT"_s, units.StringKNOTS);
    QFormLayout* temperature = addGroup(u"Temperature, symbols separated by \";\""_s);
    addBox(temperature, u"°&C"_s, u"SymbolDC"_s, units.StringDC);
    addBox(temperature, u"°&F"_s, u"SymbolDF"_s, units.StringDF);
    QFormLayout* humidity = addGroup(u"Humidity"_s);
    addBox(humidity, u"Characters &removed"_s, u"ExcChrHumidity"_s, units.ExcChrHumidity, false);
    addOkAndCancel(this, column);
    centreOver(this, parent->window());
}

void KivUnitSymbols::accept() {
    for (const Box& box : boxes_)
        box.text = box.upperCase ? box.edit->text().toUpper() : box.edit->text();
    QDialog::accept();
}

} // namespace skyhold
