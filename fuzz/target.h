// SPDX-License-Identifier: GPL-3.0-or-later
// Targets of bad input in bulk: each takes any bytes to one of the program's parsers and checks
// what must hold of the answer, beyond that there is one.
//
// The same targets run under a fuzzer (fuzzer.cpp), which makes up the bytes, and in the tests
// (tests/fuzz), which replay the inputs of fuzz/corpus.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <cstring>
#include <vector>

namespace skyhold::fuzz {

struct Target {
    const char* name; // of the folder in fuzz/corpus
    void (*run)(QByteArrayView bytes);
};

extern const Target kHtmlTable, kCsvTable, kStationValue, kStationFile, kSector, kNumberBox,
    kSettingsFile, kAutomationValue, kAutomationMembers, kUpdateFiles, kIndiStream, kSensorValues,
    kGatewayRequests;

// What a broken rule comes to: the fuzzer's end, a test's failure.
void broken(const char* rule);

inline void require(bool holds, const char* rule) {
    if (!holds)
        broken(rule);
}

// Takes an input apart; an input that has ended yields zeros.
class Input {
  public:
    explicit Input(QByteArrayView bytes)
        : bytes_(bytes) {}

    bool atEnd() const { return bytes_.isEmpty(); }
    std::uint8_t byte() { return static_cast<std::uint8_t>(atEnd() ? 0 : take(1)[0]); }
    template <class Number>
    Number number() {
        Number number{};
        const QByteArrayView raw = take(static_cast<qsizetype>(sizeof number));
        std::memcpy(&number, raw.data(), static_cast<std::size_t>(raw.size()));
        return number;
    }
    QByteArrayView take(qsizetype most) {
        const QByteArrayView taken = bytes_.first(std::min(most, bytes_.size()));
        bytes_ = bytes_.sliced(taken.size());
        return taken;
    }
    // Up to 255 bytes of text, behind a byte with their number.
    QString shortText() { return QString::fromUtf8(take(byte())); }
    // The bytes before the next zero byte, which is dropped.
    QByteArrayView upToZero() {
        const qsizetype zero = bytes_.indexOf('\0');
        const QByteArrayView taken = take(zero < 0 ? bytes_.size() : zero);
        byte();
        return taken;
    }
    QByteArrayView rest() { return take(bytes_.size()); }

  private:
    QByteArrayView bytes_;
};

} // namespace skyhold::fuzz
