#include "ctl/command_line.h"

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(CommandLine, understoodLines) {
    const struct {
        const char* line;
        QString name;
        QStringList arguments;
        bool json;
        double every;
    } cases[] = {
        {"status", u"status"_s, {}, false, 1},
        {"--json status", u"status"_s, {}, true, 1},
        {"get Safe --json", u"get"_s, {u"Safe"_s}, true, 1},
        {"set ColorWindCalm -5", u"set"_s, {u"ColorWindCalm"_s, u"-5"_s}, false, 1},
        {"call -- SetX --json", u"call"_s, {u"SetX"_s, u"--json"_s}, false, 1},
        {"set X -- --", u"set"_s, {u"X"_s, u"--"_s}, false, 1},
        {"watch", u"watch"_s, {}, false, 1},
        {"watch A B --every 2.5 --json", u"watch"_s, {u"A"_s, u"B"_s}, true, 2.5},
        {"watch --every=0.1", u"watch"_s, {}, false, 0.1},
        {"list", u"list"_s, {}, false, 1},
        {"list Cond*", u"list"_s, {u"Cond*"_s}, false, 1},
        {"--help", u"help"_s, {}, false, 1},
    };
    for (const auto& expected : cases) {
        QString fault = u"of an earlier line"_s;
        const auto command =
            parseCommandLine(QString::fromLatin1(expected.line).split(u' '), fault);
        ASSERT_TRUE(command) << expected.line << ": " << qPrintable(fault);
        EXPECT_EQ(command->name, expected.name) << expected.line;
        EXPECT_EQ(command->arguments, expected.arguments) << expected.line;
        EXPECT_EQ(command->json, expected.json) << expected.line;
        EXPECT_EQ(command->everySeconds, expected.every) << expected.line;
    }
}

TEST(CommandLine, refusedLinesSayWhy) {
    const struct {
        const char* line;
        QString part; // of what is said
    } cases[] = {
        {"stauts", u"did you mean status?"_s},
        {"frobnicate", u"skyholdctl help"_s},
        {"get", u"usage: skyholdctl get NAME"_s},
        {"get A B", u"usage: skyholdctl get NAME"_s},
        {"set A", u"usage: skyholdctl set NAME VALUE"_s},
        {"status now", u"usage: skyholdctl status"_s},
        {"set A 1 --json", u"set has no option --json"_s},
        {"status --every 2", u"status has no option --every"_s},
        {"status --help", u"no option --help"_s}, // would end with the status of "safe"
        {"get A --jsno", u"no option --jsno"_s},
        {"watch --every", u"--every takes"_s},
        {"watch --every 0", u"--every takes"_s},
        {"watch --every nan", u"--every takes"_s},
        {"watch --every 1,5", u"--every takes"_s},
        {"watch --every 1e9", u"--every takes"_s},
        {"--json", u"which command?"_s},
        {"--", u"which command?"_s},
    };
    for (const auto& [line, part] : cases) {
        QString fault;
        EXPECT_FALSE(parseCommandLine(QString::fromLatin1(line).split(u' '), fault)) << line;
        EXPECT_TRUE(fault.contains(part)) << line << ": " << qPrintable(fault);
    }
}

} // namespace
} // namespace skyhold
