// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/status_lines.h"

namespace skyhold {

void SetStatusText(Label& statusbar1, const QString& text, Colour colour) {
    statusbar1.ForeColor = colour;
    statusbar1.Caption = text.left(60);
}

void SetErrorCodes(Label& statusbar2, const QString& text, Colour colour) {
    statusbar2.ForeColor = colour;
    statusbar2.Caption = text;
}

const QStringList& statusCodeLegend() {
    static const QStringList rows{QStringLiteral("c51 - CCDAutopilot Data File - open/write error"),
                                  QString(),
                                  QStringLiteral("a31 - Kiv_Nubilo data too old"),
                                  QStringLiteral("a41 - Weather Station data too old"),
                                  QStringLiteral("a42 - Weather Station data file not present"),
                                  QString(),
                                  QStringLiteral("d11 - USER Data File Path does not exist"),
                                  QStringLiteral("d12 - USER Data File Path could not be created"),
                                  QStringLiteral("d13 - USER Data cannot be written to data file"),
                                  QString(),
                                  QStringLiteral("i21 - Image File Path does not exist"),
                                  QStringLiteral("i22 - Image File Path could not be created"),
                                  QStringLiteral("i23 - Image Files cannot be created"),
                                  QStringLiteral("i24 - Image Files FreeImage problem")};
    return rows;
}

} // namespace skyhold
