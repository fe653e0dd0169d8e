// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensors/indi_reader.h"
#include "sensors/payload.h"

#include <gtest/gtest.h>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

const QByteArray kStream =
    "<defNumberVector device=\"W &amp; S\" name=\"P\" state=\"Ok\" perm=\"ro\">"
    "<defNumber name=\"T\" label=\"Temp (C)\" format=\"%g\" min=\"0\" max=\"1\">\n15\n</defNumber>"
    "<defNumber name=\"RA\" label=\"\">-0:30:36</defNumber></defNumberVector>\n"
    "<message device=\"W\" message=\"hello\"/>\n"
    "<newNumberVector device=\"W\" name=\"P\"><oneNumber "
    "name=\"T\">3</oneNumber></newNumberVector>\n"
    "<setLightVector device=\"W\" name=\"L\" state=\"Alert\"><oneLight name=\"R\">\n  "
    "Alert\n</oneLight>"
    "</setLightVector>\n<delProperty device=\"W\"/>\n";

} // namespace

TEST(IndiReader, ReadsMessagesHoweverTheyAreCut) {
    for (const qsizetype piece : {qsizetype{1}, qsizetype{7}, kStream.size()}) {
        QStringList seen;
        IndiReader reader([&seen](const IndiMessage& message) {
            QString line = u"%1 %2 %3.%4 %5"_s.arg(static_cast<int>(message.kind))
                               .arg(message.type, message.device, message.property, message.state);
            for (const IndiElement& element : message.elements)
                line += u" %1=%2"_s.arg(element.name, element.text);
            seen.append(line);
        });
        for (qsizetype at = 0; at < kStream.size(); at += piece)
            ASSERT_TRUE(reader.read(kStream.mid(at, piece)));
        EXPECT_EQ(seen, (QStringList{u"0 Number W & S.P Ok T=15 RA=-0.51"_s,
                                     u"1 Light W.L Alert R=Alert"_s, u"2  W. "_s}));
    }
}

TEST(IndiReader, GivesUpOnWhatIsNotIndi) {
    QByteArray many = "<setNumberVector device=\"W\" name=\"P\">";
    for (int i = 0; i < 600; ++i)
        many += "<oneNumber name=\"x\">1</oneNumber>";
    const QByteArray streams[] = {
        "HTTP/1.1 400 Bad Request\r\n\r\n<html>",
        "<a></b>",
        "</stream><x/>",
        "<!DOCTYPE a [<!ENTITY b \"c\">]>",
        "<a>&b;</a>",
        "<a><b><c><d><e><f>",
        "<setNumberVector device=\"" + QByteArray(300'000, 'x'),
        "<setNumberVector><oneNumber>" + QByteArray(300'000, '1'),
        many,
        QByteArray("\0\1\2", 3),
    };
    for (const QByteArray& stream : streams) {
        IndiReader reader([](const IndiMessage&) {});
        EXPECT_FALSE(reader.read(stream)) << stream.left(60).toStdString();
    }
}

TEST(Payload, FindsValuesInEveryForm) {
    struct Case {
        QByteArray text;
        QMap<QString, QString> values;
    };
    const Case cases[] = {
        {" 12.5\n", {{u"value"_s, u"12.5"_s}}},
        {"a=1\n# b=2\n c = two words \n\nd\n", {{u"a"_s, u"1"_s}, {u"c"_s, u"two words"_s}}},
        {"{\"a\":{\"b\":[1.5,\"x\",true,null]},\"c\":-3}",
         {{u"a.b.0"_s, u"1.5"_s},
          {u"a.b.1"_s, u"x"_s},
          {u"a.b.2"_s, u"true"_s},
          {u"a.b.3"_s, {}},
          {u"c"_s, u"-3"_s}}},
    };
    QString fault;
    for (const Case& row : cases)
        EXPECT_EQ(payloadValues(row.text, fault), row.values) << row.text.toStdString();
    EXPECT_EQ(fault, QString());
    for (const QByteArray& text : {QByteArray(), QByteArray("{\"a\":"), QByteArray("a\nb\n"),
                                   QByteArray("a=1\0", 4), QByteArray(70'000, '1')}) {
        fault.clear();
        EXPECT_EQ(payloadValues(text, fault), std::nullopt);
        EXPECT_NE(fault, QString());
    }
}

} // namespace skyhold
