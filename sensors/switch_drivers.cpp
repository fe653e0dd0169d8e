// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/alpaca.h"
#include "sensors/indi_source.h"
#include "sensors/roof_switch.h"

#include <QProcess>
#include <QTimer>

#include <cmath>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

int milliseconds(const SwitchSettings& settings, const QString& key) {
    return static_cast<int>(std::lround(std::max(settings.text(key).toDouble(), 0.1) * 1000));
}

// A switch of an INDI device with an element each for open and closed, as DOME_SHUTTER or DOME_PARK
// has it.
class IndiSwitch : public SwitchDriver {
  public:
    IndiSwitch(const SwitchSettings& settings, IndiSource& source)
        : source_(source)
        , open_(settings.text(u"open"_s))
        , close_(settings.text(u"close"_s)) {
        source_.follow(open_);
        source_.follow(close_);
    }
    void start() override {}
    bool open() override { return sent_ = there() && source_.setSwitch(open_); }
    void close() override { sent_ = source_.setSwitch(close_); }
    RoofState state() const override {
        const auto reached = [this](const QString& address) {
            const IndiSource::Element element = source_.element(address);
            return element.text == u"On" && (element.state == u"Ok" || element.state == u"Idle");
        };
        const bool opened = reached(open_);
        if (opened == reached(close_))
            return RoofState::Unknown;
        return opened ? RoofState::Opened : RoofState::Closed;
    }
    bool settled() const override { return source_.flushed(); }
    QString trouble() const override {
        return sent_ ? QString() : u"the switch cannot be reached"_s;
    }

  private:
    // Before the device is connected it has no such switch, and nothing would come of it.
    bool there() const { return !source_.element(open_).text.isEmpty(); }

    IndiSource& source_;
    QString open_, close_;
    bool sent_ = true;
};

// A switch of an Alpaca Switch device, or the shutter of a Dome.
class AlpacaSwitch : public SwitchDriver {
  public:
    explicit AlpacaSwitch(const SwitchSettings& settings)
        : device_(settings.text(u"url"_s), settings.text(u"device"_s),
                  settings.text(u"timeout"_s).toDouble())
        , dome_(settings.text(u"device"_s).startsWith(u"dome"))
        , id_(settings.text(u"id"_s))
        , openWhen_(settings.text(u"open-when"_s) != u"false") {
        timer_.setInterval(milliseconds(settings, u"every"_s));
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { ask(); });
    }
    void start() override {
        connect();
        timer_.start();
    }
    bool open() override {
        set(true);
        return true;
    }
    void close() override { set(false); }
    RoofState state() const override { return state_; }
    bool settled() const override { return sending_ == 0; }
    QString trouble() const override { return trouble_; }

  private:
    void connect() {
        QUrlQuery arguments;
        arguments.addQueryItem(u"Connected"_s, u"true"_s);
        device_.put(u"connected"_s, arguments, [this](const AlpacaDevice::Answer& answer) {
            trouble_ = answer.fault;
            if (answer.fault.isEmpty())
                ask();
        });
    }
    void set(bool open) {
        state_ = RoofState::Unknown;
        ++sending_;
        QUrlQuery arguments;
        QString member = open ? u"openshutter"_s : u"closeshutter"_s;
        if (!dome_) {
            member = u"setswitch"_s;
            arguments.addQueryItem(u"Id"_s, id_);
            arguments.addQueryItem(u"State"_s, open == openWhen_ ? u"true"_s : u"false"_s);
        }
        device_.put(member, arguments, [this](const AlpacaDevice::Answer& answer) {
            --sending_;
            trouble_ = answer.fault;
            if (!answer.fault.isEmpty())
                connect();
        });
    }
    void ask() {
        if (asking_ || sending_ > 0)
            return;
        asking_ = true;
        QUrlQuery arguments;
        if (!dome_)
            arguments.addQueryItem(u"Id"_s, id_);
        device_.get(dome_ ? u"shutterstatus"_s : u"getswitch"_s, arguments,
                    [this](const AlpacaDevice::Answer& answer) {
                        asking_ = false;
                        if (sending_ == 0)
                            takeState(answer);
                    });
    }
    void takeState(const AlpacaDevice::Answer& answer) {
        trouble_ = answer.fault;
        state_ = RoofState::Unknown;
        if (!answer.fault.isEmpty())
            connect();
        else if (dome_ && answer.value.toInt(-1) <= 1 && answer.value.isDouble())
            state_ = answer.value.toInt() == 0 ? RoofState::Opened : RoofState::Closed;
        else if (!dome_ && answer.value.isBool())
            state_ = answer.value.toBool() == openWhen_ ? RoofState::Opened : RoofState::Closed;
    }

    AlpacaDevice device_;
    bool dome_;
    QString id_;
    bool openWhen_;
    QTimer timer_;
    int sending_ = 0;
    bool asking_ = false;
    RoofState state_ = RoofState::Unknown;
    QString trouble_;
};

// Commands that open and close, and one that prints "open" or "closed". What is asked for while a
// command runs is done after it, the last word alone.
class CommandSwitch : public SwitchDriver {
  public:
    explicit CommandSwitch(const SwitchSettings& settings)
        : open_(QProcess::splitCommand(settings.text(u"open"_s)))
        , close_(QProcess::splitCommand(settings.text(u"close"_s)))
        , ask_(QProcess::splitCommand(settings.text(u"state"_s))) {
        timer_.setInterval(milliseconds(settings, u"every"_s));
        limit_.setInterval(milliseconds(settings, u"timeout"_s));
        limit_.setSingleShot(true);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { next(); });
        QObject::connect(&limit_, &QTimer::timeout, &process_, [this] { process_.kill(); });
        process_.setStandardErrorFile(QProcess::nullDevice());
        process_.setStandardInputFile(QProcess::nullDevice());
        QObject::connect(&process_, &QProcess::finished, &process_,
                         [this](int code, QProcess::ExitStatus status) {
                             finish(status == QProcess::NormalExit && code == 0);
                         });
        QObject::connect(&process_, &QProcess::errorOccurred, &process_,
                         [this](QProcess::ProcessError error) {
                             if (error == QProcess::FailedToStart)
                                 finish(false);
                         });
    }
    ~CommandSwitch() override {
        process_.disconnect();
        process_.kill();
        process_.waitForFinished(1000);
    }
    void start() override {
        next();
        timer_.start();
    }
    bool open() override {
        want(RoofState::Opened);
        return true;
    }
    void close() override { want(RoofState::Closed); }
    RoofState state() const override { return state_; }
    bool settled() const override { return pending_ == RoofState::Unknown && !moving_; }
    QString trouble() const override { return trouble_; }

  private:
    void want(RoofState wanted) {
        state_ = RoofState::Unknown;
        pending_ = wanted;
        next();
    }
    void next() {
        if (process_.state() != QProcess::NotRunning)
            return;
        moving_ = pending_ != RoofState::Unknown;
        const QStringList& command = !moving_                        ? ask_
                                     : pending_ == RoofState::Opened ? open_
                                                                     : close_;
        pending_ = RoofState::Unknown;
        limit_.start();
        process_.start(command.value(0), command.mid(1), QIODevice::ReadOnly);
    }
    void finish(bool good) {
        limit_.stop();
        const bool moved = std::exchange(moving_, false);
        const QByteArray answer = process_.readAllStandardOutput().left(64).trimmed().toLower();
        trouble_ = good ? QString() : u"a command of the switch failed"_s;
        if (!moved)
            state_ = !good || pending_ != RoofState::Unknown  ? RoofState::Unknown
                     : answer == "open" || answer == "opened" ? RoofState::Opened
                     : answer == "closed"                     ? RoofState::Closed
                                                              : RoofState::Unknown;
        if (moved || pending_ != RoofState::Unknown)
            QTimer::singleShot(0, &timer_, [this] { next(); });
    }

    QStringList open_, close_, ask_;
    QProcess process_;
    QTimer timer_, limit_;
    RoofState pending_ = RoofState::Unknown;
    RoofState state_ = RoofState::Unknown;
    bool moving_ = false;
    QString trouble_;
};

} // namespace

std::unique_ptr<SwitchDriver> makeSwitchDriver(const SwitchSettings& settings, IndiSource* indi) {
    switch (settings.kind) {
    case SwitchKind::Indi:
        return indi ? std::make_unique<IndiSwitch>(settings, *indi) : nullptr;
    case SwitchKind::Alpaca:
        return std::make_unique<AlpacaSwitch>(settings);
    case SwitchKind::Command:
        return std::make_unique<CommandSwitch>(settings);
    case SwitchKind::None:
        break;
    }
    return nullptr;
}

} // namespace skyhold
