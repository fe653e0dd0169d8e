#include "ctl/command_line.h"

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(CommandLine, understoodLines) {
    struct Expected {
        const char* line;
        QStringList words; // the command's name and its arguments
        bool json = false;
        double every = 1;
    };
    const Expected cases[] = {
        {"status", {u"status"_s}},
        {"--json status", {u"status"_s}, true},
        {"get Safe --json", {u"get"_s, u"Safe"_s}, true},
        {"set ColorWindCalm -5", {u"set"_s, u"ColorWindCalm"_s, u"-5"_s}},
        {"call -- SetX --json", {u"call"_s, u"SetX"_s, u"--json"_s}},
        {"set X -- --", {u"set"_s, u"X"_s, u"--"_s}},
        {"watch", {u"watch"_s}},
        {"watch A B --every 2.5 --json", {u"watch"_s, u"A"_s, u"B"_s}, true, 2.5},
        {"watch --every=0.1", {u"watch"_s}, false, 0.1},
        {"list", {u"list"_s}},
        {"list Cond*", {u"list"_s, u"Cond*"_s}},
        {"why --json 23:41", {u"why"_s, u"23:41"_s}, true},
        {"history --since 12h --csv --until=2026-11-23", {u"history"_s}},
        {"replay --set A=1 --set B=2", {u"replay"_s}},
        {"--help", {u"help"_s}},
        {"--version", {u"version"_s}},
    };
    for (const auto& [line, words, json, every] : cases) {
        QString fault = u"of an earlier line"_s;
        const auto command = parseCommandLine(QString::fromLatin1(line).split(u' '), fault);
        ASSERT_TRUE(command) << line << ": " << qPrintable(fault);
        EXPECT_EQ(QStringList{command->name} + command->arguments, words) << line;
        EXPECT_EQ(command->json, json) << line;
        EXPECT_EQ(command->everySeconds, every) << line;
    }
}

TEST(CommandLine, refusedLinesSayWhy) {
    const std::pair<const char*, const char*> cases[] = {
        {"stauts", "did you mean status?"},
        {"frobnicate", "skyholdctl help"},
        {"get", "usage: skyholdctl get NAME"},
        {"get A B", "usage: skyholdctl get NAME"},
        {"set A", "usage: skyholdctl set NAME VALUE"},
        {"status now", "usage: skyholdctl status"},
        {"set A 1 --json", "set has no option --json"},
        {"status --every 2", "status has no option --every"},
        {"status --help", "no option --help"}, // would end with the status of "safe"
        {"get A --jsno", "no option --jsno"},
        {"watch --every", "--every takes"},
        {"watch --every 0", "--every takes"},
        {"watch --every nan", "--every takes"},
        {"watch --every 1,5", "--every takes"},
        {"watch --every 1e9", "--every takes"},
        {"history --since", "--since takes a time"},
        {"history --set A=1", "history has no option --set"},
        {"history --csv=1", "no option --csv=1"},
        {"why a b", "usage: skyholdctl why [TIME]"},
        {"--json", "which command?"},
        {"--", "which command?"},
    };
    for (const auto& [line, part] : cases) {
        QString fault;
        EXPECT_FALSE(parseCommandLine(QString::fromLatin1(line).split(u' '), fault)) << line;
        EXPECT_TRUE(fault.contains(QLatin1String(part))) << line << ": " << qPrintable(fault);
    }
}

} // namespace
} // namespace skyhold
