#include "platform/text_encoding.h"

#include <QStringDecoder>

#include <algorithm>

#include <iconv.h>

namespace skyhold {

namespace {

class Converter {
  public:
    Converter(const char* to, const char* from)
        : handle_(iconv_open(to, from)) {}
    ~Converter() {
        if (valid())
            iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // The error value of iconv_open is defined as this cast.
    bool valid() const {
        return handle_ != reinterpret_cast<iconv_t>(-1); // NOLINT(performance-no-int-to-ptr)
    }

    // Converts as much as possible from `in`; `in` is moved past what was converted.
    bool convert(char** in, std::size_t* inLeft, char** out, std::size_t* outLeft) {
        return iconv(handle_, in, inLeft, out, outLeft) != static_cast<std::size_t>(-1);
    }

  private:
    iconv_t handle_;
};

} // namespace

QString decodeText(const QByteArray& bytes) {
    // A decoder that is fed piece by piece would wait for the rest of a sequence that the text
    // breaks off, and find no error in it.
    if (bytes.isValidUtf8())
        return QStringDecoder(QStringDecoder::Utf8)(bytes);

    // Windows-1252 leaves five bytes undefined; they stand for the control characters of Latin-1.
    Converter ansi("UTF-16LE", "WINDOWS-1252");
    QString text = QString::fromLatin1(bytes);
    if (!ansi.valid())
        return text;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte < 0x80 || byte > 0x9F)
            continue;
        char in = bytes[i];
        char16_t out = byte;
        char* inAt = &in;
        char* outAt = reinterpret_cast<char*>(&out);
        std::size_t inLeft = 1;
        std::size_t outLeft = sizeof out;
        if (ansi.convert(&inAt, &inLeft, &outAt, &outLeft))
            text[i] = QChar(out);
    }
    return text;
}

QByteArray encodeAnsi(QStringView text) {
    // Most texts are plain ASCII, and opening a converter costs more than converting.
    const auto plain = [](QChar c) {
        return c.unicode() < 0x80;
    };
    if (std::all_of(text.cbegin(), text.cend(), plain))
        return text.toLatin1();

    Converter ansi("WINDOWS-1252", "UTF-16LE");
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar c : text) {
        char16_t in = c.unicode();
        char out = '?';
        if (plain(c)) {
            out = static_cast<char>(in);
        } else if (ansi.valid()) {
            char* inAt = reinterpret_cast<char*>(&in);
            char* outAt = &out;
            std::size_t inLeft = sizeof in;
            std::size_t outLeft = 1;
            if (!ansi.convert(&inAt, &inLeft, &outAt, &outLeft))
                out = '?';
        }
        bytes.append(out);
    }
    return bytes;
}

} // namespace skyhold
