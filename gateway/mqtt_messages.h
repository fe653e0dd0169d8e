// SPDX-License-Identifier: GPL-3.0-or-later
// The state as messages: what is published, and for how long it may be believed.
#pragma once

#include "gateway/state.h"
#include "mqtt/broker.h"

#include <QHash>
#include <QList>

#include <span>

namespace skyhold {

// A reading that has a topic of its own, PREFIX/readings/KEY.
struct ReadingRow {
    const char* key; // as in the document
    const char* title;
    const char* deviceClass; // of Home Assistant; empty: it has none that fits
    const char* icon;        // where there is no class; empty: the usual one
    bool averaged;           // whether a mean of it says something
};

std::span<const ReadingRow> readingRows();

// "PREFIX/safe" (ON or OFF) first, then "state", "reason" and the readings. What says safe, and
// every reading, expires with the document that it is from; what says unsafe stays.
QList<MqttMessage> stateMessages(const QString& prefix, const View& view);

// Why it is as it is, in a line of at most 250 characters.
QString reasonText(const View& view);

// The messages by which Home Assistant finds the site as one device. The sensors for readings are
// only among them once a document has said their units.
QList<MqttMessage> discoveryMessages(const QString& prefix, const QString& discoveryPrefix,
                                     const QJsonObject& document, int expirySeconds);

// What is to be published when, without the network.
class MqttFeed {
  public:
    static constexpr std::int64_t kRepeatMs = 5000; // while nothing is heard

    MqttFeed(QString prefix, QString discoveryPrefix)
        : prefix_(std::move(prefix))
        , discoveryPrefix_(std::move(discoveryPrefix)) {}

    // Nothing while all that holds is published already.
    QList<MqttMessage> due(const View& view, std::int64_t nowMs);
    // The broker may have nothing of it any more.
    void forget();
    // Home Assistant has started and asks who is there.
    void announce() { announced_.clear(); }

  private:
    QString prefix_;
    QString discoveryPrefix_; // empty: nobody is to find it
    std::shared_ptr<const Snapshot> published_;
    bool live_ = false;
    bool safe_ = false;
    int expirySeconds_ = 92; // of the last document; of the longest cycle until there is one
    std::int64_t atMs_ = 0;
    QHash<QString, QByteArray> announced_; // by topic
};

} // namespace skyhold
