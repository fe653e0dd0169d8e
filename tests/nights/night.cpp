// SPDX-License-Identifier: GPL-3.0-or-later
#include "night.h"

#include "core/alarms.h"

#include <utility>

namespace skyhold {

namespace {

QVariant valueOf(const QString& text) {
    bool whole = false, number = false;
    const int integer = text.toInt(&whole);
    const double real = text.toDouble(&number);
    if (text == u"true" || text == u"false")
        return text == u"true";
    return whole ? QVariant(integer) : number ? QVariant(real) : QVariant(text);
}

QString colourName(const Lamp& lamp) {
    const Colour colour = lamp.FillColor;
    return colour == kRed      ? u"red"_s
           : colour == kGreen  ? u"green"_s
           : colour == kYellow ? u"yellow"_s
           : colour == kGrey   ? u"off"_s
                               : QString::number(colour, 16);
}

// The record without its three times.
QByteArray timeless(const QByteArray& record) {
    return record.mid(23, 57) + record.mid(93);
}

} // namespace

Night::Night() {
    for (const auto* graph : {"Wind", "Gust", "Dir", "Dew", "Hum", "Temp"}) {
        set(u"Graphs/Image"_s + QLatin1String(graph), u"0"_s);
        set(u"Graphs/Generate"_s + QLatin1String(graph), u"0"_s);
    }
    for (const auto* path : {"Window/PathName", "Window/PathNameCCDAP4", "Graphs/GraphImagePath"})
        set(QLatin1String(path), u"@"_s);
    set(u"Setup/HTMFile"_s, u"@/station.htm"_s);
}

void Night::set(const QString& key, const QString& text) {
    settings_.SaveSetting(key.section(u'/', 0, 0), key.section(u'/', 1),
                          QString(text).replace(u'@', folder_->path()));
}

QString Night::play(const QByteArray& table) {
    QStringList lines;
    for (const QString& line : QString::fromUtf8(table).split(u'\n'))
        lines += line.section(u'#', 0, 0).trimmed();
    lines.removeAll(QString());
    prepare(lines);
    QStringList columns;
    for (const QString& line : lines) {
        SCOPED_TRACE(qPrintable(line));
        const QStringList cells = line.section(u'|', 0, 0).split(u' ', Qt::SkipEmptyParts);
        if (cells.value(0) == u"columns")
            columns = cells;
        if (cells.isEmpty() || !cells[0][0].isDigit())
            continue;
        for (qsizetype i = 1; i < cells.size(); ++i) {
            if (cells[i] != u"=")
                happen(columns.value(i), cells[i]);
        }
        for (const QString& event : line.section(u'|', 1).split(u';', Qt::SkipEmptyParts))
            happen(event.trimmed().section(u' ', 0, 0), event.trimmed().section(u' ', 1).trimmed());
        for (int i = 0; i < cells[0].toInt(); ++i)
            playCycle();
    }
    endRun();
    return outcomes_;
}

void Night::prepare(const QStringList& lines) {
    for (const QString& line : lines) {
        const QString rest = line.section(u' ', 1);
        if (line.startsWith(u"set "))
            set(rest.section(u'=', 0, 0), rest.section(u'=', 1));
        if (!line.startsWith(u"alarm "))
            continue;
        for (const QString& key : rest.split(u' ', Qt::SkipEmptyParts)) {
            set(u"Alarms/"_s + key, folder_->write(key + u".wav"_s));
            set(u"Alarms/"_s + key + u"Stat"_s, u"1"_s);
        }
    }
    LoadMainWindow(*core_);
    form_.csv = records().stationFile.HTMFile.Caption.value().endsWith(u".csv");
    form_.monthFirst = records().units.DateFormat.Index == 1;
}

void Night::happen(const QString& word, const QString& rest) {
    static const QMap<QString, QString StationCells::*> kStationWords{
        {u"temp"_s, &StationCells::temperature}, {u"wind"_s, &StationCells::wind},
        {u"gust"_s, &StationCells::gust},        {u"dir"_s, &StationCells::direction},
        {u"rainmax"_s, &StationCells::rainMax},  {u"hum"_s, &StationCells::humidity},
        {u"dew"_s, &StationCells::dewPoint},     {u"baro"_s, &StationCells::barometer}};
    static const QMap<QString, QString> kSensorWords{{u"cloud"_s, u"Condition_Cloud"_s},
                                                     {u"rain"_s, u"Condition_Rain"_s},
                                                     {u"light"_s, u"Condition_Brightness"_s},
                                                     {u"sky"_s, u"SkyTemperature"_s},
                                                     {u"wet"_s, u"RainValue"_s},
                                                     {u"lux"_s, u"BrightnessValue"_s},
                                                     {u"amb"_s, u"AmbientTemperature"_s},
                                                     {u"heat"_s, u"RainHeaterPercent"_s}};
    if (kStationWords.contains(word))
        cells_.*kStationWords[word] = rest == u"none" ? QString() : rest;
    else if (kSensorWords.contains(word))
        sensor_.values[kSensorWords[word]] = valueOf(rest);
    else if (word == u"sensor") // MEMBER VALUE, what the sensor program answers from now on
        sensor_.values[rest.section(u' ', 0, 0)] = valueOf(rest.section(u' ', 1));
    else if (word == u"file")
        stationFile_ = rest;
    else if (word == u"units") // of the station: temperature and speed letter
        form_.temperatureUnit = rest[0], form_.speedUnit = rest[1];
    else
        use(word, rest);
}

// What a user or another program does, and what befalls the machine.
void Night::use(const QString& word, const QString& rest) {
    if (word == u"every") // seconds of a cycle
        seconds_ = rest.toInt();
    else if (word == u"wait") // seconds
        clock_.advanceSeconds(rest.toInt());
    else if (word == u"locale")
        QLocale::setDefault(QLocale(rest));
    else if (word == u"answering") // the sensor program: yes, no
        sensor_.answering = rest == u"yes";
    else if (word == u"present") {
        sensor_.present = rest == u"yes";
        sensor_.state = sensor_.present ? ObjectState::Ready : ObjectState::Gone;
    } else if (word == u"role") // 0: this program drives the switch
        records().session.SWRole.choose(rest.toInt());
    else if (word == u"record") // 0: the user starts to record, answering yes; 1: stops
        records().dataFile.RecOption.choose(rest.toInt());
    else if (word == u"counts") // station or sensor: whether its failure is unsafe, 0 or 1
        (rest.startsWith(u"station") ? records().conditions.WSDataOldUnsafe
                                     : records().conditions.NBDataOldUnsafe)
            .set(rest.last(1).toInt());
    else if (word == u"silence") // the Stop Alarm button
        stopAlarm(*core_);
    else if (word == u"let" || word == u"call") { // MEMBER ARGUMENT,... as a client does
        QVariantList arguments;
        if (rest.contains(u' ')) {
            for (const QString& text : rest.section(u' ', 1).split(u','))
                arguments += valueOf(text.trimmed());
        }
        const AutomationReply reply = members_->invokeByName(
            rest.section(u' ', 0, 0), word == u"let" ? kPropertyPut : kMethod, arguments);
        EXPECT_TRUE(reply.ok()) << qPrintable(reply.text);
    } else if (word == u"start" || word == u"stop") {
        writeStationFile();
        word == u"start" ? StartSession(*core_) : StopSession(*core_);
        note();
    } else
        ADD_FAILURE() << "no such word: " << qPrintable(word);
}

void Night::writeStationFile() {
    const QByteArray whole = stationText(cells_, clock_.now(), form_);
    const QString path = records().stationFile.HTMFile.Caption;
    if (stationFile_ == u"kept")
        return;
    QFile::remove(path);
    if (stationFile_ == u"gone")
        return;
    writeStationBytes(stationFile_ == u"torn"      ? whole.first(whole.size() / 2)
                      : stationFile_ == u"empty"   ? QByteArray()
                      : stationFile_ == u"rubbish" ? "no table here\r\n"
                                                   : whole);
    if (path != stationPath()) {
        EXPECT_TRUE(QFile::rename(stationPath(), path));
    }
}

void Night::playCycle() {
    clock_.advanceSeconds(seconds_);
    sensor_.values[u"LastReading"_s] =
        QVariant::fromValue(AutomationDate{daySerial(clock_.now().addSecs(-2))});
    writeStationFile();
    RunReadCycle(*core_);
    note();
}

// Whatever was not heard, shown or written before, below the time of the first cycle that came to
// this outcome.
void Night::note() {
    const ConditionControls& conditions = records().conditions;
    const ReadingDisplay& display = records().display;
    const QStringList messages{conditions.SafeDelayMsg.Caption, display.WSAlarmMsg.Caption,
                               display.NBAlarmMsg.Caption, messages_.join(u' ')};
    messages_.clear();
    const QStringList fields{conditions.LblStatus.Caption,
                             cause(),
                             messages.join(u' ').simplified(),
                             (records().readings.AlarmSoundId + u' ' + media_.heard()).trimmed(),
                             status(),
                             codes(),
                             colourName(conditions.LEDUnsafe) + u' ' + readLamps(),
                             display.LValSwitch.Visible ? display.LValSwitch.Caption : u"-"_s};
    const QString outcome = fields.join(u" | "_s) + written();
    const QString time = clock_.now().toString(u"hh:mm:ss"_s);
    if (outcome != outcome_ || outcome.contains(u'\n'))
        endRun();
    if (repeats_++ == 0)
        began_ = time;
    outcome_ = outcome;
}

void Night::endRun() {
    if (repeats_ > 0)
        outcomes_ += u"%1 x%2 %3\n"_s.arg(began_).arg(repeats_).arg(outcome_);
    repeats_ = 0;
}

// The colour of the read indicator. Its lamps take turns; a cycle in which they did not says so.
QString Night::readLamps() {
    const LampPair& lamps = records().display.LEDRead;
    const bool second = lamps.first.FillColor == kGrey;
    const bool turned = std::exchange(secondLampLit_, second) != second;
    const QString lit = colourName(second ? lamps.second : lamps.first);
    const bool both = !second && lamps.second.FillColor != kGrey;
    return both ? lit + u" both"_s : turned || lit == u"off" ? lit : lit + u" again"_s;
}

QString Night::written() {
    const auto read = [this](const QString& name) {
        return QFile::exists(folder_->filePath(name)) ? folder_->read(name) : QByteArray();
    };
    QString text;
    const QByteArray data = read(u"Skyhold.csv"_s);
    const QByteArray added = data.startsWith(dataFile_) ? data.mid(dataFile_.size()) : data;
    dataFile_ = data;
    for (const QByteArray& line : added.split('\n')) {
        if (!line.isEmpty())
            text += u"\n  data   "_s + QString::fromLatin1(line).replace(u'\r', u"\\r"_s);
    }
    const QByteArray record = read(u"Kiv_CCDAP4_II.dat"_s);
    if (timeless(std::exchange(record_, record)) != timeless(record))
        text += u"\n  record "_s + QString::fromLatin1(record);
    return text;
}

} // namespace skyhold
