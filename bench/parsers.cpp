// SPDX-License-Identifier: GPL-3.0-or-later
// Whether the time of every parser grows as its input does: time per byte from 4 to 64 MB, for
// usual inputs and for those on which a parser that looks ahead, or moves text more than once,
// would take hours; with the name of a parser that one alone. A file over 16 MB is refused at
// reading; the parsers themselves have no limit.
#include "bus/automation_value.h"
#include "conditions/sector_text.h"
#include "datafiles/station_number.h"
#include "datafiles/station_table.h"
#include "platform/settings_text.h"
#include "platform/text_encoding.h"
#include "settings/load_save.h"
#include "settings/stored_text.h"
#include "ui/widgets/number_text.h"
#include "units/cardinal.h"
#include "units/detection.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <functional>
#include <limits>

#include <malloc.h>
#include <sys/stat.h>

using namespace skyhold;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::array kMegabytes{4, 8, 16, 32, 64};
constexpr int kRuns = 3; // of which the fastest counts
// Nothing that grows faster than its input stays below; a list of many small texts, which leaves
// the caches, does.
constexpr double kMostGrowth = 2;
// What takes less is bound by memory: a text that fits into a cache is faster than one that does
// not.
constexpr double kFastest = 1.0; // nanoseconds a byte

using Parse = std::function<void(const QByteArray& bytes, const QString& text)>;

// `start`, then `part` again and again, then `end`.
struct Shape {
    const char* name;
    QByteArray start, part, end;

    QByteArray of(qsizetype size) const {
        const qsizetype count = (size - start.size() - end.size()) / part.size();
        return start + part.repeated(count) + end;
    }
};

template <class Value>
void useResult(const Value& value) {
    asm volatile("" : : "r"(&value) : "memory");
}

// Of this thread, so that other programs do not count.
qint64 cpuNanoseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return qint64{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

double nanosecondsPerByte(const Parse& parse, const QByteArray& bytes) {
    const QString text = QString::fromUtf8(bytes);
    qint64 fastest = std::numeric_limits<qint64>::max();
    for (int run = 0; run < kRuns; ++run) {
        const qint64 start = cpuNanoseconds();
        parse(bytes, text);
        fastest = std::min(fastest, cpuNanoseconds() - start);
    }
    return static_cast<double>(fastest) / static_cast<double>(bytes.size());
}

// Prints a row for each shape; false when one grows faster than its input.
bool measure(const char* parser, const std::vector<Shape>& shapes, const Parse& parse) {
    bool linear = true;
    if (QCoreApplication::arguments().value(1, QLatin1String(parser)) != QLatin1String(parser))
        return linear;
    for (const Shape& shape : shapes) {
        std::printf("%-16s %-26s", parser, shape.name);
        std::array<double, kMegabytes.size()> times{};
        for (std::size_t i = 0; i < times.size(); ++i) {
            times[i] = nanosecondsPerByte(parse, shape.of(qsizetype{kMegabytes[i]} << 20));
            std::printf(" %8.3f", times[i]);
            std::fflush(stdout);
        }
        const bool grows = times.back() > std::max(times.front(), kFastest) * kMostGrowth;
        linear = linear && !grows;
        std::printf(" %7.2f%s\n", times.back() / times.front(), grows ? "  GROWS" : "");
    }
    return linear;
}

bool tables() {
    const QByteArray row = "<tr><td>OutTemp</td><td>&deg;C</td><td class=x> 12.5&nbsp;</td></tr>\n";
    bool linear =
        measure("HTML table",
                {{"a page of rows", "<table>", row, "</table>"},
                 {"no table, one long line", {}, "abcdefgh", {}},
                 {"tables that do not end", {}, "<table><tr><td>", {}},
                 {"tables in tables", "<table>", "<tr><td><table>", "</table>"},
                 {"rows that do not end", "<table>", "<tr>", "</table>"},
                 {"empty rows", "<table>", "<tr></tr>", "</table>"},
                 {"cells that do not end", "<table><tr>", "<td>", "</tr></table>"},
                 {"tags that do not end", "<table><tr>", "<td", "</tr></table>"},
                 {"tiny cells", "<table>", "<tr><td>a</td></tr>", "</table>"},
                 {"one cell of <", "<table><tr><td>", "<", "</td></tr></table>"},
                 {"one cell of &", "<table><tr><td>", "&", "</td></tr></table>"},
                 {"entities", "<table><tr><td>", "&amp;", "</td></tr></table>"},
                 {"entities in entities", "<table><tr><td>&", "amp;", "</td></tr></table>"},
                 {"every entity", "<table><tr><td>", "&nbsp;&amp;&quot;&deg;&#&lt;&gt;%20'\r\n",
                  "</td></tr></table>"}},
                [](const QByteArray&, const QString& text) { useResult(ParseHtmlTable(text)); });
    linear =
        measure("CSV table",
                {{"a file of records", {}, "OutTemp,\"C\",12.5\r\n", {}},
                 {"one long line", {}, "abcdefgh", {}},
                 {"quotes", {}, "\"", {}},
                 {"a quote that does not end", "\"", "a,\n", {}},
                 {"commas", {}, ",", {}},
                 {"line ends", {}, "\r\n", {}},
                 {"blanks", {}, " ", {}},
                 {"blanks behind a field", "a", " ", "b"},
                 {"quoted fields", {}, "\"a\",", {}}},
                [](const QByteArray&, const QString& text) { useResult(ParseCsvTable(text)); }) &&
        linear;
    linear =
        measure("bytes to text",
                {{"ASCII", {}, "abcdefgh", {}},
                 {"UTF-8", {}, "\xc2\xb0\x43", {}},
                 {"ANSI", {}, "\xb0\x80\x99", {}},
                 {"ANSI in the last byte", {}, "\xc2\xb0", "\xb0"}},
                [](const QByteArray& bytes, const QString&) { useResult(decodeText(bytes)); }) &&
        linear;
    return measure("find a row", {{"a name that is not there", {}, "Name,C,1\n", {}}},
                   [](const QByteArray&, const QString& text) {
                       // Once for each of twelve names.
                       const StationTable table = ParseCsvTable(text);
                       for (int name = 0; name < 12; ++name)
                           useResult(FindRow(table, u"Gust"));
                   }) &&
           linear;
}

bool values() {
    const NumberForms comma{u","_s, u"."_s};
    const std::vector<Shape> shapes{{"digits", {}, "1", {}},         {"points", {}, "1.", {}},
                                    {"commas", {}, "1,", {}},        {"blanks", "1", " ", "1"},
                                    {"blanks around", {}, " ", "1"}, {"signs", {}, "-", {}},
                                    {"colons", {}, "1:", {}},        {"slashes", {}, "1/", {}}};
    const std::array<QString, 16> labels{u"N"_s, u"NNE"_s};
    UnitControls units;
    units.StringDC = u"C;degC"_s;
    units.StringKPH = u"KM/HR KM/H KPH"_s;
    bool linear = measure("station value", shapes, [&](const QByteArray&, const QString& text) {
        useResult(ParseStationNumber(text, comma));
        useResult(parseLocaleNumber(text, comma));
        useResult(ParseStationDate(text, 0));
        useResult(parseStationTime(text));
        useResult(CardinalToDegrees(text, labels));
        useResult(DetectTemperatureUnit(text, units));
        useResult(DetectSpeedUnit(text, units, SpeedCode::KilometresPerHour));
    });
    linear = measure("sector text", shapes,
                     [](const QByteArray&, const QString& text) {
                         useResult(parseSector(text));
                         useResult(sectorForEditing(text));
                     }) &&
             linear;
    linear = measure("stored number", shapes,
                     [&](const QByteArray&, const QString& text) {
                         useResult(storedNumber(text, comma));
                     }) &&
             linear;
    const NumberEntry entry{.AllowNegative = true, .forms = comma};
    return measure("number box", shapes,
                   [&](const QByteArray&, const QString& text) {
                       useResult(numberOfText(text, entry.forms));
                       useResult(beginsWithNumber(text, entry.forms));
                       useResult(textAfterChange(text, entry));
                       useResult(canBeTyped(text, entry));
                       useResult(keyPasses(u'1', text, {text.size(), 0}, entry));
                   }) &&
           linear;
}

bool settings(const QTemporaryDir& folder) {
    int last = 0;
    return measure("settings file",
                   {{"one long value", "[Window]\nKiv_News=", "abcdefgh", "\n"},
                    {"one key again and again", "[Limit]\n", "WindCalm=12.5\n", {}},
                    {"empty lines", "[Limit]\n", "\n", {}},
                    {"sections", {}, "[Limit]\n", {}},
                    {"a section that does not end", "[", "a", {}},
                    {"quotes", "[Window]\nKiv_News=", "\"", "\n"},
                    {"escapes", "[Window]\nKiv_News=", "\\x0", "\n"},
                    {"a list of commas", "[Window]\nKiv_News=", "a,", "\n"},
                    {"lines without a value", "[Limit]\n", "WindCalm\n", {}}},
                   [&](const QByteArray& bytes, const QString&) {
                       // A name of its own for each: Qt keeps the contents of files that it has
                       // read.
                       const QString name = u"bench%1"_s.arg(++last);
                       QFile file(folder.filePath(u"Kiv/%1.ini"_s.arg(name)));
                       if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
                           std::abort();
                       file.close();
                       Records records;
                       LoadSettings(records, SettingsStore(name), {});
                       file.remove();
                       // Others take its place among those kept, or their memory would be measured.
                       for (int other = 0; other < 40; ++other)
                           QSettings(folder.filePath(u"other%1.ini"_s.arg(other)),
                                     settingsFormat());
                   });
}

bool automation() {
    return measure("automation value", {{"arrays of numbers", {}, "12345678", {}}},
                   [](const QByteArray& bytes, const QString&) {
                       // As many bytes as the numbers have on the bus.
                       QVariantList numbers(bytes.size() / 12, QVariant(1.5));
                       numbers.append(QVariant(numbers));
                       useResult(toBus(fromBus(QVariant(numbers))));
                   });
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    // The memory of a run stays for the next: fetching it anew, which would be done for the larger
    // inputs alone, is not the parsers' time.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    const QTemporaryDir folder;
    ::umask(S_IRWXG | S_IRWXO); // a settings file is its owner's alone
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    QDir(folder.path()).mkdir(u"Kiv"_s, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    std::printf("%-43s", "nanoseconds a byte");
    for (const int size : kMegabytes)
        std::printf(" %5d MB", size);
    std::printf(" %7s\n", "64 / 4");
    bool linear = tables();
    linear = values() && linear;
    linear = settings(folder) && linear;
    linear = automation() && linear;
    return linear ? 0 : 1;
}
