#include "platform/settings_copy.h"

#include "platform/files.h"

#include <QList>
#include <QSaveFile>
#include <QSet>

#include <algorithm>
#include <sys/stat.h>

namespace skyhold {

namespace {

// Six letters after the last point would make it a leftover of an unfinished save.
QString copyOf(const QString& path) {
    return path + QStringLiteral(".whole");
}

struct KeyLine {
    QByteArray section; // with its brackets
    QByteArray line;

    QByteArray name() const { return section + line.left(line.indexOf('=')); }
};

QList<KeyLine> keyLines(const QByteArray& text) {
    QList<KeyLine> keys;
    QByteArray section;
    for (const QByteArray& line : text.split('\n')) {
        if (line.startsWith('['))
            section = line;
        else if (line.contains('='))
            keys.append({section, line});
    }
    return keys;
}

// The last line is a piece of one: it says nothing, or less than the copy's line for its key.
bool isTorn(const QByteArray& last, const QList<KeyLine>& written, const QList<KeyLine>& copied) {
    if (last.isEmpty() || last.startsWith('['))
        return !last.isEmpty() && !last.endsWith(']');
    if (!last.contains('='))
        return true;
    return std::ranges::any_of(copied, [&](const KeyLine& key) {
        return key.name() == written.last().name() && key.line != last && key.line.startsWith(last);
    });
}

// Without what follows a zero byte, as a crashed file system leaves them, and without a torn line.
QByteArray wholeLines(const QByteArray& text, const QList<KeyLine>& copied) {
    const qsizetype zero = text.indexOf('\0');
    const QByteArray written = zero < 0 ? text : text.left(zero);
    const qsizetype begin = written.lastIndexOf('\n') + 1;
    const QByteArray last = written.mid(begin);
    const bool cut = (zero >= 0 && !last.isEmpty()) || isTorn(last, keyLines(written), copied);
    return cut ? written.left(begin) : written;
}

QByteArray completed(QByteArray text, const QList<KeyLine>& copied) {
    QSet<QByteArray> present;
    for (const KeyLine& key : keyLines(text))
        present.insert(key.name());
    if (!text.isEmpty() && !text.endsWith('\n'))
        text += '\n';
    QByteArray section;
    for (const KeyLine& key : copied) {
        if (present.contains(key.name()))
            continue;
        if (key.section != section)
            text += key.section + '\n';
        section = key.section;
        text += key.line + '\n';
    }
    return text;
}

} // namespace

bool replaceSettings(const QString& path, const QByteArray& bytes) {
    // A password lies in it: the owner's alone from its first byte.
    const mode_t before = ::umask(S_IRWXG | S_IRWXO);
    QSaveFile file(path);
    const bool done = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    const bool replaced = done && file.commit();
    ::umask(before);
    return replaced;
}

bool keepWholeCopy(const QString& path) {
    const FileContents found = readFile(path, kMostSettingsBytes);
    return found.result == ReadResult::Ok && replaceSettings(copyOf(path), found.bytes);
}

bool completeCutSettings(const QString& path) {
    const FileContents found = readFile(path, kMostSettingsBytes);
    const FileContents copy = readFile(copyOf(path), kMostSettingsBytes);
    if (found.result != ReadResult::Ok || copy.result != ReadResult::Ok)
        return false;
    const QList<KeyLine> copied = keyLines(copy.bytes);
    if (copied.isEmpty())
        return false;
    const QByteArray whole = wholeLines(found.bytes, copied);
    const bool hasLast = std::ranges::any_of(
        keyLines(whole), [&](const KeyLine& key) { return key.name() == copied.last().name(); });
    return (whole != found.bytes || !hasLast) && replaceSettings(path, completed(whole, copied));
}

} // namespace skyhold
