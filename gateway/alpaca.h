// SPDX-License-Identifier: GPL-3.0-or-later
// The Alpaca device API, version 1: devices and members are rows of tables.
#pragma once

#include "gateway/request.h"
#include "gateway/state.h"

#include <atomic>
#include <span>

namespace skyhold {

enum class AlpacaError : int {
    None = 0,
    NotImplemented = 0x400,
    InvalidValue = 0x401,
    InvalidOperation = 0x40B,
    ActionNotImplemented = 0x40C,
    Driver = 0x500,
};

// What a member answers: JSON, of a void method nothing.
struct AlpacaResult {
    QByteArray value = {};
    AlpacaError error = AlpacaError::None;
    QString message = {};
};
AlpacaResult alpacaError(AlpacaError error, const QString& message);
AlpacaResult alpacaNumber(double value);
AlpacaResult alpacaBool(bool value);
AlpacaResult alpacaText(const QString& text);
QByteArray jsonText(const QString& text); // with its quotes

using AlpacaDone = std::function<void(AlpacaResult)>;
using AlpacaLater = std::function<void(AlpacaDone)>;
using AlpacaOutcome = std::variant<AlpacaResult, AlpacaLater>;

// Which clients have connected to which device. Of the one that has been silent for longest is
// forgotten first, when there are too many.
class AlpacaClients {
  public:
    void set(const QByteArray& client, bool connected);
    bool has(const QByteArray& client) const { return clients_.contains(client); }

  private:
    static constexpr qsizetype kMost = 256;
    QList<QByteArray> clients_;
};

// Moves the roof's switch; the text says why it could not, empty when it was done.
using MoveRoof = std::function<void(bool open, std::function<void(const QString&)>)>;

struct AlpacaServer {
    bool allowSwitch = false;
    std::optional<double> elevation; // metres
    MoveRoof moveRoof;               // may be called in any thread
    AlpacaClients clients;
    std::atomic<std::uint32_t> transactions{0};
};

struct AlpacaDevice;

struct AlpacaCall {
    AlpacaServer& server;
    const AlpacaDevice& device;
    const View& view;
    Parameters parameters;
    const Request& request;
    std::uint32_t clientId = 0;

    bool put() const { return request.method == "PUT"; }
    QByteArray client() const; // the address, and the number that the client gives itself

    QByteArray text(const char* name) const;
    int integer(const char* name) const;   // the three are read already
    double number(const char* name) const; //
    bool boolean(const char* name) const;  //
};

enum class AlpacaType : std::uint8_t { None, Bool, Integer, Number, Text, List };

struct AlpacaParameter {
    const char* name = nullptr;
    AlpacaType type = AlpacaType::Text;
};

struct AlpacaMember {
    const char* name;
    bool put;
    AlpacaType type; // of the value
    AlpacaOutcome (*call)(const AlpacaCall& call);
    AlpacaParameter parameters[2] = {};
};

struct AlpacaDevice {
    const char* type; // "SafetyMonitor"
    const char* name; //
    const char* description;
    int interfaceVersion;
    const char* action; // the one that it has beside its members, or null
    std::span<const AlpacaMember> members;
    // The names and values of its state at once.
    QList<std::pair<const char*, QByteArray>> (*state)(const AlpacaCall& call);
};

std::span<const AlpacaDevice> alpacaDevices();         // each has the number 0
const AlpacaDevice* alpacaDevice(QByteArrayView type); // in lower case; null: there is none
std::span<const AlpacaMember> commonMembers();

// How a client counts its requests. Both numbers are 0 where it does not send them.
struct AlpacaIds {
    std::uint32_t client = 0;
    std::uint32_t transaction = 0;
};
// Nothing, with the reason, where one of them is no whole number from 0 to 4294967295.
std::optional<AlpacaIds> readAlpacaIds(const Parameters& all, bool anyCase, QByteArray& fault);

// The causes as JSON, for the action "SafetyEvents".
QByteArray causesJson(const View& view);

// A request whose path begins with /api/v1/.
Handling alpacaRequest(const Request& request, AlpacaServer& server, const View& view);

// One whose path begins with /management/.
Answer managementRequest(const Request& request, AlpacaServer& server, const QString& site);

// Of a device on this computer, the same for ever.
QByteArray uniqueId(const AlpacaDevice& device);

} // namespace skyhold
