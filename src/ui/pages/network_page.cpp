// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/network_page.h"

#include "ui/look/look.h"
#include "ui/pages/page_parts.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/kiv_get_number.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

QGridLayout* addGrid(QVBoxLayout* column) {
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(look::kMargin);
    grid->setVerticalSpacing(6);
    grid->setColumnStretch(1, 1);
    column->addLayout(grid);
    return grid;
}

void addRow(QGridLayout* grid, const QString& caption, QWidget* box, Qt::Alignment alignment = {}) {
    auto* label = new QLabel(caption, box->parentWidget());
    label->setBuddy(box);
    const int row = grid->rowCount();
    grid->addWidget(label, row, 0);
    grid->addWidget(box, row, 1, alignment);
}

QLineEdit* addText(QGridLayout* grid, QWidget* group, const QString& caption, const QString& name,
                   TextBox& record, const QString& example) {
    QLineEdit* box = makeText(group, name, record);
    box->setPlaceholderText(example);
    addRow(grid, caption, box);
    return box;
}

void addState(QVBoxLayout* column, NetworkControls& network) {
    auto* state = new QLabel(column->parentWidget());
    state->setObjectName(u"GatewayState"_s);
    state->setWordWrap(true);
    state->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    bind(state, network.StateText);
    follow(state, network.StateText.Caption,
           [state](const QString& text) { state->setHidden(text.isEmpty()); });
    column->addWidget(state);
}

QWidget* makeHttp(NetworkControls& network, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Web page, Alpaca, INDI, metrics"_s);
    QWidget* group = column->parentWidget();
    column->addWidget(makeCheck(group, u"GatewayServe"_s, u"Run the gateway"_s, network.Serve));
    addHint(column, u"A program of its own that shows this monitor's state to others. Without the "
                    u"monitor it says unsafe."_s);
    addState(column, network);
    addOptions(column, "GatewayReach", {u"&This computer only"_s, u"The whole netwo&rk"_s},
               network.Reach);
    QGridLayout* grid = addGrid(column);
    addRow(grid, u"Port"_s, makeNumber(group, u"GatewayPort"_s, network.Port), Qt::AlignLeft);
    addText(grid, group, u"Elevation (m)"_s, u"GatewayElevation"_s, network.Elevation,
            u"of the site, for the pressure there"_s);
    addText(grid, group, u"Host &name"_s, u"GatewayHostName"_s, network.HostName,
            u"a further one, as of a reverse proxy"_s);
    column->addWidget(makeCheck(group, u"GatewayAllowSwitch"_s, u"Clients may &move the roof"_s,
                                network.AllowSwitch));
    addHint(column, u"Close it always, open it only while it is safe. Anyone who reaches the port "
                    u"can do so: there is no password."_s);
    column->addStretch();
    return group;
}

QWidget* makeMqtt(NetworkControls& network, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"MQTT and Home Assistant"_s);
    QWidget* group = column->parentWidget();
    QGridLayout* grid = addGrid(column);
    addText(grid, group, u"&Broker"_s, u"Broker"_s, network.Broker, u"none; host or host:port"_s);
    addText(grid, group, u"&User name"_s, u"BrokerUser"_s, network.BrokerUser, {});
    addText(grid, group, u"Pass&word"_s, u"BrokerPassword"_s, network.BrokerPassword, {})
        ->setEchoMode(QLineEdit::Password);
    addText(grid, group, u"To&pics begin with"_s, u"TopicPrefix"_s, network.TopicPrefix,
            u"skyhold/ and the computer"_s);
    grid->addWidget(
        makeCheck(group, u"BrokerTls"_s, u"&Encrypt the connection"_s, network.BrokerTls),
        grid->rowCount(), 0, 1, 2);
    addText(grid, group, u"Cert&ificates"_s, u"BrokerCertificates"_s, network.BrokerCertificates,
            u"those of the system, or a file"_s);
    column->addStretch();
    return group;
}

QWidget* makeHook(NetworkControls& network, QWidget* page) {
    QVBoxLayout* column = addGroup(page, u"Run a command on each change"_s);
    QWidget* group = column->parentWidget();
    QGridLayout* grid = addGrid(column);
    addText(grid, group, u"Comman&d"_s, u"Hook"_s, network.Hook, u"none"_s);
    addHint(column,
            u"It is run without a shell. It finds the event in SKYHOLD_EVENT (unsafe, safe, "
            u"waiting, source-failed, source-back, stopped or alarm), and the state as JSON "
            u"on its standard input."_s);
    return group;
}

} // namespace

QWidget* makeNetworkPage(NetworkControls& network, QWidget* parent) {
    auto* page = new QWidget(parent);
    QVBoxLayout* column = pageColumn(page);
    auto* row = new QHBoxLayout;
    row->setSpacing(look::kMargin);
    row->addWidget(makeHttp(network, page), 1);
    auto* right = new QVBoxLayout;
    right->setSpacing(look::kMargin);
    right->addWidget(makeMqtt(network, page));
    right->addWidget(makeHook(network, page));
    right->addStretch();
    row->addLayout(right, 1);
    column->addLayout(row);
    column->addStretch();
    addHint(column,
            u"MQTT and the command need the gateway to run. Changes take effect as they are "
            u"typed."_s);
    return page;
}

} // namespace skyhold
