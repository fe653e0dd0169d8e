// SPDX-License-Identifier: GPL-3.0-or-later
#include "datafiles/station_table.h"

namespace skyhold {

namespace {

bool isBlank(QChar c) {
    return c == u' ' || c == u'\t';
}

bool endsField(QChar c) {
    return c == u',' || c == u'\r' || c == u'\n';
}

class FieldReader {
  public:
    explicit FieldReader(QStringView text)
        : text_(text) {}

    bool atEnd() const { return at_ >= text_.size(); }
    // A quoted field was not closed: all that follows is in it.
    bool openQuote() const { return openQuote_; }

    QStringView next() {
        while (!atEnd() && isBlank(text_[at_]))
            ++at_;
        const bool quoted = !atEnd() && text_[at_] == u'"';
        QStringView field;
        if (quoted) {
            const qsizetype close = text_.indexOf(u'"', at_ + 1);
            openQuote_ = close < 0;
            const qsizetype end = openQuote_ ? text_.size() : close;
            field = text_.sliced(at_ + 1, end - at_ - 1);
            at_ = openQuote_ ? end : end + 1;
        }
        // Behind a closing quote only the separator matters.
        const qsizetype start = at_;
        while (!atEnd() && !endsField(text_[at_]))
            ++at_;
        if (!quoted) {
            qsizetype end = at_;
            while (end > start && isBlank(text_[end - 1]))
                --end;
            field = text_.sliced(start, end - start);
        }
        skipSeparator();
        return field;
    }

  private:
    void skipSeparator() {
        if (atEnd())
            return;
        const bool crLf = text_[at_] == u'\r' && at_ + 1 < text_.size() && text_[at_ + 1] == u'\n';
        at_ += crLf ? 2 : 1;
    }

    QStringView text_;
    qsizetype at_ = 0;
    bool openQuote_ = false;
};

} // namespace

StationTable ParseCsvTable(QStringView text) {
    StationTable table;
    FieldReader fields(text);
    while (!fields.atEnd()) {
        table.addRow();
        bool anyText = false;
        for (int cell = 1; cell <= StationTable::kCells; ++cell) {
            if (fields.atEnd()) {
                // Empty lines at the end of a file are not a record.
                if (anyText)
                    table.setCutShort();
                if (fields.openQuote())
                    table.setOpenQuote();
                return table;
            }
            const QStringView field = fields.next();
            anyText = anyText || !field.isEmpty();
            table.addCell(field);
        }
    }
    if (fields.openQuote())
        table.setOpenQuote();
    return table;
}

} // namespace skyhold
