#include "platform/automation_client.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QElapsedTimer>

#include <algorithm>
#include <limits>

namespace skyhold {

namespace {

// Starting a program may take longer than a call to one that runs.
constexpr int kActivationTimeoutMs = 15'000;

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

// What one instance and the objects that its members answered with share: the program behind them.
// It is reached through the unique name of the connection that made the instance, so that a
// program that takes over the well-known name is never mistaken for it.
class BusLink {
  public:
    BusLink(const QDBusConnection& bus, const QString& owner, const QString& instance)
        : bus_(bus)
        , owner_(owner)
        , instance_(instance) {
        spent_.start();
    }

    ~BusLink() {
        if (alive_)
            bus_.send(message(instance_, QStringLiteral("Release")));
    }

    AutomationReply invoke(const QString& path, const QString& name, unsigned use,
                           QVariantList& arguments) {
        if (!alive_)
            return failure(QStringLiteral("the program has gone"));
        if (hung_)
            return failure(QStringLiteral("the program does not answer"));
        const qint64 left = budgetMs_ - spent_.elapsed();
        if (left <= 0) {
            giveUp();
            return failure(QStringLiteral("the program answers too slowly"));
        }
        QDBusMessage call = message(path, QStringLiteral("InvokeByName"));
        call << name << use << QVariant(toBus(arguments));
        QElapsedTimer timer;
        timer.start();
        const int timeout = static_cast<int>(std::min<qint64>(kCallTimeoutMs, left));
        const QDBusMessage reply = bus_.call(call, QDBus::Block, timeout);
        if (reply.type() == QDBusMessage::ReplyMessage)
            return answer(reply, arguments);

        const QDBusError error(reply);
        // The bus answers "no reply" as well when the program ends in mid-call, and at once; a
        // time-out may come a twentieth early.
        if (isTimeout(error.type()) && timer.elapsed() >= timeout * 9 / 10)
            giveUp();
        else if (isTimeout(error.type()) || (isGone(error) && !isOnlyUnknown(error, path)))
            alive_ = false;
        return {{}, errorNamed(reply.errorName()), reply.errorMessage()};
    }

    bool alive() const { return alive_; }

    void beginCalls(int ms) {
        budgetMs_ = ms;
        spent_.start();
    }

  private:
    // A further object that is not known says nothing about the instance.
    bool isOnlyUnknown(const QDBusError& error, const QString& path) const {
        return error.type() == QDBusError::UnknownObject && path != instance_;
    }

    QDBusMessage message(const QString& path, const QString& method) const {
        QDBusMessage call = QDBusMessage::createMethodCall(
            owner_, path, QString::fromLatin1(kDispatchInterface), method);
        call.setAutoStartService(false);
        return call;
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

    // From now on calls fail at once; a probe without time limit asks the object, and its answer,
    // whatever it is, ends that.
    void giveUp() {
        hung_ = true;
        QDBusMessage call = message(instance_, QStringLiteral("GetIDsOfNames"));
        call << QStringList{QStringLiteral("Version")};
        probe_ = std::make_unique<QDBusPendingCallWatcher>(
            bus_.asyncCall(call, std::numeric_limits<int>::max()));
        QObject::connect(probe_.get(), &QDBusPendingCallWatcher::finished, probe_.get(),
                         [this](QDBusPendingCallWatcher* watcher) {
                             hung_ = false;
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
    int budgetMs_ = std::numeric_limits<int>::max();
    QElapsedTimer spent_;
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
    std::unique_ptr<DispatchObject> object(const QVariant& answer) override {
        const auto path = answer.value<QDBusObjectPath>();
        return path.path().isEmpty() ? nullptr : std::make_unique<BusObject>(link_, path.path());
    }
    bool alive() const override { return link_->alive(); }
    void beginCalls(int ms) override { link_->beginCalls(ms); }

  private:
    std::shared_ptr<BusLink> link_; // ends the instance when the last object lets go
    QString path_;
};

// Stands for the object of a program that the bus starts.
class StartingObject : public DispatchObject {
  public:
    explicit StartingObject(std::shared_ptr<const QDBusPendingCallWatcher> start)
        : start_(std::move(start)) {}

    AutomationReply invoke(const QString&, unsigned, QVariantList&) override {
        return failure(QStringLiteral("the program is being started"));
    }
    std::unique_ptr<DispatchObject> object(const QVariant&) override { return nullptr; }
    bool alive() const override { return false; }
    bool starting() const override { return !start_->isFinished(); }
    void beginCalls(int) override {}

  private:
    std::shared_ptr<const QDBusPendingCallWatcher> start_;
};

// Creates objects; a factory that has once not answered is waited for without holding anybody up.
class BusCreator {
  public:
    explicit BusCreator(const QDBusConnection& bus)
        : bus_(bus) {}

    std::unique_ptr<DispatchObject> create(const QString& programId) {
        if (!bus_.isConnected())
            return nullptr;
        if (late_) {
            if (!late_->isFinished())
                return nullptr;
            const QDBusMessage reply = late_->reply();
            late_.reset();
            if (auto object = objectOf(reply))
                return object;
        }
        if (!bus_.interface()->isServiceRegistered(programId))
            return started(programId);
        start_.reset();
        QDBusMessage call = QDBusMessage::createMethodCall(programId, factoryPath(programId),
                                                           QString::fromLatin1(kFactoryInterface),
                                                           QStringLiteral("CreateInstance"));
        call.setAutoStartService(false);
        const QDBusMessage reply = bus_.call(call, QDBus::Block, kCallTimeoutMs);
        if (isTimeout(QDBusError(reply).type()))
            late_ = std::make_unique<QDBusPendingCallWatcher>(
                bus_.asyncCall(call, std::numeric_limits<int>::max()));
        return objectOf(reply);
    }

  private:
    // Has the bus start the program; nothing when that has come to nothing.
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
        return std::make_unique<StartingObject>(start_);
    }

    std::unique_ptr<DispatchObject> objectOf(const QDBusMessage& reply) const {
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
            return nullptr;
        const auto path = reply.arguments().constFirst().value<QDBusObjectPath>();
        if (path.path().isEmpty())
            return nullptr;
        return std::make_unique<BusObject>(
            std::make_shared<BusLink>(bus_, reply.service(), path.path()), path.path());
    }

    QDBusConnection bus_;
    std::unique_ptr<QDBusPendingCallWatcher> late_;
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
