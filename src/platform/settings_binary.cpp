#include "platform/settings_binary.h"

#include "platform/files.h"
#include "platform/settings_copy.h"

#include <algorithm>
#include <array>

namespace skyhold {

namespace {

// The digits of an escape in a base of 8 or 16 from `at` on, which is moved past them.
int escapedCharacter(QByteArrayView bytes, qsizetype& at, int base) {
    int code = 0;
    for (; at < bytes.size(); ++at) {
        bool isDigit = false;
        const int digit = QByteArray(1, bytes[at]).toInt(&isDigit, base);
        if (!isDigit)
            break;
        code = (code * base + digit) & 0xFFFF;
    }
    return code;
}

// Without quotes, and with escaped characters in place of their escapes.
QByteArray plainText(QByteArrayView bytes) {
    QByteArray plain;
    plain.reserve(bytes.size());
    for (qsizetype i = 0; i < bytes.size();) {
        const char c = bytes[i++];
        if (c == '"')
            continue;
        if (c != '\\' || i == bytes.size()) {
            plain += c;
            continue;
        }
        if (bytes[i] == 'x') {
            ++i;
            plain += static_cast<char>(std::min(escapedCharacter(bytes, i, 16), 0x7F));
        } else if (bytes[i] >= '0' && bytes[i] <= '7') {
            plain += static_cast<char>(std::min(escapedCharacter(bytes, i, 8), 0x7F));
        } else if (bytes[i] == '\n' || bytes[i] == '\r') {
            ++i; // the line goes on
        } else {
            plain += bytes[i++];
        }
    }
    return plain;
}

// Whether a value, or a part of a list, begins as binary ones do.
bool holdsBinaryValue(QByteArrayView bytes) {
    const QByteArray plain = plainText(bytes);
    for (const QByteArrayView mark : {QByteArrayView("@Variant("), QByteArrayView("@DateTime(")}) {
        for (qsizetype at = plain.indexOf(mark); at >= 0; at = plain.indexOf(mark, at + 1)) {
            qsizetype before = at - 1;
            while (before >= 0 && (plain[before] == ' ' || plain[before] == '\t' ||
                                   plain[before] == '\r' || plain[before] == '\n'))
                --before;
            if (before < 0 || plain[before] == '=' || plain[before] == ',')
                return true;
        }
    }
    return false;
}

template <class Unwanted>
QByteArray linesWithout(const QByteArray& bytes, Unwanted unwanted) {
    QByteArray kept;
    kept.reserve(bytes.size());
    for (qsizetype begin = 0; begin < bytes.size();) {
        const qsizetype lineEnd = bytes.indexOf('\n', begin);
        const qsizetype end = lineEnd < 0 ? bytes.size() : lineEnd + 1;
        const QByteArrayView line = QByteArrayView(bytes).sliced(begin, end - begin);
        if (!unwanted(line))
            kept += line;
        begin = end;
    }
    return kept;
}

} // namespace

bool removeBinaryValues(const QString& path) {
    const FileContents file = readFile(path, kMostSettingsBytes);
    if (file.result != ReadResult::Ok || !holdsBinaryValue(file.bytes))
        return false;
    QByteArray kept = linesWithout(file.bytes, holdsBinaryValue);
    // One that is spread over lines goes with every line that may be a piece of it.
    if (holdsBinaryValue(kept))
        kept = linesWithout(kept, [](QByteArrayView line) {
            return line.contains('@') || line.contains('\\') || line.count('"') % 2 != 0;
        });
    return replaceSettings(path, kept);
}

} // namespace skyhold
