// SPDX-License-Identifier: GPL-3.0-or-later
// How the gateway brings the state to the network, which the monitor starts as a program of its
// own.
#pragma once

#include "records/controls.h"

namespace skyhold {

enum class GatewayState { Off, Starting, Serving, Failed };

struct NetworkControls {
    NetworkControls();

    CheckBox Serve;       // the monitor runs the gateway
    OptionGroup Reach;    // 0 this computer alone, 1 the whole network
    NumberBox Port;       // of HTTP, 1..65535
    CheckBox AllowSwitch; // clients may move the roof's switch
    TextBox Elevation;    // of the site, metres; empty: not known
    TextBox HostName;     // a further name that it goes by, as of a reverse proxy

    TextBox Broker; // HOST or HOST:PORT; empty: no MQTT
    TextBox BrokerUser, BrokerPassword;
    CheckBox BrokerTls;
    TextBox BrokerCertificates; // file of those to trust; empty: the system's
    TextBox TopicPrefix;        // empty: skyhold/SITE
    TextBox Hook;               // command to run on a change; empty: none

    QProperty<GatewayState> State{GatewayState::Off};
    Label StateText; // where it listens, or why it does not run
};

} // namespace skyhold
