// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/settings_text.h"

#include <QIODevice>
#include <QStringList>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace skyhold {

namespace {

// What a backslash makes of the letter after it.
constexpr std::array<std::pair<char, char>, 11> kEscapes{{{'a', '\a'},
                                                          {'b', '\b'},
                                                          {'f', '\f'},
                                                          {'n', '\n'},
                                                          {'r', '\r'},
                                                          {'t', '\t'},
                                                          {'v', '\v'},
                                                          {'"', '"'},
                                                          {'?', '?'},
                                                          {'\'', '\''},
                                                          {'\\', '\\'}}};

bool isDigit(char c, int base) {
    return base == 8 ? c >= '0' && c <= '7' : std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

// The character with the number that begins at `at`, which is moved past it.
QChar numbered(QByteArrayView bytes, qsizetype& at, int base) {
    unsigned code = 0;
    for (; at < bytes.size() && isDigit(bytes[at], base); ++at)
        code = code * static_cast<unsigned>(base) + QByteArray(1, bytes[at]).toUInt(nullptr, 16);
    return QChar(static_cast<char16_t>(code));
}

// The character or none that an escape stands for; `at` is behind its backslash.
QString escaped(QByteArrayView bytes, qsizetype& at) {
    if (at == bytes.size())
        return {};
    if (isDigit(bytes[at], 8))
        return numbered(bytes, at, 8);
    const char c = bytes[at++];
    if (c == 'x' && at < bytes.size() && isDigit(bytes[at], 16))
        return numbered(bytes, at, 16);
    const auto known = std::ranges::find(kEscapes, c, &std::pair<char, char>::first);
    return known != kEscapes.end() ? QString(QLatin1Char(known->second)) : QString();
}

// The pieces of a value between its commas, each without quotes, escapes and outer blanks.
QStringList pieces(QByteArrayView bytes) {
    QStringList found;
    QString piece;
    qsizetype fixed = 0; // so much of the piece has no blanks that go
    bool quoted = false; // some of it
    bool inQuotes = false;
    qsizetype at = 0;
    const auto skipBlanks = [&] {
        while (at < bytes.size() && (bytes[at] == ' ' || bytes[at] == '\t'))
            ++at;
        fixed = piece.size();
    };
    const auto end = [&] {
        while (!quoted && piece.size() > fixed && (piece.back() == u' ' || piece.back() == u'\t'))
            piece.chop(1);
        found.append(std::exchange(piece, {}));
        quoted = false;
    };
    skipBlanks();
    while (at < bytes.size()) {
        const char c = bytes[at];
        if (c == '\\') {
            piece += escaped(bytes, ++at);
            fixed = piece.size();
        } else if (c == '"') {
            ++at;
            quoted = true;
            inQuotes = !inQuotes;
            if (!inQuotes)
                skipBlanks();
        } else if (c == ',' && !inQuotes) {
            end();
            ++at;
            skipBlanks();
        } else {
            const qsizetype begin = at++;
            while (at < bytes.size() && bytes[at] != '\\' && bytes[at] != '"' && bytes[at] != ',')
                ++at;
            piece += QString::fromUtf8(bytes.sliced(begin, at - begin));
        }
    }
    end();
    return found;
}

// The text of a value; nothing when it says that it is something else.
std::optional<QString> textOf(QByteArrayView value) {
    QStringList found = pieces(value);
    for (QString& piece : found) {
        const auto inside = [&piece](const QString& begin) {
            return piece.sliced(begin.size()).chopped(1);
        };
        const QString bytes = QStringLiteral("@ByteArray(");
        const QString string = QStringLiteral("@String(");
        if (piece.startsWith(QStringLiteral("@@"))) {
            piece.remove(0, 1);
        } else if (piece.startsWith(u'@') && piece.endsWith(u')')) {
            if (piece.startsWith(bytes))
                piece = QString::fromUtf8(inside(bytes).toLatin1());
            else if (piece.startsWith(string))
                piece = inside(string);
            else
                return std::nullopt;
        }
    }
    // A comma without quotes stands for itself.
    return found.join(u',');
}

QString nameOf(QByteArrayView bytes) {
    QString name;
    for (qsizetype at = 0; at < bytes.size();) {
        const char c = bytes[at++];
        if (c == '%') {
            const bool wide = at < bytes.size() && bytes[at] == 'U';
            const qsizetype digits = wide ? 4 : 2;
            const qsizetype begin = at + (wide ? 1 : 0);
            bool isNumber = false;
            const ushort code = begin + digits > bytes.size()
                                    ? ushort{0}
                                    : bytes.sliced(begin, digits).toUShort(&isNumber, 16);
            if (isNumber) {
                name += QChar(code);
                at = begin + digits;
                continue;
            }
        }
        name += c == '\\' ? QChar(u'/') : QChar(QLatin1Char(c));
    }
    return name;
}

// "" for the section of keys that have none.
QString sectionOf(QByteArrayView line) {
    const qsizetype end = line.indexOf(']');
    const QByteArrayView name = line.sliced(1, (end < 0 ? line.size() : end) - 1).trimmed();
    if (name.compare("general", Qt::CaseInsensitive) == 0)
        return {};
    if (name.compare("%general", Qt::CaseInsensitive) == 0)
        return QString::fromLatin1(name.sliced(1)) + u'/';
    return nameOf(name) + u'/';
}

// Where the key ends and its value begins, -1 for a line without one, and where its comment does.
std::pair<qsizetype, qsizetype> partsOf(QByteArrayView line) {
    bool inQuotes = false;
    qsizetype equals = -1;
    for (qsizetype at = 0; at < line.size(); ++at) {
        const char c = line[at];
        if (c == '"')
            inQuotes = !inQuotes;
        else if (c == '\\')
            ++at;
        else if (c == '=' && !inQuotes && equals < 0)
            equals = at;
        else if (c == ';' && !inQuotes)
            return {equals, at};
    }
    return {equals, line.size()};
}

QByteArrayView withoutBlanksBefore(QByteArrayView line) {
    while (line.startsWith(' ') || line.startsWith('\t'))
        line = line.sliced(1);
    return line;
}

QByteArray hex(char16_t code) {
    return QByteArray::number(code, 16);
}

QByteArray nameBytes(const QString& name) {
    QByteArray bytes;
    for (const QChar c : name) {
        const char16_t code = c.unicode();
        if (code < 0x80 && (c.isLetterOrNumber() || c == u'_' || c == u'-' || c == u'.'))
            bytes += static_cast<char>(code);
        else if (c == u'/')
            bytes += '\\';
        else if (code <= 0xFF)
            bytes += '%' + hex(code).toUpper().rightJustified(2, '0');
        else
            bytes += "%U" + hex(code).toUpper().rightJustified(4, '0');
    }
    return bytes;
}

QByteArray sectionBytes(const QString& section) {
    if (section.isEmpty())
        return "[General]\n";
    const QByteArray name = nameBytes(section);
    return (name.compare("general", Qt::CaseInsensitive) == 0 ? "[%" : "[") + name + "]\n";
}

QByteArray valueBytes(const QString& value) {
    const bool zero = value.contains(u'\0');
    QString text = value;
    if (zero)
        text = QStringLiteral("@String(") + value + u')';
    else if (value.startsWith(u'@'))
        text = u'@' + value;
    QByteArray bytes;
    bool numberBefore = false; // a digit would be taken for one of it
    for (const char c : text.toUtf8()) {
        const auto known = std::ranges::find(kEscapes, c, &std::pair<char, char>::second);
        const bool digitOfNumber = numberBefore && isDigit(c, 16);
        numberBefore = false;
        if (c != '?' && c != '\'' && known != kEscapes.end()) {
            bytes.append('\\').append(known->first);
        } else if (digitOfNumber || (c >= 0 && c < ' ')) {
            bytes += "\\x" + hex(static_cast<char16_t>(c));
            numberBefore = true;
        } else {
            bytes += c;
        }
    }
    const bool needsQuotes =
        std::ranges::any_of(bytes, [](char c) { return c == ';' || c == ',' || c == '='; });
    return needsQuotes || bytes.startsWith(' ') || bytes.endsWith(' ') ? '"' + bytes + '"' : bytes;
}

bool readFrom(QIODevice& device, QSettings::SettingsMap& map) {
    for (const StoredText& stored : settingsOf(device.readAll()))
        map.insert(stored.name, stored.text);
    return true;
}

bool writeTo(QIODevice& device, const QSettings::SettingsMap& map) {
    QMap<QString, QString> texts;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        texts.insert(entry.key(), entry.value().toString());
    const QByteArray bytes = settingsBytes(texts);
    return device.write(bytes) == bytes.size();
}

} // namespace

std::vector<StoredText> settingsOf(QByteArrayView bytes) {
    std::vector<StoredText> found;
    QString section;
    if (bytes.startsWith("\xef\xbb\xbf"))
        bytes = bytes.sliced(3);
    for (qsizetype begin = 0; begin < bytes.size();) {
        qsizetype end = begin;
        while (end < bytes.size() && bytes[end] != '\n' && bytes[end] != '\r')
            ++end;
        const QByteArrayView line = withoutBlanksBefore(bytes.sliced(begin, end - begin));
        begin = end + 1;
        if (line.startsWith('[')) {
            section = sectionOf(line);
            continue;
        }
        const auto [equals, comment] = partsOf(line);
        if (equals <= 0)
            continue;
        const std::optional<QString> text = textOf(line.sliced(equals + 1, comment - equals - 1));
        if (text)
            found.push_back({section + nameOf(line.first(equals).trimmed()), *text});
    }
    return found;
}

QByteArray settingsBytes(const QMap<QString, QString>& texts) {
    QMap<QString, QByteArray> sections; // the lines of each
    for (auto entry = texts.begin(); entry != texts.end(); ++entry) {
        const qsizetype slash = entry.key().indexOf(u'/');
        if (entry.key() != kEndMark)
            sections[entry.key().left(std::max<qsizetype>(slash, 0))] +=
                nameBytes(entry.key().sliced(slash + 1)) + '=' + valueBytes(entry.value()) + '\n';
    }
    QByteArray bytes;
    for (auto section = sections.begin(); section != sections.end(); ++section)
        bytes += sectionBytes(section.key()) + section.value() + '\n';
    return bytes + sectionBytes(kEndMark.section(u'/', 0, 0)) +
           nameBytes(kEndMark.section(u'/', 1)) + "=1\n";
}

QSettings::Format settingsFormat() {
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("ini"), readFrom, writeTo, Qt::CaseSensitive);
    return format;
}

} // namespace skyhold
