// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/setup.h"

#include "platform/files.h"
#include "sensors/settings.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <unistd.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

// Where the usual devices have a value, and what its limits may begin with.
struct Suggestion {
    const char16_t* section;
    const char16_t* comment;
    const char16_t* rest;
    std::array<const char16_t*, 6> indi; // elements, "PROPERTY.ELEMENT"
    const char16_t* alpaca;
    const char16_t* key; // of a text or a message
};

constexpr Suggestion kSuggestions[] = {
    {u"cloud",
     u"Sky temperature: the clearer, the colder. Watch a few nights, then set the limits: level 1\n"
     u"# is clear, 2 cloudy, 3 overcast. less-air = yes compares the sky with the air instead.",
     u"unit = C\nlevel2 = above -13\nlevel3 = above -5\nhysteresis = 1\n",
     {u"WEATHER_PARAMETERS.WEATHER_SKY_TEMPERATURE", u"WEATHER_PARAMETERS.WEATHER_CLOUD"},
     u"SkyTemperature",
     u"sky_temperature"},
    {u"rain",
     u"Rain. level 1 is dry, 2 wet, 3 rain. For a sensor with a verdict write, for example,\n"
     u"# levels = 0 1, 1 3 and level-from instead of value and limits.",
     u"level2 = above 0\nlevel3 = above 0.2\n",
     {u"WEATHER_PARAMETERS.WEATHER_RAIN_RATE", u"WEATHER_PARAMETERS.WEATHER_RAIN_HOUR",
      u"WEATHER_PARAMETERS.WEATHER_RAIN", u"WEATHER_PARAMETERS.WEATHER_RAINFALL",
      u"WEATHER_PARAMETERS.WEATHER_RAIN_DETECTED"},
     u"RainRate",
     u"rain"},
    {u"temperature",
     u"Air temperature.",
     u"unit = C\n",
     {u"WEATHER_PARAMETERS.WEATHER_TEMPERATURE"},
     u"Temperature",
     u"temperature"},
    {u"brightness",
     u"Brightness. level 1 is dark, 2 light, 3 very light. Sky quality (mag/arcsec²) grows with\n"
     u"# darkness: level2 = below 17 there; illuminance (lux) grows with light: above.",
     u"level2 = below 17\nlevel3 = below 8\nhysteresis = 0.2\n",
     {u"SKY_QUALITY.SKY_BRIGHTNESS", u"WEATHER_PARAMETERS.WEATHER_MPAS",
      u"WEATHER_PARAMETERS.WEATHER_SKY_QUALITY", u"WEATHER_PARAMETERS.WEATHER_SKY_BRIGHTNESS"},
     u"SkyQuality",
     u"sky_quality"},
};

QString addressOf(const Suggestion& suggestion, const SetupAnswers& answers,
                  const std::vector<FoundValue>& found, bool& known) {
    known = true;
    if (answers.kind == u"indi") {
        for (const char16_t* element : suggestion.indi) {
            if (!element)
                break;
            QString address = answers.device + u'.' + QString::fromUtf16(element);
            if (std::ranges::find(found, address, &FoundValue::address) != found.end())
                return address;
        }
        known = found.empty(); // nobody knows what it has
        return answers.device + u'.' + QString::fromUtf16(suggestion.indi[0]);
    }
    if (answers.kind == u"alpaca")
        return QString::fromUtf16(suggestion.alpaca);
    const QString key = QString::fromUtf16(suggestion.key);
    return answers.kind == u"mqtt" ? answers.device + u'#' + key : key;
}

QString sourceText(const SetupAnswers& answers) {
    const QString& where = answers.where;
    if (answers.kind == u"indi")
        return u"server = %1\n# Its devices are asked to connect. yes or no\nconnect = yes\n"
               "# Seconds between readings that weather drivers are asked for; 0 leaves it\n"
               "period = 10\n"_s.arg(where);
    if (answers.kind == u"alpaca")
        return u"url = %1\ndevice = %2\nevery = 5\n"_s.arg(where, answers.device);
    if (answers.kind == u"mqtt")
        return u"broker = %1\n# user = \n# password = \n# tls = yes\n# ca = a certificate's file, "
               "where the system does not know it\n"_s.arg(where);
    if (answers.kind == u"command")
        return u"# It prints lines \"key = value\", or JSON\ncommand = %1\nevery = 10\n"_s.arg(
            where);
    return u"# Lines \"key = value\" with a line end behind the last, or JSON\npath = %1\n"_s.arg(
        where);
}

QString ask(const QString& question, const QString& otherwise) {
    std::printf("%s [%s] ", qUtf8Printable(question), qUtf8Printable(otherwise));
    std::fflush(stdout);
    std::string line;
    if (!std::getline(std::cin, line))
        return otherwise;
    const QString answer = QString::fromUtf8(line).trimmed();
    return answer.isEmpty() ? otherwise : answer;
}

// Readable for its owner alone: a password may come into it. Never over another file.
bool writeNew(const QString& path, const QByteArray& bytes) {
    const int fd =
        ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    QFile file;
    return fd >= 0 && file.open(fd, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle) &&
           file.write(bytes) == bytes.size() && file.flush();
}

int fail(const QString& text) {
    std::fprintf(stderr, "skyhold-sensor: %s\n", qUtf8Printable(text));
    return 1;
}

} // namespace

QString settingsText(const SetupAnswers& answers, const std::vector<FoundValue>& found) {
    QString text =
        u"# Settings of skyhold-sensor, the cloud and rain sensor's program of Kiv_Skyhold.\n"
        "# docs/sensors.md describes every key. skyhold-sensor --check shows what it measures.\n\n"
        "[sensor]\n# MASTER drives the roof by the [switch] below; SLAVE has no roof.\n"
        "role = %1\n\n[source main]\nkind = %2\n"_s.arg(answers.master ? u"MASTER"_s : u"SLAVE"_s,
                                                        answers.kind) +
        sourceText(answers);
    for (const Suggestion& suggestion : kSuggestions) {
        bool known = false;
        const QString address = addressOf(suggestion, answers, found, known);
        const bool wanted =
            known && (suggestion.section != QStringView(u"brightness") || answers.brightness);
        QString section =
            u"[%1]\nvalue = main: %2\n%3"_s.arg(suggestion.section, address, suggestion.rest);
        section += u"# Seconds after which a value counts as missing\nmax-age = 60\n"_s;
        if (!wanted)
            section = u"#"_s + section.chopped(1).replace(u"\n"_s, u"\n#"_s) + u'\n';
        text += u"\n# "_s + QString::fromUtf16(suggestion.comment) + u'\n' + section;
    }
    QString roof = u"[switch]\nkind = command\nopen = /usr/local/bin/roof open\n"
                   "close = /usr/local/bin/roof close\n# It prints \"open\" or \"closed\"\n"
                   "state = /usr/local/bin/roof state\n"
                   "# A roof that was opened for the monitor is closed when the monitor has been "
                   "silent so long\nclose-after = 180\n"_s;
    if (!answers.master)
        roof = u"# Of a MASTER:\n#"_s + roof.chopped(1).replace(u"\n"_s, u"\n#"_s) + u'\n';
    text += u'\n' + roof;
    return text;
}

int setUp(const QString& path) {
    if (QFileInfo::exists(path))
        return fail(path + u" exists; change it with an editor, or move it away"_s);
    SetupAnswers answers;
    const QStringList kinds{u"indi"_s, u"alpaca"_s, u"mqtt"_s, u"file"_s, u"command"_s};
    answers.kind =
        ask(u"1. What does the sensor speak: indi, alpaca, mqtt, file or command?"_s, u"indi"_s)
            .toLower();
    if (!kinds.contains(answers.kind))
        return fail(u"there is no kind "_s + answers.kind);
    const bool indi = answers.kind == u"indi";
    const QMap<QString, QString> places{{u"indi"_s, u"localhost:7624"_s},
                                        {u"alpaca"_s, u"http://localhost:11111"_s},
                                        {u"mqtt"_s, u"localhost:1883"_s},
                                        {u"file"_s, u"/run/sensor/values"_s},
                                        {u"command"_s, u"/usr/local/bin/read-sensor"_s}};
    answers.where =
        ask(u"2. Where is it: host and port, URL, path or command?"_s, places[answers.kind]);
    std::vector<FoundDevice> devices;
    QString suggested = answers.kind == u"alpaca" ? u"observingconditions/0"_s
                        : answers.kind == u"mqtt" ? u"observatory/sensor"_s
                                                  : u"none"_s;
    if (indi) {
        QString fault;
        devices = findIndiDevices(answers.where, 3, fault).value_or(std::vector<FoundDevice>());
        QStringList names;
        for (const FoundDevice& device : devices)
            names.append(device.name);
        std::printf("%s\n",
                    qUtf8Printable(devices.empty() ? u"(no devices there yet) "_s + fault
                                                   : u"There are: "_s + names.join(u", "_s)));
        suggested = names.isEmpty() ? u"Weather Station"_s : names.first();
    }
    answers.device = ask(u"3. Which device, or topic?"_s, suggested);
    answers.brightness =
        ask(u"4. Does it measure the brightness of the sky: yes or no?"_s, u"no"_s) == u"yes";
    answers.master =
        ask(u"5. Is this program to open and close the roof: yes or no?"_s, u"no"_s) == u"yes";
    std::vector<FoundValue> values;
    if (!devices.empty()) {
        QString fault;
        devices = findIndiDevices(answers.where, 3, fault, answers.device)
                      .value_or(std::vector<FoundDevice>());
    }
    for (const FoundDevice& device : devices) {
        if (device.name == answers.device)
            values = device.values;
    }
    if (!std::cin)
        return fail(u"the answers ended too early: nothing is written"_s);
    if (!createFolder(QFileInfo(path).path()) ||
        !writeNew(path, settingsText(answers, values).toUtf8()))
        return fail(path + u" cannot be written"_s);
    std::printf("Written: %s\nLook through it, then run skyhold-sensor --check.\n",
                qUtf8Printable(path));
    return 0;
}

} // namespace skyhold
