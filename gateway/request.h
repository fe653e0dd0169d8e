// SPDX-License-Identifier: GPL-3.0-or-later
// A request and its answer as plain values.
#pragma once

#include <QByteArray>
#include <QList>

#include <functional>
#include <optional>
#include <utility>
#include <variant>

namespace skyhold {

// In their order; a name may come more than once, and then its first value counts.
using Parameters = QList<std::pair<QByteArray, QByteArray>>;

struct Request {
    QByteArray method = {}; // "GET", "PUT"; a HEAD is shown as a GET
    QByteArray path = {};   // decoded
    Parameters query = {};
    QByteArray body = {};
    QByteArray contentType = {};
    QByteArray host = {};   // the header
    QByteArray origin = {}; // the header; empty where a browser does not send one
    QByteArray known = {};  // the header If-None-Match: the tag of what the client has
    QByteArray client = {}; // the address of the peer
    bool local = false;     // the peer is on this computer
};

struct Answer {
    int status = 200;
    const char* type = "application/json"; // of static storage
    QByteArray body = {};
    QByteArray allow = {}; // the methods, of an answer 405
    QByteArray tag = {};   // a client may keep it, and asks each time whether it is still this
};

Answer textAnswer(int status, const QByteArray& text);
Answer jsonAnswer(const QByteArray& body);

// An answer that comes later: called once with where it is to go, which any thread may call.
using Reply = std::function<void(Answer)>;
using LaterAnswer = std::function<void(Reply)>;
// The request follows the events.
struct EventStream {};

using Handling = std::variant<Answer, LaterAnswer, EventStream>;

// Reads "a=1&b=2" with its escapes ("+" is a blank). Nothing where an escape is no escape.
std::optional<Parameters> parseForm(const QByteArray& text);

// The value of a name; `anyCase`: however it is written.
std::optional<QByteArray> parameter(const Parameters& all, const char* name, bool anyCase);

} // namespace skyhold
