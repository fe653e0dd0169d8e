// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/settings_copy.h"

#include "platform/files.h"
#include "platform/settings_text.h"

#include <QSaveFile>

#include <algorithm>
#include <sys/stat.h>

namespace skyhold {

namespace {

// A longer file is not taken for settings.
constexpr std::int64_t kMostBytes = 16'000'000;

using Texts = std::vector<StoredText>;

// Six letters after the last point would make it a leftover of an unfinished save.
QString copyOf(const QString& path) {
    return path + QStringLiteral(".whole");
}

Texts::const_iterator find(const Texts& texts, const QString& name) {
    return std::ranges::find(texts, name, &StoredText::name);
}

bool hasEndMark(const Texts& texts) {
    const auto mark = find(texts, kEndMark);
    return mark != texts.end() && !mark->text.isEmpty();
}

// Replaces the file at `path` by one with these bytes, in one step.
bool replace(const QString& path, const QByteArray& bytes) {
    // A password lies in it: the owner's alone from its first byte.
    const mode_t before = ::umask(S_IRWXG | S_IRWXO);
    QSaveFile file(path);
    const bool done = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    const bool replaced = done && file.commit();
    ::umask(before);
    return replaced;
}

// A last line without line end that says nothing, or less than the copy for its key. Editors may
// leave out the last line end.
bool isPiece(QByteArrayView line, const Texts& written, const Texts& copied) {
    if (line.isEmpty() || line.startsWith(';'))
        return false;
    if (line.startsWith('['))
        return !line.contains(']');
    if (!line.contains('='))
        return true;
    if (written.empty())
        return false;
    const StoredText& last = written.back();
    const auto whole = find(copied, last.name);
    return whole != copied.end() && whole->text != last.text && whole->text.startsWith(last.text);
}

// The keys are the first ones of the copy, which had more and the mark behind them.
bool isBeginning(const Texts& written, const Texts& copied) {
    return hasEndMark(copied) && written.size() < copied.size() &&
           std::equal(written.begin(), written.end(), copied.begin(),
                      [](const StoredText& one, const StoredText& other) {
                          return one.name == other.name;
                      });
}

// The keys of the copy behind the last one that the file has, but for those that it has.
Texts behind(const Texts& kept, const Texts& copied) {
    auto next = copied.begin();
    for (auto last = kept.rbegin(); last != kept.rend() && next == copied.begin(); ++last) {
        if (const auto same = find(copied, last->name); same != copied.end())
            next = same + 1;
    }
    Texts lost;
    std::copy_if(next, copied.end(), std::back_inserter(lost), [&](const StoredText& text) {
        return text.name != kEndMark && find(kept, text.name) == kept.end();
    });
    return lost;
}

} // namespace

bool writeWholeCopy(const QString& path) {
    const FileContents found = readFile(path, kMostBytes);
    return found.result == ReadResult::Ok && replace(copyOf(path), found.bytes);
}

QStringList completeCutSettings(const QString& path) {
    const FileContents found = readFile(path, kMostBytes);
    const FileContents copy = readFile(copyOf(path), kMostBytes);
    if (found.result != ReadResult::Ok || copy.result != ReadResult::Ok)
        return {};
    const qsizetype zero = found.bytes.indexOf('\0');
    const QByteArray bytes = zero < 0 ? found.bytes : found.bytes.left(zero);
    const Texts written = settingsOf(bytes);
    const Texts copied = settingsOf(copy.bytes);
    const qsizetype lastLine = bytes.lastIndexOf('\n') + 1;
    const QByteArrayView last = QByteArrayView(bytes).sliced(lastLine);
    const bool cut =
        zero >= 0 ||
        (!hasEndMark(written) && (isPiece(last, written, copied) || isBeginning(written, copied)));
    if (!cut)
        return {};
    const Texts kept = settingsOf(bytes.left(lastLine));
    const Texts lost = behind(kept, copied);
    QMap<QString, QString> texts;
    QStringList names;
    for (const StoredText& text : kept)
        texts.insert(text.name, text.text);
    for (const StoredText& text : lost) {
        texts.insert(text.name, text.text);
        names.append(text.name);
    }
    return replace(path, settingsBytes(texts)) ? names : QStringList();
}

} // namespace skyhold
