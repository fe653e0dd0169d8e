// SPDX-License-Identifier: GPL-3.0-or-later
#include "state_of.h"

#include <gtest/gtest.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

struct Case {
    const char* method;
    QByteArray path; // behind /api/v1/
    QByteArray body;
    int status;
    const char* holds; // a part of the answer
};

void check(HeardSite& heard, std::span<const Case> cases) {
    for (const Case& row : cases) {
        const Answer answer = heard.answer(row.method, "/api/v1/" + row.path, row.body);
        EXPECT_EQ(answer.status, row.status) << row.method << ' ' << row.path.toStdString();
        EXPECT_TRUE(answer.body.contains(row.holds))
            << row.path.toStdString() << ": " << answer.body.toStdString();
    }
}

QJsonObject with(QJsonObject document, const QString& name, const QJsonValue& value) {
    document[name] = value;
    return document;
}

} // namespace

TEST(Alpaca, ReadsRequestsAsTheApiHasThem) {
    HeardSite heard(safeDocument());
    const Case cases[] = {
        {"GET", "safetymonitor/0/issafe?clientid=1&CLIENTTRANSACTIONID=77", "", 200,
         R"({"Value":true,"ClientTransactionID":77,"ServerTransactionID":1,"ErrorNumber":0,"ErrorMessage":""})"},
        {"GET", "safetymonitor/0/issafe", "", 200,
         R"("ClientTransactionID":0,"ServerTransactionID":2,)"},
        {"GET", "safetymonitor/0/issafe?ClientID=", "", 400, "ClientID"},
        {"GET", "safetymonitor/0/issafe?ClientID=-1", "", 400, "ClientID"},
        {"GET", "safetymonitor/0/issafe?ClientTransactionID=x", "", 400, "ClientTransactionID"},
        {"GET", "safetymonitor/0/issafe?ClientTransactionID=4294967296", "", 400, "4294967295"},
        {"GET", "safetymonitor/0/issafe?ClientTransactionID=4294967295", "", 200, "4294967295"},
        {"GET", "safetymonitor/0/issafe?ClientID=%20", "", 400, "ClientID"},
        {"POST", "safetymonitor/0/issafe", "", 400, "verbs are GET and PUT"},
        {"GET", "safetymonitor/1/issafe", "", 400, "device number"},
        {"GET", "safetymonitor/-1/issafe", "", 400, "device number"},
        {"GET", "safetymonitor/0/ISSAFE", "", 400, "no such command"},
        {"GET", "SafetyMonitor/0/issafe", "", 400, "no such device"},
        {"GET", "safetymonitor/0/issafe/", "", 400, "no such device"},
        {"GET", "safetymonitor/0/windspeed", "", 400, "no such command"},
        {"PUT", "safetymonitor/0/issafe", "", 400, "cannot be written"},
        {"GET", "safetymonitor/0/action", "", 400, "cannot be read"},
        {"PUT", "safetymonitor/0/connected", "", 400, "Connected is missing"},
        {"PUT", "safetymonitor/0/connected", "connected=true", 400, "Connected is missing"},
        {"PUT", "safetymonitor/0/connected", "Connected=1", 400, "cannot be read"},
        {"PUT", "safetymonitor/0/connected", "Connected=%zz", 400, "cannot be read"},
        {"PUT", "safetymonitor/0/connected", "Connected=TRUE&ClientTransactionID=5&ClientID=9", 200,
         R"({"ClientTransactionID":5,)"},
        {"PUT", "safetymonitor/0/connected", "Connected=true&clienttransactionid=5", 200,
         R"({"ClientTransactionID":0,)"},
        {"GET", "safetymonitor/0/connected?ClientID=9", "", 200, R"("Value":true)"},
        {"GET", "safetymonitor/0/connected?ClientID=8", "", 200, R"("Value":false)"},
        {"PUT", "safetymonitor/0/disconnect", "ClientID=9", 200, R"("ErrorNumber":0)"},
        {"GET", "safetymonitor/0/connected?ClientID=9", "", 200, R"("Value":false)"},
        {"PUT", "safetymonitor/0/action", "Action=safetyevents", 200, R"("Value":"[]")"},
        {"PUT", "safetymonitor/0/action", "Action=Open+it&Parameters=", 200,
         R"("Value":"","ClientTransactionID":0,"ServerTransactionID":11,"ErrorNumber":1036,"ErrorMessage":"action: Action \"Open it\" is unknown; known: SafetyEvents")"},
        {"PUT", "safetymonitor/0/commandbool", "Command=x&Raw=true", 200, R"("Value":false)"},
        {"PUT", "safetymonitor/0/commandblind", "Command=x&Raw=maybe", 400,
         R"(Raw "maybe" cannot be read; it takes true or false)"},
        {"GET", "safetymonitor/0/interfaceversion", "", 200, R"("Value":3,)"},
        {"GET", "observingconditions/0/interfaceversion", "", 200, R"("Value":2,)"},
        {"GET", "safetymonitor/0/devicestate", "", 200,
         R"([{"Name":"IsSafe","Value":true},{"Name":"TimeStamp","Value":"2026-11-23T05:12:40Z"}])"},
    };
    check(heard, cases);
}

TEST(Alpaca, IsSafeOnlyWhileTheDocumentSaysSoAndCounts) {
    struct Row {
        QJsonObject document;
        std::int64_t laterMs;
        bool safe;
    };
    const QJsonObject safe = safeDocument();
    const Row rows[] = {
        {safe, 0, true},
        {safe, 17'000, true}, // 1.5 intervals and 2 s
        {safe, 17'001, false},
        {with(safe, u"safe"_s, false), 0, false},
        {with(safe, u"safe"_s, u"true"_s), 0, false},
        {with(safe, u"safe"_s, 1), 0, false},
        {with(safe, u"verdict"_s, u"waiting"_s), 0, false},
        {with(safe, u"session"_s, u"idle"_s), 0, false},
        {with(safe, u"interval_s"_s, u"?"_s), 2001, false},
        {with(safe, u"interval_s"_s, -5), 2001, false},
        {with(safe, u"interval_s"_s, 1e9), 902'001, false},
        {QJsonObject(), 0, false},
    };
    for (const Row& row : rows) {
        HeardSite heard(row.document);
        heard.nowMs += row.laterMs;
        const Answer answer = heard.answer("GET", "/api/v1/safetymonitor/0/issafe");
        EXPECT_EQ(answer.status, 200);
        EXPECT_TRUE(answer.body.contains("\"ErrorNumber\":0"));
        EXPECT_EQ(answer.body.contains("\"Value\":true"), row.safe)
            << QJsonDocument(row.document).toJson().toStdString() << row.laterMs;
    }
}

TEST(Alpaca, GivesReadingsInItsUnitsOrSaysThatTheyAreNotKnown) {
    HeardSite heard(safeDocument());
    const QByteArray oc = "observingconditions/0/";
    const Case cases[] = {
        {"GET", oc + "temperature", "", 200, R"("Value":10,)"},
        {"GET", oc + "skytemperature", "", 200, R"("Value":-20,)"},
        {"GET", oc + "humidity", "", 200, R"("Value":80.5,)"},
        {"GET", oc + "windspeed", "", 200, R"("Value":10,)"},
        {"GET", oc + "windgust", "", 200, R"("Value":0.0,)"}, // in a unit that is not known
        {"GET", oc + "windgust", "", 200, R"("ErrorNumber":1035)"},
        {"GET", oc + "dewpoint", "", 200, R"("ErrorNumber":1035)"},
        {"GET", oc + "winddirection", "", 200, R"("Value":360,)"},
        {"GET", oc + "pressure", "", 200, R"("ErrorNumber":1024)"},
        {"GET", oc + "cloudcover", "", 200, R"("ErrorNumber":1024)"},
        {"GET", oc + "averageperiod", "", 200, R"("Value":0,)"},
        {"PUT", oc + "averageperiod", "AveragePeriod=0.0", 200, R"("ErrorNumber":0)"},
        {"PUT", oc + "averageperiod", "AveragePeriod=-1", 200, R"("ErrorNumber":1025)"},
        {"PUT", oc + "averageperiod", "AveragePeriod=nan", 400, "cannot be read"},
        {"GET", oc + "sensordescription?SensorName=skytemperature", "", 200, "cloud sensor"},
        {"GET", oc + "sensordescription?SensorName=StarFWHM", "", 200, R"("ErrorNumber":1024)"},
        {"GET", oc + "sensordescription?SensorName=", "", 200, R"("ErrorNumber":1025)"},
        {"GET", oc + "sensordescription", "", 400, "SensorName is missing"},
        {"GET", oc + "timesincelastupdate?sensorname=", "", 200, R"("Value":2,)"},
        {"GET", oc + "timesincelastupdate?SensorName=WindSpeed", "", 200, R"("Value":12,)"},
        {"PUT", oc + "refresh", "", 200, R"("ErrorNumber":0)"},
        {"GET", oc + "devicestate", "", 200, R"({"Name":"WindSpeed","Value":10})"},
    };
    check(heard, cases);
    heard.site.alpaca.elevation = 1000;
    const Answer pressure = heard.answer("GET", "/api/v1/" + oc + "pressure");
    const double hpa = QJsonDocument::fromJson(pressure.body)[u"Value"].toDouble();
    EXPECT_NEAR(hpa, 901.3, 0.5); // of 1015.9 at the sea, at 10 °C

    heard.nowMs += 20'000;
    for (const char* name : {"temperature", "skytemperature", "pressure", "winddirection"}) {
        const Answer stale = heard.answer("GET", "/api/v1/" + oc + name);
        EXPECT_TRUE(stale.body.contains(R"("Value":0.0,)") &&
                    stale.body.contains(R"("ErrorNumber":1035)"))
            << stale.body.toStdString();
    }

    QJsonObject failed = safeDocument();
    QJsonObject sources = failed[u"sources"_s].toObject();
    sources[u"station"_s] = QJsonObject{{u"state"_s, u"old"_s}};
    failed[u"sources"_s] = sources;
    HeardSite half(failed);
    EXPECT_TRUE(half.answer("GET", "/api/v1/" + oc + "temperature").body.contains("1035"));
    EXPECT_TRUE(half.answer("GET", "/api/v1/" + oc + "skytemperature").body.contains("-20"));
    QJsonObject calm = safeDocument();
    QJsonObject readings = calm[u"readings"_s].toObject();
    readings[u"wind"_s] = measuredValue(0, u"mph"_s);
    readings[u"wind_direction"_s] = measuredValue(90, u"°"_s);
    calm[u"readings"_s] = readings;
    HeardSite still(calm);
    EXPECT_TRUE(
        still.answer("GET", "/api/v1/" + oc + "winddirection").body.contains("\"Value\":0,"));
}

TEST(Alpaca, MovesTheRoofOnlyWhereItMay) {
    struct Row {
        bool allowed;
        QJsonObject document;
        std::int64_t laterMs;
        const char* body;
        int error;
        const char* moved; // "", "open", "closed"
    };
    const QJsonObject safe = safeDocument();
    const QJsonObject unsafe = with(safe, u"safe"_s, false);
    const QJsonObject driven =
        with(safe, u"roof"_s, QJsonObject{{u"driven"_s, true}, {u"state"_s, u"open"_s}});
    const QJsonObject idle = with(safe, u"session"_s, u"idle"_s);
    const Row rows[] = {
        {true, safe, 0, "Id=0&State=true", 0, "open"},
        {true, safe, 0, "Id=0&State=false", 0, "closed"},
        {true, unsafe, 0, "Id=0&State=true", 0x500, ""},
        {true, unsafe, 0, "Id=0&State=false", 0, "closed"},
        {true, safe, 60'000, "Id=0&State=true", 0x500, ""},
        {true, driven, 0, "Id=0&State=false", 0x500, ""},
        {true, idle, 0, "Id=0&State=false", 0x500, ""},
        {false, safe, 0, "Id=0&State=false", 0x400, ""},
        {true, safe, 0, "Id=1&State=true", 0x400, ""},
        {true, safe, 0, "Id=3&State=true", 0x401, ""},
        {true, safe, 0, "Id=-1&State=false", 0x401, ""},
    };
    for (const Row& row : rows) {
        HeardSite heard(row.document);
        heard.nowMs += row.laterMs;
        heard.site.alpaca.allowSwitch = row.allowed;
        QByteArray moved;
        heard.site.alpaca.moveRoof = [&](bool open,
                                         const std::function<void(const QString&)>& done) {
            moved = open ? "open" : "closed";
            done({});
        };
        QByteArray body = row.body;
        for (const char* member : {"setswitch", "setswitchvalue"}) {
            moved.clear();
            const Answer answer =
                heard.answer("PUT", QByteArray("/api/v1/switch/0/") + member, body);
            const QJsonDocument json = QJsonDocument::fromJson(answer.body);
            EXPECT_EQ(json[u"ErrorNumber"].toInt(-1), row.error) << body.toStdString();
            EXPECT_EQ(moved, row.moved) << body.toStdString();
            body.replace("State=true", "Value=1").replace("State=false", "Value=0");
        }
    }
    HeardSite heard(safe);
    const Case cases[] = {
        {"GET", "switch/0/maxswitch", "", 200, R"("Value":3,)"},
        {"GET", "switch/0/getswitch?Id=0", "", 200, R"("Value":false,)"},
        {"GET", "switch/0/getswitch?id=1", "", 200, R"("Value":true,)"},
        {"GET", "switch/0/getswitchvalue?Id=2", "", 200, R"("Value":1,)"},
        {"GET", "switch/0/getswitch?Id=3", "", 200, "getswitch: Id 3 is not from 0 to 2"},
        {"GET", "switch/0/getswitch?Id=x", "", 400,
         R"(Id "x" cannot be read; it takes a whole number)"},
        {"GET", "switch/0/getswitch", "", 400, "Id is missing"},
        {"GET", "switch/0/canwrite?Id=0", "", 200, R"("Value":false,)"},
        {"GET", "switch/0/canasync?Id=0", "", 200, R"("Value":false,)"},
        {"GET", "switch/0/statechangecomplete?Id=0", "", 200, R"("ErrorNumber":1024)"},
        {"PUT", "switch/0/setswitchname", "Id=0&Name=x", 200, R"("ErrorNumber":1024)"},
        {"PUT", "switch/0/setswitchvalue", "Id=0&Value=2", 200, R"("ErrorNumber":1024)"},
    };
    check(heard, cases);
    heard.site.alpaca.allowSwitch = true;
    const Case allowed[] = {
        {"GET", "switch/0/canwrite?Id=0", "", 200, R"("Value":true,)"},
        {"GET", "switch/0/canwrite?Id=1", "", 200, R"("Value":false,)"},
        {"PUT", "switch/0/setswitchvalue", "Id=0&Value=0.5", 200,
         "Value 0.5 of switch 0 is neither 0 nor 1"},
    };
    check(heard, allowed);
    heard.nowMs += 60'000;
    EXPECT_TRUE(heard.answer("GET", "/api/v1/switch/0/getswitch?Id=0").body.contains("1035"));
    EXPECT_TRUE(
        heard.answer("GET", "/api/v1/switch/0/getswitch?Id=2").body.contains("\"Value\":false"));
}

TEST(Alpaca, DescribesItself) {
    HeardSite heard(safeDocument());
    EXPECT_TRUE(heard.answer("GET", "/management/apiversions").body.contains("\"Value\":[1]"));
    const QJsonDocument description =
        QJsonDocument::fromJson(heard.answer("GET", "/management/v1/description").body);
    EXPECT_EQ(description[u"Value"][u"Location"].toString(), u"Hill \"1\"");
    const QJsonArray devices =
        QJsonDocument::fromJson(
            heard.answer("GET", "/management/v1/configureddevices").body)[u"Value"]
            .toArray();
    ASSERT_EQ(devices.size(), 3);
    EXPECT_NE(devices[0][u"UniqueID"].toString(), devices[1][u"UniqueID"].toString());
    const std::pair<const char*, int> asked[] = {
        {"/management/v2/description", 400},
        {"/management/apiversions?ClientID=-1", 400},
        {"/management/apiversions?clienttransactionid=x", 400},
        {"/api/v2/safetymonitor/0/issafe", 400},
        {"/api/V1/safetymonitor/0/issafe", 400},
        {"/setup", 200},
        {"/setup/v1/safetymonitor/0/setup", 200},
        {"/setup/v1/observingconditions/0/setup", 200},
        {"/setup/v1/switch/0/setup", 200},
        {"/setup/v1/switch/1/setup", 403},
        {"/setup/v1/dome/0/setup", 403},
        {"/setup/", 403},
    };
    for (const auto& [path, status] : asked)
        EXPECT_EQ(heard.answer("GET", path).status, status) << path;
    EXPECT_TRUE(heard.answer("GET", "/setup").body.contains("Hill &quot;1&quot;"));
    for (const QJsonValue& device : devices) {
        const QByteArray page =
            "/setup/v1/" + device[u"DeviceType"].toString().toLower().toLatin1();
        EXPECT_TRUE(heard.answer("GET", page + "/0/setup")
                        .body.contains(device[u"UniqueID"].toString().toLatin1()));
    }
}

} // namespace skyhold
