// SPDX-License-Identifier: GPL-3.0-or-later
#include "bus/automation_server.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

namespace skyhold {

namespace {

constexpr char kFactoryXml[] = R"(  <interface name="Kiv.Automation.ClassFactory">
    <method name="CreateInstance">
      <arg name="instance" type="o" direction="out"/>
    </method>
  </interface>
)";

constexpr char kDispatchXml[] = R"(  <interface name="Kiv.Automation.Dispatch">
    <method name="GetIDsOfNames">
      <arg name="names" type="as" direction="in"/>
      <arg name="ids" type="ai" direction="out"/>
    </method>
    <method name="Invoke">
      <arg name="id" type="i" direction="in"/>
      <arg name="kind" type="u" direction="in"/>
      <arg name="arguments" type="av" direction="in"/>
      <arg name="result" type="v" direction="out"/>
      <arg name="changed" type="av" direction="out"/>
    </method>
    <method name="InvokeByName">
      <arg name="name" type="s" direction="in"/>
      <arg name="kind" type="u" direction="in"/>
      <arg name="arguments" type="av" direction="in"/>
      <arg name="result" type="v" direction="out"/>
      <arg name="changed" type="av" direction="out"/>
    </method>
    <method name="Release"/>
  </interface>
)";

AutomationReply error(AutomationError kind, const QString& text) {
    return {{}, kind, text};
}

} // namespace

QDBusMessage automationErrorReply(const QDBusMessage& message, AutomationError kind,
                                  const QString& text) {
    return message.createErrorReply(errorForm(kind).name, errorMessage(kind, text));
}

QString factoryInterfaceXml() {
    return QString::fromLatin1(kFactoryXml);
}

QString dispatchInterfaceXml() {
    return QString::fromLatin1(kDispatchXml);
}

void MemberTable::add(AutomationMember member) {
    idByName_.insert(member.name.toLower(), member.id);
    membersById_[member.id].push_back(members_.size());
    members_.push_back(std::move(member));
}

std::optional<std::int32_t> MemberTable::idOf(const QString& name) const {
    const auto found = idByName_.constFind(name.toLower());
    return found == idByName_.cend() ? std::nullopt : std::optional(*found);
}

const AutomationMember* MemberTable::find(std::int32_t id, unsigned use) const {
    const auto found = membersById_.constFind(id);
    if (found == membersById_.cend())
        return nullptr;
    for (const std::size_t index : *found) {
        if ((members_[index].use & use) != 0)
            return &members_[index];
    }
    return nullptr;
}

AutomationReply MemberTable::invoke(std::int32_t id, unsigned use, QVariantList& arguments) const {
    if (const AutomationMember* member = find(id, use))
        return invoke(*member, arguments);
    return error(AutomationError::MemberNotFound,
                 membersById_.contains(id) ? QStringLiteral("the member cannot be used in this way")
                                           : QStringLiteral("no member has this id"));
}

AutomationReply MemberTable::invoke(const AutomationMember& member, QVariantList& arguments) {
    if (static_cast<std::size_t>(arguments.size()) != member.parameters.size())
        return error(
            AutomationError::BadParamCount,
            QStringLiteral("%1 takes %2 arguments").arg(member.name).arg(member.parameters.size()));
    for (std::size_t i = 0; i < member.parameters.size(); ++i) {
        QVariant& argument = arguments[static_cast<qsizetype>(i)];
        std::optional<QVariant> converted = convertTo(member.parameters[i].type, argument);
        if (!converted)
            return error(
                AutomationError::TypeMismatch,
                QStringLiteral("%1: argument %2 has the wrong type").arg(member.name).arg(i + 1));
        argument = *converted;
    }
    return member.act(arguments);
}

AutomationReply MemberTable::invokeByName(const QString& name, unsigned use,
                                          QVariantList& arguments) const {
    const std::optional<std::int32_t> id = idOf(name);
    if (!id)
        return error(AutomationError::UnknownName, QStringLiteral("no member is named ") + name);
    return invoke(*id, use, arguments);
}

AutomationServer::AutomationServer(const QDBusConnection& bus, const QString& programId,
                                   std::shared_ptr<const MemberTable> members,
                                   std::function<void(int)> usersChanged)
    : bus_(bus)
    , programId_(programId)
    , rootPath_(factoryPath(programId))
    , members_(std::move(members))
    , usersChanged_(std::move(usersChanged)) {
    registerAutomationTypes();
    watcher_ = new QDBusServiceWatcher(this);
    watcher_->setConnection(bus_);
    watcher_->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(watcher_, &QDBusServiceWatcher::serviceUnregistered, this,
            [this](const QString& client) { releaseAllOf(client); });
}

AutomationServer::~AutomationServer() {
    stop();
}

bool AutomationServer::start() {
    if (!bus_.isConnected())
        return false;
    started_ = bus_.registerVirtualObject(rootPath_, this, QDBusConnection::SubPath) &&
               bus_.registerService(programId_);
    return started_;
}

void AutomationServer::stop() {
    if (!started_)
        return;
    started_ = false;
    bus_.unregisterService(programId_);
    bus_.unregisterObject(rootPath_, QDBusConnection::UnregisterTree);
}

void AutomationServer::dropClients() {
    const QStringList clients = watcher_->watchedServices();
    for (const QString& client : clients)
        releaseAllOf(client);
}

QDBusObjectPath AutomationServer::addObject(const QString& name,
                                            const std::shared_ptr<const MemberTable>& members) {
    const QString path = rootPath_ + u'/' + name;
    objects_.insert(path, members);
    return QDBusObjectPath(path);
}

QString AutomationServer::introspect(const QString& path) const {
    QString xml;
    if (path != rootPath_) {
        xml = dispatchInterfaceXml();
        if (instanceOf(path)) {
            for (const InstanceInterface& interface : interfaces_) {
                if (interface.xml)
                    xml += interface.xml();
            }
        }
        return xml;
    }
    xml = factoryInterfaceXml();
    QStringList children;
    for (auto object = objects_.cbegin(); object != objects_.cend(); ++object)
        children.append(object.key().mid(rootPath_.size() + 1).section(u'/', 0, 0));
    for (auto instance = instances_.cbegin(); instance != instances_.cend(); ++instance)
        children.append(QString::number(instance.key()));
    children.removeDuplicates();
    for (const QString& child : std::as_const(children))
        xml += QStringLiteral("  <node name=\"%1\"/>\n").arg(child);
    return xml;
}

std::optional<std::uint32_t> AutomationServer::instanceOf(const QString& path) const {
    const QStringView name = QStringView(path).mid(rootPath_.size() + 1);
    bool numbered = false;
    const std::uint32_t number = name.toUInt(&numbered);
    // One object has one path: "07" is not "7".
    if (!numbered || name.startsWith(u'0') || !instances_.contains(number))
        return std::nullopt;
    return number;
}

const MemberTable* AutomationServer::tableOf(const QString& path) const {
    if (instanceOf(path))
        return members_.get();
    const auto object = objects_.constFind(path);
    return object == objects_.cend() ? nullptr : object->get();
}

bool AutomationServer::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    const QString path = message.path();
    const QString interface = message.interface();
    if (path == rootPath_) {
        if (message.member() != QStringLiteral("CreateInstance") ||
            (!interface.isEmpty() && interface != QLatin1String(kFactoryInterface)))
            return false;
        createInstance(message);
        return true;
    }
    const MemberTable* table = tableOf(path);
    if (!table) {
        bus_.send(message.createErrorReply(QDBusError::UnknownObject,
                                           QStringLiteral("No such object ") + path));
        return true;
    }
    const bool forDispatch = interface == QLatin1String(kDispatchInterface);
    if ((forDispatch || interface.isEmpty()) && dispatch(*table, message))
        return true;
    if (!forDispatch && table == members_.get() && answerFurther(message))
        return true;
    // What every object has, such as introspection, is answered below this.
    if (interface.isEmpty() || interface.startsWith(QStringLiteral("org.freedesktop.DBus.")))
        return false;
    bus_.send(message.createErrorReply(QDBusError::UnknownMethod,
                                       QStringLiteral("No method %1 with signature \"%2\"")
                                           .arg(message.member(), message.signature())));
    return true;
}

bool AutomationServer::answerFurther(const QDBusMessage& message) {
    const QString name = message.interface();
    for (const InstanceInterface& interface : interfaces_) {
        if (!name.isEmpty() && name != interface.name)
            continue;
        if (const std::optional<QDBusMessage> answer = interface.answer(message)) {
            bus_.send(*answer);
            return true;
        }
    }
    return false;
}

void AutomationServer::createInstance(const QDBusMessage& message) {
    const QString client = message.service();
    const std::uint32_t number = ++lastInstance_;
    instances_.insert(number, client);
    watch(client);
    instancesOfClient_[client].insert(number);
    usersChanged_(+1);
    const QString path = rootPath_ + u'/' + QString::number(number);
    bus_.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
}

void AutomationServer::watch(const QString& client) {
    if (watcher_->watchedServices().contains(client))
        return;
    watcher_->addWatchedService(client);
    // A client that died before the watch began would never be reported.
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    call << client;
    auto* asked = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(asked, &QDBusPendingCallWatcher::finished, this,
            [this, client](QDBusPendingCallWatcher* answered) {
                const QDBusPendingReply<bool> reply = *answered;
                if (reply.isValid() ? !reply.value() : !bus_.isConnected())
                    releaseAllOf(client);
                answered->deleteLater();
            });
}

void AutomationServer::release(const QString& path) {
    const std::uint32_t number = QStringView(path).mid(rootPath_.size() + 1).toUInt();
    const QString client = instances_.take(number);
    bool left = false;
    const auto others = instancesOfClient_.find(client);
    if (others != instancesOfClient_.end()) {
        others->remove(number);
        if (others->isEmpty()) {
            instancesOfClient_.erase(others);
            left = true;
            watcher_->removeWatchedService(client);
        }
    }
    usersChanged_(-1);
    if (left)
        clientLeft(client);
}

void AutomationServer::clientLeft(const QString&) {}

void AutomationServer::releaseAllOf(const QString& client) {
    const QSet<std::uint32_t> numbers = instancesOfClient_.take(client);
    watcher_->removeWatchedService(client);
    for (const std::uint32_t number : numbers) {
        instances_.remove(number);
        usersChanged_(-1);
    }
    clientLeft(client);
}

// False for a method that the dispatch interface has not.
bool AutomationServer::dispatch(const MemberTable& table, const QDBusMessage& message) {
    const QString method = message.member();
    const QString signature = message.signature();
    if (method == QStringLiteral("Release") && signature.isEmpty()) {
        if (!instanceOf(message.path()))
            return false;
        release(message.path());
        bus_.send(message.createReply());
        return true;
    }

    const QVariantList sent = message.arguments();
    if (method == QStringLiteral("GetIDsOfNames") && signature == QStringLiteral("as")) {
        QList<int> ids;
        const QStringList names = sent[0].toStringList();
        for (const QString& name : names) {
            const std::optional<std::int32_t> id = table.idOf(name);
            if (!id) {
                bus_.send(automationErrorReply(message, AutomationError::UnknownName,
                                               QStringLiteral("no member is named ") + name));
                return true;
            }
            ids.append(*id);
        }
        bus_.send(message.createReply(QVariant::fromValue(ids)));
        return true;
    }

    const bool byId = method == QStringLiteral("Invoke") && signature == QStringLiteral("iuav");
    const bool byName =
        method == QStringLiteral("InvokeByName") && signature == QStringLiteral("suav");
    if (!byId && !byName)
        return false;
    QVariantList arguments = fromBus(qdbus_cast<QVariantList>(sent[2]));
    const unsigned use = sent[1].toUInt();
    const AutomationReply reply = byId ? table.invoke(sent[0].toInt(), use, arguments)
                                       : table.invokeByName(sent[0].toString(), use, arguments);
    bus_.send(reply.ok()
                  ? message.createReply(
                        {QVariant::fromValue(QDBusVariant(toBus(reply.result))), toBus(arguments)})
                  : automationErrorReply(message, reply.error, reply.text));
    return true;
}

} // namespace skyhold
