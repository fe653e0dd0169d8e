// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/text_encoding.h"

#include <QStringDecoder>
#include <QStringEncoder>

#include <algorithm>

namespace skyhold {

namespace {

// Qt has it from ICU; where it was built without, Latin-1 takes its place.
constexpr char kAnsi[] = "windows-1252";
constexpr char kSubstitute = 0x1A; // of ICU, for what an encoding lacks

} // namespace

QString decodeText(const QByteArray& bytes) {
    // A decoder that is fed piece by piece would wait for the rest of a sequence that the text
    // breaks off, and find no error in it.
    if (bytes.isValidUtf8())
        return QStringDecoder(QStringDecoder::Utf8)(bytes);
    // Windows-1252 leaves five bytes undefined; they stand for the control characters of Latin-1.
    QStringDecoder ansi(kAnsi, QStringDecoder::Flag::Stateless);
    return ansi.isValid() ? QString(ansi(bytes)) : QString::fromLatin1(bytes);
}

QByteArray encodeAnsi(QStringView text) {
    // Most texts are plain ASCII, and opening a converter costs more than converting.
    const auto plain = [](QChar c) {
        return c.unicode() < 0x80;
    };
    if (std::all_of(text.cbegin(), text.cend(), plain))
        return text.toLatin1();
    QStringEncoder ansi(kAnsi, QStringEncoder::Flag::Stateless);
    if (!ansi.isValid())
        return text.toLatin1();
    return QByteArray(ansi(text)).replace(kSubstitute, '?');
}

} // namespace skyhold
