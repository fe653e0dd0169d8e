// SPDX-License-Identifier: GPL-3.0-or-later
#include "ctl/command_line.h"

#include "ctl/members.h"
#include "ctl/values.h"

#include <limits>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qsizetype kAny = std::numeric_limits<qsizetype>::max();
constexpr double kShortestInterval = 0.1; // seconds
constexpr double kLongestInterval = 86'400;

struct CommandRow {
    const char16_t* name;
    const char16_t* arguments;
    qsizetype fewest, most;
    const char16_t* options; // that it takes
};

constexpr CommandRow kCommands[] = {
    {u"status", u"", 0, 0, u"json"},
    {u"roof-status", u"", 0, 0, u""},
    {u"watch", u"[NAMES...]", 0, kAny, u"json every"},
    {u"why", u"[TIME]", 0, 1, u"json database"},
    {u"history", u"", 0, 0, u"since until events readings json csv database"},
    {u"replay", u"", 0, 0, u"since until set from-csv suggest json database"},
    {u"check-station", u"FILE", 1, 1, u""},
    {u"fleet", u"[SITES...]", 0, kAny, u"json broker user password-file tls ca prefix wait"},
    {u"get", u"NAME", 1, 1, u"json"},
    {u"set", u"NAME VALUE", 2, 2, u""},
    {u"call", u"NAME [ARGUMENTS...]", 1, kAny, u"json"},
    {u"list", u"[PATTERN]", 0, 1, u"json"},
    {u"start", u"", 0, 0, u""},
    {u"stop", u"", 0, 0, u""},
    {u"help", u"", 0, 0, u""},
    {u"version", u"", 0, 0, u""},
};

struct OptionRow {
    const char16_t* name;
    const char16_t* takes; // empty: no value
};

constexpr OptionRow kOptions[] = {
    {u"json", u""},
    {u"csv", u""},
    {u"events", u""},
    {u"readings", u""},
    {u"suggest", u""},
    {u"every", u"a number of seconds"},
    {u"since", u"a time"},
    {u"until", u"a time"},
    {u"set", u"NAME=VALUE"},
    {u"from-csv", u"a file"},
    {u"database", u"a file"},
    {u"broker", u"HOST[:PORT]"},
    {u"user", u"a name"},
    {u"password-file", u"a file"},
    {u"tls", u""},
    {u"ca", u"a file"},
    {u"prefix", u"a topic"},
    {u"wait", u"a number of seconds"},
};

const OptionRow* optionOf(const QString& name) {
    for (const OptionRow& row : kOptions) {
        if (name == row.name)
            return &row;
    }
    return nullptr;
}

const CommandRow* rowOf(const QString& name) {
    for (const CommandRow& row : kCommands) {
        if (name == row.name)
            return &row;
    }
    return nullptr;
}

QString noSuchCommand(const QString& name) {
    QStringList names;
    for (const CommandRow& row : kCommands)
        names.append(QString::fromUtf16(row.name));
    const std::optional<QString> nearest = nearestName(name, names);
    return u"there is no command "_s + plainLine(name) +
           (nearest ? u"; did you mean %1?"_s.arg(*nearest) : u"; skyholdctl help lists them"_s);
}

// The options, and the other arguments in their order.
struct Options {
    QStringList plain;
    QMap<QString, QStringList> options;
};

std::optional<Options> parseOptions(const QStringList& arguments, QString& fault) {
    Options found;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == u"--"_s) {
            found.plain += arguments.mid(i + 1);
            break;
        }
        if (!argument.startsWith(u"--"_s)) {
            found.plain.append(argument);
            continue;
        }
        const qsizetype equals = argument.indexOf(u'=');
        const QString name = argument.mid(2, equals < 0 ? -1 : equals - 2);
        const OptionRow* row = optionOf(name);
        const bool takes = row && *row->takes != u'\0';
        if (!row || (!takes && equals >= 0)) {
            fault =
                u"there is no option "_s + plainLine(argument) + u"; skyholdctl help lists them"_s;
            return std::nullopt;
        }
        if (takes && equals < 0 && i + 1 == arguments.size()) {
            fault = u"--%1 takes %2"_s.arg(name, row->takes);
            return std::nullopt;
        }
        QString value;
        if (takes)
            value = equals >= 0 ? argument.mid(equals + 1) : arguments[++i];
        found.options[name] += value;
    }
    return found;
}

} // namespace

std::optional<Command> parseCommandLine(const QStringList& arguments, QString& fault) {
    fault.clear();
    if (arguments == QStringList{u"--help"_s} || arguments == QStringList{u"-h"_s})
        return Command{.name = u"help"_s};
    if (arguments == QStringList{u"--version"_s} || arguments == QStringList{u"-v"_s})
        return Command{.name = u"version"_s};
    const std::optional<Options> found = parseOptions(arguments, fault);
    if (!found)
        return std::nullopt;
    if (found->plain.isEmpty()) {
        fault = u"which command? skyholdctl help lists them"_s;
        return std::nullopt;
    }
    Command command{.name = found->plain.first(),
                    .arguments = found->plain.mid(1),
                    .json = found->options.contains(u"json"_s),
                    .options = found->options};
    const CommandRow* row = rowOf(command.name);
    if (!row) {
        fault = noSuchCommand(command.name);
        return std::nullopt;
    }
    if (command.arguments.size() < row->fewest || command.arguments.size() > row->most)
        fault = u"usage: skyholdctl %1 %2"_s.arg(row->name, row->arguments).trimmed();
    const QStringList taken = QString::fromUtf16(row->options).split(u' ');
    for (const QString& name : found->options.keys()) {
        if (!taken.contains(name))
            fault = u"%1 has no option --%2"_s.arg(command.name, name);
    }
    if (fault.isEmpty() && command.has(u"every"_s)) {
        const std::optional<QVariant> seconds =
            parseValue(command.option(u"every"_s), AutomationType::R8);
        command.everySeconds = seconds ? seconds->toDouble() : 0;
        if (command.everySeconds < kShortestInterval || command.everySeconds > kLongestInterval)
            fault = u"--every takes a number of seconds, 0.1 to 86400"_s;
    }
    return fault.isEmpty() ? std::optional(command) : std::nullopt;
}

QString usageText() {
    return uR"(usage: skyholdctl COMMAND [OPTIONS]

Queries and controls Kiv_Skyhold, which must be running; only "start" starts it. The history can be
read without it.

  status               the verdict, why, and all readings
  roof-status          the verdict for INDI's weather safety proxy, as a script of it
  watch [NAMES...]     a line at every change: of the status, or of these members
  why [TIME]           why the verdict is what it is, or was at that time
  history              verdicts with their causes, and other events
  replay               how often and how long the recorded weather is unsafe by the limits, and
                       by others
  check-station FILE   what the monitor reads from a weather station's file
  fleet [SITES...]     the verdicts of all sites at an MQTT broker, or of these
  get NAME             the value of a member
  set NAME VALUE       sets a property
  call NAME [ARGS...]  calls a method and prints its result
  list [PATTERN]       the members with their kinds and types
  start                starts monitoring, and the program if it is not running
  stop                 stops monitoring
  help                 this text
  version              the version of skyholdctl; get Version prints the monitor's

  --json               prints JSON (not set, start, stop)
  --every S            watch polls every S seconds (default: 1)
  --since T, --until T of history (default: the last day) and replay (the last week). A time is
                       2026-11-23, 2026-11-23T05:12 (Z for UTC), 23:41, or how long ago: 90min,
                       12h, 7d
  --events, --readings history prints every event, or the readings
  --csv                prints the history as CSV
  --set NAME=VALUE     replay with another limit, delay or sector; may be repeated
  --from-csv FILE      replay of a user data file or a log instead of the history
  --suggest            replay prints what was measured in safe nights beside the limits
  --database FILE      another history than the monitor's
  --broker HOST[:PORT] of fleet (default: localhost); --user NAME with the password in the environment
                       (SKYHOLD_MQTT_PASSWORD) or in --password-file FILE; --tls, --ca FILE; --prefix
                       TOPIC below which the sites are (default: skyhold); --wait S for what comes
  --                   everything after it is an argument

Numbers have a "." whatever the locale; booleans are true and false.

Exit status: status ends with 0 only when it is safe, 1 when it is unsafe, and 2 when that is not
known, for whatever reason; check-station with 0 when all can be judged, 1 when the monitor would say
unsafe, and 2 when the file cannot be read; fleet with 0 only when all sites are safe, 1 when one is not,
and 2 when the broker cannot be asked. The other commands end with 0 when they succeeded, else with 2.
)"_s;
}

} // namespace skyhold
