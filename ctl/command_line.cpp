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
    bool json, every;
};

constexpr CommandRow kCommands[] = {
    {u"status", u"", 0, 0, true, false},
    {u"watch", u"[NAMES...]", 0, kAny, true, true},
    {u"get", u"NAME", 1, 1, true, false},
    {u"set", u"NAME VALUE", 2, 2, false, false},
    {u"call", u"NAME [ARGUMENTS...]", 1, kAny, true, false},
    {u"list", u"[PATTERN]", 0, 1, true, false},
    {u"start", u"", 0, 0, false, false},
    {u"stop", u"", 0, 0, false, false},
    {u"help", u"", 0, 0, false, false},
    {u"version", u"", 0, 0, false, false},
};

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

// What the options say, and the other arguments in their order.
struct Options {
    QStringList plain;
    bool json = false;
    std::optional<QString> every;
};

std::optional<Options> parseOptions(const QStringList& arguments, QString& fault) {
    const QString every = u"--every"_s;
    Options found;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == u"--"_s) {
            found.plain += arguments.mid(i + 1);
            break;
        }
        if (!argument.startsWith(u"--"_s)) {
            found.plain.append(argument);
        } else if (argument == u"--json"_s) {
            found.json = true;
        } else if (argument.startsWith(every + u'=')) {
            found.every = argument.mid(every.size() + 1);
        } else if (argument == every && i + 1 < arguments.size()) {
            found.every = arguments[++i];
        } else {
            fault = argument == every ? u"--every takes a number of seconds"_s
                                      : u"there is no option "_s + plainLine(argument);
            return std::nullopt;
        }
    }
    return found;
}

} // namespace

std::optional<Command> parseCommandLine(const QStringList& arguments, QString& fault) {
    fault.clear();
    if (arguments == QStringList{u"--help"_s} || arguments == QStringList{u"-h"_s})
        return Command{u"help"_s, {}};
    if (arguments == QStringList{u"--version"_s} || arguments == QStringList{u"-v"_s})
        return Command{u"version"_s, {}};
    const std::optional<Options> found = parseOptions(arguments, fault);
    if (!found)
        return std::nullopt;
    if (found->plain.isEmpty()) {
        fault = u"which command? skyholdctl help lists them"_s;
        return std::nullopt;
    }
    Command command{found->plain.first(), found->plain.mid(1), found->json};
    const CommandRow* row = rowOf(command.name);
    if (!row)
        fault = noSuchCommand(command.name);
    else if (command.arguments.size() < row->fewest || command.arguments.size() > row->most)
        fault = u"usage: skyholdctl %1 %2"_s.arg(row->name, row->arguments).trimmed();
    else if (command.json && !row->json)
        fault = u"%1 has no option --json"_s.arg(command.name);
    else if (found->every && !row->every)
        fault = u"%1 has no option --every"_s.arg(command.name);
    else if (found->every) {
        const std::optional<QVariant> seconds = parseValue(*found->every, AutomationType::R8);
        command.everySeconds = seconds ? seconds->toDouble() : 0;
        if (command.everySeconds < kShortestInterval || command.everySeconds > kLongestInterval)
            fault = u"--every takes a number of seconds, 0.1 to 86400"_s;
    }
    return fault.isEmpty() ? std::optional(command) : std::nullopt;
}

QString usageText() {
    return uR"(usage: skyholdctl COMMAND [OPTIONS]

Queries and controls Kiv_Skyhold, which must be running; only "start" starts it.

  status               the verdict, why, and all conditions with their values
  watch [NAMES...]     a line at every change: of the status, or of these members
  get NAME             the value of a member
  set NAME VALUE       sets a property
  call NAME [ARGS...]  calls a method and prints its result
  list [PATTERN]       the members with their kinds and types
  start                starts monitoring, and the program if it is not running
  stop                 stops monitoring
  help                 this text
  version              the version of skyholdctl; get Version prints the monitor's

  --json               prints JSON (status, watch, get, call, list)
  --every S            watch polls every S seconds (default: 1)
  --                   everything after it is an argument

Numbers have a "." whatever the locale; booleans are true and false.

Exit status: status ends with 0 only when it is safe, 1 when it is unsafe, and 2 when that is not
known, for whatever reason. The other commands end with 0 when they succeeded, else with 2.
)"_s;
}

} // namespace skyhold
