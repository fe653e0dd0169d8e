// SPDX-License-Identifier: GPL-3.0-or-later
// The messages of an INDI server, from the bytes of its connection.
#pragma once

#include <QByteArray>
#include <QString>
#include <QXmlStreamReader>

#include <functional>
#include <vector>

namespace skyhold {

struct IndiElement {
    QString name;
    QString label; // where it is defined
    QString text;  // trimmed; a number of degrees, minutes and seconds as a plain one
};

struct IndiMessage {
    enum class Kind { Define, Set, Delete };
    Kind kind = Kind::Set;
    QString type; // "Number", "Text", "Switch", "Light"; empty for a deletion
    QString device;
    QString property; // empty for the deletion of a whole device
    QString state;    // "Idle", "Ok", "Busy", "Alert"; empty when it stays as it was
    std::vector<IndiElement> elements;
};

class IndiReader {
  public:
    explicit IndiReader(std::function<void(const IndiMessage&)> take);

    // False when the bytes are no such messages, or one of them is larger than the limit; nothing
    // more is read then.
    bool read(const QByteArray& bytes);
    void reset();

    // No message of a driver that is not a picture is near it.
    static constexpr qsizetype kMessageLimit = 256 * 1024;
    static constexpr std::size_t kElementLimit = 500;

  private:
    bool begin();
    bool end();

    std::function<void(const IndiMessage&)> take_;
    QXmlStreamReader xml_;
    int depth_ = 0;
    qsizetype sinceMessage_ = 0; // bytes since the last whole message
    bool inMessage_ = false;     // one that is of interest
    bool inElement_ = false;
    IndiMessage message_;
};

} // namespace skyhold
