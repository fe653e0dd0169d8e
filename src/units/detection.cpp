#include "units/detection.h"

namespace skyhold {

namespace {

bool anyPieceOccurs(const QString& pieces, QStringView text) {
    if (pieces.isEmpty())
        return false;
    for (const QStringView piece : QStringView(pieces).split(u';')) {
        if (text.contains(piece))
            return true;
    }
    return false;
}

} // namespace

QString DetectTemperatureUnit(QStringView unitText, const UnitControls& units) {
    if (anyPieceOccurs(units.StringDC, unitText))
        return QStringLiteral("C");
    if (anyPieceOccurs(units.StringDF, unitText))
        return QStringLiteral("F");
    return QStringLiteral(" ");
}

QString DetectSpeedUnit(QStringView unitText, const UnitControls& units, const QString& current) {
    const QString upper = unitText.toString().toUpper();
    if (units.StringKPH.contains(upper))
        return QStringLiteral("K");
    if (units.StringMPH.contains(upper))
        return QStringLiteral("M");
    if (units.StringMPS.contains(upper))
        return QStringLiteral("m");
    if (units.StringKNOTS.contains(upper))
        return QStringLiteral("k");
    return current;
}

} // namespace skyhold
