// SPDX-License-Identifier: GPL-3.0-or-later
#include "bus/automation_client.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QElapsedTimer>
#include <QHash>
#include <QThread>

#include <algorithm>
#include <deque>
#include <limits>

namespace skyhold {

namespace {

// Starting a program may take longer than a call to one that runs.
constexpr int kActivationTimeoutMs = 15'000;
// A program that has taken longer for a call is called one call after the other.
constexpr int kQuickMs = 20;

AutomationReply failure(const QString& text) {
    return {{}, AutomationError::Fail, text};
}

AutomationError errorNamed(const QString& name) {
    for (const AutomationError error :
         {AutomationError::UnknownName, AutomationError::MemberNotFound,
          AutomationError::BadParamCount, AutomationError::TypeMismatch, AutomationError::Exception,
          AutomationError::NoInterface}) {
        if (errorForm(error).name == name)
            return error;
    }
    return AutomationError::Fail;
}

bool isTimeout(QDBusError::ErrorType type) {
    return type == QDBusError::NoReply || type == QDBusError::Timeout ||
           type == QDBusError::TimedOut;
}

bool isGone(const QDBusError& error) {
    // What the bus answers for a connection that is no longer there has no type of its own in Qt.
    return error.type() == QDBusError::ServiceUnknown ||
           error.type() == QDBusError::UnknownObject || error.type() == QDBusError::Disconnected ||
           error.name() == QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner");
}

bool isAnswered(const QDBusMessage& reply) {
    return reply.type() == QDBusMessage::ReplyMessage;
}

QDBusMessage dispatchCall(const QString& owner, const QString& path, const QString& method) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        owner, path, QString::fromLatin1(kDispatchInterface), method);
    call.setAutoStartService(false);
    return call;
}

// What one instance and the objects that its members answered with share: the program behind them.
// It is reached through the unique name of the connection that made the instance, so that a
// program that takes over the well-known name is never mistaken for it.
class BusLink {
  public:
    BusLink(const QDBusConnection& bus, const QString& owner, const QString& instance)
        : bus_(bus)
        , owner_(owner)
        , instance_(instance) {}

    ~BusLink() {
        if (alive_)
            bus_.send(dispatchCall(owner_, instance_, QStringLiteral("Release")));
    }

    AutomationReply invoke(const QString& path, const QString& name, unsigned use,
                           QVariantList& arguments) {
        if (!alive_)
            return failure(QStringLiteral("the program has gone"));
        if (hung_)
            return failure(QStringLiteral("the program does not answer"));
        if (left_.calls <= 0) {
            giveUp();
            return failure(QStringLiteral("the program answers too slowly"));
        }
        if (!ahead_.empty() && ahead_.front().isRead(path, name, use, arguments)) {
            const QDBusPendingCall call = ahead_.front().call;
            ahead_.pop_front();
            return takenAhead(path, call, arguments);
        }
        ahead_.clear();
        return waitedFor(path, invocation(path, name, use, arguments), arguments, left_.calls);
    }

    AutomationReply command(const QString& path, const QString& name, unsigned use,
                            QVariantList& arguments) {
        if (!alive_)
            return failure(QStringLiteral("the program has gone"));
        const QDBusMessage call = invocation(path, name, use, arguments);
        const QVariantList asked = arguments;
        if (!hung_ && left_.commands > 0) {
            AutomationReply reply = waitedFor(path, call, arguments, left_.commands);
            if (hung_)
                unanswered_.insert(name, asked);
            return reply;
        }
        if (!hung_)
            giveUp();
        const auto before = unanswered_.constFind(name);
        if (before == unanswered_.cend() || *before != asked) {
            bus_.send(call);
            unanswered_.insert(name, asked);
        }
        return failure(QStringLiteral("the program does not answer"));
    }

    ObjectState state() const {
        if (!alive_)
            return ObjectState::Gone;
        return hung_ ? ObjectState::Hanging : ObjectState::Ready;
    }

    void beginCalls(const CallTime& time) {
        if (slowestMs_ >= 0)
            quick_ = slowestMs_ < kQuickMs;
        slowestMs_ = -1;
        left_ = time;
        ahead_.clear();
    }

    void readAhead(const QString& path, const QStringList& names) {
        if (!alive_ || hung_ || !quick_)
            return;
        for (const QString& name : names)
            ahead_.push_back({path, name,
                              bus_.asyncCall(invocation(path, name, kRead, {}),
                                             std::numeric_limits<int>::max())});
    }

  private:
    struct Ahead {
        QString path;
        QString name;
        QDBusPendingCall call;

        bool isRead(const QString& ofPath, const QString& ofName, unsigned use,
                    const QVariantList& arguments) const {
            return path == ofPath && name == ofName && use == kRead && arguments.isEmpty();
        }
    };

    // A further object that is not known says nothing about the instance.
    bool isOnlyUnknown(const QDBusError& error, const QString& path) const {
        return error.type() == QDBusError::UnknownObject && path != instance_;
    }

    QDBusMessage invocation(const QString& path, const QString& name, unsigned use,
                            const QVariantList& arguments) const {
        QDBusMessage call = dispatchCall(owner_, path, QStringLiteral("InvokeByName"));
        call << name << use << QVariant(toBus(arguments));
        return call;
    }

    // The time that it takes is taken from `left`.
    AutomationReply waitedFor(const QString& path, const QDBusMessage& call,
                              QVariantList& arguments, int& left) {
        QElapsedTimer timer;
        timer.start();
        const int timeout = std::min(kCallTimeoutMs, left);
        const QDBusMessage reply = bus_.call(call, QDBus::Block, timeout);
        const qint64 took = timer.elapsed();
        slowestMs_ = std::max(slowestMs_, took);
        left -= static_cast<int>(took);
        return settled(path, reply, took >= timeout * 9 / 10, arguments);
    }

    // The answer to what was sent ahead; it may be there already.
    AutomationReply takenAhead(const QString& path, const QDBusPendingCall& call,
                               QVariantList& arguments) {
        constexpr unsigned long kLookUs = 100;
        QElapsedTimer timer;
        timer.start();
        const int timeout = std::min(kCallTimeoutMs, left_.calls);
        while (!call.isFinished() && timer.elapsed() < timeout)
            QThread::usleep(kLookUs);
        const qint64 took = timer.elapsed();
        slowestMs_ = std::max(slowestMs_, took);
        left_.calls -= static_cast<int>(took);
        if (!call.isFinished()) {
            giveUp();
            return failure(QStringLiteral("the program does not answer"));
        }
        return settled(path, call.reply(), false, arguments);
    }

    AutomationReply settled(const QString& path, const QDBusMessage& reply, bool late,
                            QVariantList& arguments) {
        if (isAnswered(reply))
            return answer(reply, arguments);

        const QDBusError error(reply);
        // The bus answers "no reply" as well when the program ends in the middle of a call, and at
        // once; a time-out may come a twentieth early.
        if (isTimeout(error.type()) && late)
            giveUp();
        else if (isTimeout(error.type()) || (isGone(error) && !isOnlyUnknown(error, path)))
            alive_ = false;
        return {{}, errorNamed(reply.errorName()), reply.errorMessage()};
    }

    static AutomationReply answer(const QDBusMessage& reply, QVariantList& arguments) {
        const QVariantList answered = reply.arguments();
        if (answered.isEmpty())
            return failure(QStringLiteral("the answer is empty"));
        if (answered.size() > 1) {
            const QVariant changed = fromBus(answered[1]);
            if (changed.toList().size() == arguments.size())
                arguments = changed.toList();
        }
        return {fromBus(answered[0]), AutomationError::None, {}};
    }

    // From now on plain calls fail at once; a probe without time limit asks the object, and its
    // answer, whatever it is, ends that.
    void giveUp() {
        hung_ = true;
        ahead_.clear();
        QDBusMessage call = dispatchCall(owner_, instance_, QStringLiteral("GetIDsOfNames"));
        call << QStringList{QStringLiteral("Version")};
        probe_ = std::make_unique<QDBusPendingCallWatcher>(
            bus_.asyncCall(call, std::numeric_limits<int>::max()));
        QObject::connect(probe_.get(), &QDBusPendingCallWatcher::finished, probe_.get(),
                         [this](QDBusPendingCallWatcher* watcher) {
                             hung_ = false;
                             unanswered_.clear();
                             if (isGone(watcher->error()) || isTimeout(watcher->error().type()))
                                 alive_ = false;
                             probe_.release()->deleteLater();
                         });
    }

    QDBusConnection bus_;
    QString owner_;
    QString instance_;
    bool alive_ = true;
    bool hung_ = false;
    bool quick_ = false;      // each call of the last span with calls was
    qint64 slowestMs_ = -1;   // of the calls of this span; none yet
    std::deque<Ahead> ahead_; // sent, and yet to be asked for
    CallTime left_{std::numeric_limits<int>::max(), std::numeric_limits<int>::max()};
    QHash<QString, QVariantList> unanswered_; // the last of each command while it hangs
    std::unique_ptr<QDBusPendingCallWatcher> probe_;
};

// An instance, or an object that one of its members answered with.
class BusObject : public DispatchObject {
  public:
    BusObject(std::shared_ptr<BusLink> link, const QString& path)
        : link_(std::move(link))
        , path_(path) {}

    AutomationReply invoke(const QString& name, unsigned use, QVariantList& arguments) override {
        return link_->invoke(path_, name, use, arguments);
    }
    AutomationReply command(const QString& name, unsigned use, QVariantList arguments) override {
        return link_->command(path_, name, use, arguments);
    }
    std::unique_ptr<DispatchObject> object(const QVariant& answer) override {
        const auto path = answer.value<QDBusObjectPath>();
        return path.path().isEmpty() ? nullptr : std::make_unique<BusObject>(link_, path.path());
    }
    ObjectState state() const override { return link_->state(); }
    void readAhead(const QStringList& names) override { link_->readAhead(path_, names); }
    void beginCalls(const CallTime& time) override { link_->beginCalls(time); }

  private:
    std::shared_ptr<BusLink> link_; // ends the instance when the last object lets go
    QString path_;
};

// Stands for an object that is still to come.
class AwaitedObject : public DispatchObject {
  public:
    AwaitedObject(ObjectState state, std::function<bool()> over)
        : state_(state)
        , over_(std::move(over)) {}

    AutomationReply invoke(const QString&, unsigned, QVariantList&) override {
        return failure(QStringLiteral("the program is being started"));
    }
    AutomationReply command(const QString&, unsigned, QVariantList) override {
        return failure(QStringLiteral("the program is being started"));
    }
    std::unique_ptr<DispatchObject> object(const QVariant&) override { return nullptr; }
    ObjectState state() const override { return over_() ? ObjectState::Gone : state_; }
    void beginCalls(const CallTime&) override {}

  private:
    ObjectState state_;
    std::function<bool()> over_;
};

// An instance that was requested from a factory. One that is not used is released, also when it
// comes only after this has gone.
class Creation {
  public:
    Creation(const QDBusConnection& bus, const QString& programId)
        : bus_(bus)
        , call_(bus_.asyncCall(request(programId), std::numeric_limits<int>::max())) {}
    ~Creation() {
        if (!taken_)
            releaseWhenItComes();
    }
    Creation(const Creation&) = delete;
    Creation& operator=(const Creation&) = delete;

    bool finished() const { return call_.isFinished() || !bus_.isConnected(); }

    // Waits for the answer without serving events.
    void wait(int ms) const {
        QElapsedTimer timer;
        timer.start();
        while (!finished() && timer.elapsed() < ms)
            QThread::msleep(1);
    }

    // The instance that was made; nothing when there is none.
    std::unique_ptr<DispatchObject> take() {
        taken_ = true;
        return linkTo(bus_, call_.reply());
    }

  private:
    void releaseWhenItComes() {
        auto* watcher = new QDBusPendingCallWatcher(call_, QCoreApplication::instance());
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                         [bus = bus_](QDBusPendingCallWatcher* late) {
                             linkTo(bus, late->reply()); // which is let go at once
                             late->deleteLater();
                         });
    }

    static QDBusMessage request(const QString& programId) {
        QDBusMessage call = QDBusMessage::createMethodCall(programId, factoryPath(programId),
                                                           QString::fromLatin1(kFactoryInterface),
                                                           QStringLiteral("CreateInstance"));
        call.setAutoStartService(false);
        return call;
    }

    static std::unique_ptr<DispatchObject> linkTo(const QDBusConnection& bus,
                                                  const QDBusMessage& reply) {
        if (!isAnswered(reply) || reply.arguments().isEmpty())
            return nullptr;
        const QString path = reply.arguments().constFirst().value<QDBusObjectPath>().path();
        if (path.isEmpty())
            return nullptr;
        return std::make_unique<BusObject>(std::make_shared<BusLink>(bus, reply.service(), path),
                                           path);
    }

    QDBusConnection bus_;
    QDBusPendingCall call_;
    bool taken_ = false;
};

class BusCreator {
  public:
    explicit BusCreator(const QDBusConnection& bus)
        : bus_(bus) {}

    std::unique_ptr<DispatchObject> create(const QString& programId) {
        if (!bus_.isConnected())
            return nullptr;
        std::shared_ptr<Creation> creation = creation_.lock();
        if (creation && creation->finished()) {
            creation_.reset();
            if (auto object = creation->take())
                return object;
            creation.reset();
        }
        if (!creation) {
            if (!bus_.interface()->isServiceRegistered(programId))
                return started(programId);
            start_.reset();
            creation = std::make_shared<Creation>(bus_, programId);
            creation->wait(kCreationMs);
            if (creation->finished())
                return creation->take();
            creation_ = creation;
        }
        return std::make_unique<AwaitedObject>(ObjectState::Creating,
                                               [creation] { return creation->finished(); });
    }

  private:
    // Has the bus start the program; nothing when that has failed.
    std::unique_ptr<DispatchObject> started(const QString& programId) {
        if (start_ && start_->isFinished()) {
            start_.reset();
            return nullptr;
        }
        if (!start_) {
            QDBusMessage call = QDBusMessage::createMethodCall(
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("StartServiceByName"));
            call << programId << 0U;
            start_ = std::make_shared<QDBusPendingCallWatcher>(
                bus_.asyncCall(call, kActivationTimeoutMs));
        }
        return std::make_unique<AwaitedObject>(ObjectState::Starting,
                                               [start = start_] { return start->isFinished(); });
    }

    QDBusConnection bus_;
    std::weak_ptr<Creation> creation_; // held by what stands for its object
    std::shared_ptr<QDBusPendingCallWatcher> start_;
};

} // namespace

CreateObject busObjectCreator(const QDBusConnection& bus) {
    registerAutomationTypes();
    return [creator = std::make_shared<BusCreator>(bus)](const QString& programId) {
        return creator->create(programId);
    };
}

} // namespace skyhold
