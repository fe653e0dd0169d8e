// SPDX-License-Identifier: GPL-3.0-or-later
// The server side: objects of this program that other programs create and call.
#pragma once

#include "bus/automation_value.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QHash>
#include <QSet>

#include <functional>
#include <memory>
#include <vector>

class QDBusServiceWatcher;

namespace skyhold {

struct AutomationParameter {
    QString name;
    AutomationType type = AutomationType::Variant;
    bool byReference = false;
};

// One public member, or one of the two halves of a property (get, let): both share name and id.
struct AutomationMember {
    QString name;
    std::int32_t id = 0;
    MemberUse use = kMethod;
    AutomationType result = AutomationType::Empty;
    std::vector<AutomationParameter> parameters;
    // The arguments are already converted to the parameters' types; changes to them reach the
    // caller. A let's last argument is the new value.
    std::function<AutomationReply(QVariantList& arguments)> act;
    QString enumeration = {}; // that the result's numbers belong to
};

// The members of one class of objects, by name (without regard to case) and by id.
class MemberTable {
  public:
    void add(AutomationMember member);

    std::optional<std::int32_t> idOf(const QString& name) const;
    AutomationReply invoke(std::int32_t id, unsigned use, QVariantList& arguments) const;
    AutomationReply invokeByName(const QString& name, unsigned use, QVariantList& arguments) const;
    // The half of a member that `use` names; nothing when there is none.
    const AutomationMember* find(std::int32_t id, unsigned use) const;
    const std::vector<AutomationMember>& members() const { return members_; }

  private:
    static AutomationReply invoke(const AutomationMember& member, QVariantList& arguments);

    std::vector<AutomationMember> members_;
    QHash<QString, std::int32_t> idByName_; // lower case
    QHash<std::int32_t, std::vector<std::size_t>> membersById_;
};

// A further interface of every instance: what makes its introspection data (nothing for what every
// object has anyway), and what it answers to a message with its name (or with none); nothing when
// it does not know the method.
struct InstanceInterface {
    QString name;
    std::function<QString()> xml;
    std::function<std::optional<QDBusMessage>(const QDBusMessage&)> answer;
};

// The error as the answer to a message.
QDBusMessage automationErrorReply(const QDBusMessage& message, AutomationError kind,
                                  const QString& text);

// The class factory and the dispatch interface as introspection data.
QString factoryInterfaceXml();
QString dispatchInterfaceXml();

// Serves one program identifier: its class factory, the instances that clients create, and further
// objects that members answer with. An instance holds no state of its own; it lives until it is
// released or the connection that created it goes away, and either way is released once.
class AutomationServer : public QDBusVirtualObject {
  public:
    // `usersChanged` is called with +1 for every instance made and -1 for every one released.
    AutomationServer(const QDBusConnection& bus, const QString& programId,
                     std::shared_ptr<const MemberTable> members,
                     std::function<void(int delta)> usersChanged);
    ~AutomationServer() override;

    // Takes the bus name; false when another program has it or there is no bus.
    bool start();
    void stop();
    // The bus has gone, and every client with it.
    void dropClients();

    // A further object below the factory's path; lives as long as the server.
    QDBusObjectPath addObject(const QString& name,
                              const std::shared_ptr<const MemberTable>& members);

    void addInterface(InstanceInterface interface) { interfaces_.push_back(std::move(interface)); }

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  protected:
    // A client's last instance has been released, or a client that is watched has gone.
    virtual void clientLeft(const QString& client);

    // Has the end of the client's connection noticed, instances or not.
    void watch(const QString& client);

    const QString& rootPath() const { return rootPath_; }

  private:
    void createInstance(const QDBusMessage& message);
    void release(const QString& path);
    void releaseAllOf(const QString& client);
    // The member table behind a path; nothing when there is no such object.
    const MemberTable* tableOf(const QString& path) const;
    std::optional<std::uint32_t> instanceOf(const QString& path) const;
    bool answerFurther(const QDBusMessage& message);
    bool dispatch(const MemberTable& table, const QDBusMessage& message);

    QDBusConnection bus_;
    QString programId_;
    QString rootPath_;
    std::shared_ptr<const MemberTable> members_;
    std::function<void(int)> usersChanged_;
    bool started_ = false;
    std::uint32_t lastInstance_ = 0;
    QHash<std::uint32_t, QString> instances_; // instance number -> client
    QHash<QString, QSet<std::uint32_t>> instancesOfClient_;
    QHash<QString, std::shared_ptr<const MemberTable>> objects_; // by path
    std::vector<InstanceInterface> interfaces_;
    QDBusServiceWatcher* watcher_ = nullptr;
};

} // namespace skyhold
