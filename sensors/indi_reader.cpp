// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/indi_reader.h"

#include "sensors/levels.h"

#include <QRegularExpression>

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// "-12:30:36" is -12.51.
QString plainOf(const QString& text) {
    const QStringList pieces = text.split(QRegularExpression(u"[:; ]+"_s));
    if (pieces.size() < 2 || pieces.size() > 3)
        return text;
    double sum = 0;
    double part = 1;
    for (const QString& piece : pieces) {
        const std::optional<double> number = plainNumber(piece);
        if (!number || (part < 1 && *number < 0))
            return text;
        sum += std::abs(*number) * part;
        part /= 60;
    }
    return QString::number(text.startsWith(u'-') ? -sum : sum, 'g', 12);
}

} // namespace

IndiReader::IndiReader(std::function<void(const IndiMessage&)> take)
    : take_(std::move(take)) {
    reset();
}

void IndiReader::reset() {
    xml_.clear();
    // The messages follow one another without a root.
    xml_.addData("<stream>");
    depth_ = 0;
    sinceMessage_ = 0;
    inMessage_ = inElement_ = false;
}

bool IndiReader::read(const QByteArray& bytes) {
    sinceMessage_ += bytes.size();
    xml_.addData(bytes);
    while (!xml_.atEnd()) {
        switch (xml_.readNext()) {
        case QXmlStreamReader::StartElement:
            if (!begin())
                return false;
            break;
        case QXmlStreamReader::EndElement:
            if (!end())
                return false;
            break;
        case QXmlStreamReader::Characters:
            if (inElement_)
                message_.elements.back().text += xml_.text();
            else if (depth_ == 1 && !xml_.isWhitespace())
                return false;
            break;
        case QXmlStreamReader::DTD:
        case QXmlStreamReader::EntityReference:
            return false;
        default:
            break;
        }
    }
    const bool waits = xml_.error() == QXmlStreamReader::PrematureEndOfDocumentError;
    return waits && sinceMessage_ <= kMessageLimit;
}

bool IndiReader::begin() {
    ++depth_;
    const QStringView name = xml_.name();
    const auto attribute = [this](const char16_t* key) {
        return xml_.attributes().value(QString::fromUtf16(key)).toString();
    };
    if (depth_ == 2) {
        const bool defines = name.startsWith(u"def");
        const bool vector = (defines || name.startsWith(u"set")) && name.endsWith(u"Vector");
        inMessage_ = vector || name == u"delProperty";
        message_ = {.kind = !vector   ? IndiMessage::Kind::Delete
                            : defines ? IndiMessage::Kind::Define
                                      : IndiMessage::Kind::Set,
                    .type = vector ? name.sliced(3, name.size() - 9).toString() : QString(),
                    .device = attribute(u"device"),
                    .property = attribute(u"name"),
                    .state = attribute(u"state"),
                    .elements = {}};
    } else if (depth_ == 3 && inMessage_) {
        if (message_.elements.size() >= kElementLimit)
            return false;
        message_.elements.push_back({attribute(u"name"), attribute(u"label"), {}});
        inElement_ = true;
    }
    return depth_ <= 4;
}

bool IndiReader::end() {
    --depth_;
    if (depth_ == 2 && inElement_) {
        inElement_ = false;
        QString& text = message_.elements.back().text;
        text = text.trimmed();
        if (message_.type == u"Number")
            text = plainOf(text);
    } else if (depth_ == 1) {
        sinceMessage_ = 0;
        if (std::exchange(inMessage_, false))
            take_(message_);
    }
    return depth_ >= 1;
}

} // namespace skyhold
