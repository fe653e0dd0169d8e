#include "ctl/status.h"

#include "ctl/values.h"

#include <algorithm>
#include <array>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;

struct ConditionRow {
    const char16_t* name;
    const char16_t* key;                       // of Kiv_DataDisplayed, spelled as it is there
    const char16_t* condition;                 // the member with the level, 0 unknown, 1 to 3
    std::array<const char16_t*, 3> unsafeFlag; // by level - 1
};

constexpr std::array<ConditionRow, 8> kConditions{{
    {u"Cloud", u"cloud", u"Condition_Cloud", {u"SafeClear", u"SafeCloudy", u"SafeOvercast"}},
    {u"Rain", u"rain", u"Condition_Rain", {u"SafeDry", u"SafeWet", u"SafeRain"}},
    {u"Brightness",
     u"brightnesss",
     u"Condition_Brightness",
     {u"SafeDark", u"SafeLight", u"SafeVLight"}},
    {u"Wind", u"wind", u"Condition_Wind", {u"SafeWindCalm", u"SafeWindWindy", u"SafeWindVWindy"}},
    {u"Gust", u"gust", u"Condition_Gust", {u"SafeGustCalm", u"SafeGustWindy", u"SafeGustVWindy"}},
    {u"Temperature",
     u"temperature",
     u"Condition_Temp",
     {u"SafeTempCold", u"SafeTempFine", u"SafeTempHot"}},
    {u"Dew point",
     u"dew",
     u"Condition_DewCond",
     {u"SafeDewCondensation", u"SafeDewHumid", u"SafeDewFine"}},
    {u"Humidity",
     u"humididty",
     u"Condition_HumCond",
     {u"SafeHumFine", u"SafeHumHumid", u"SafeHumVHumid"}},
}};

// Asks one member after another; after the first failure it asks no more, and every further answer
// is nothing.
class Questions {
  public:
    explicit Questions(const AskMember& ask)
        : ask_(ask) {}

    QVariant any(const QString& name, const QVariantList& arguments = {}) {
        if (!fault_.isEmpty())
            return {};
        const AutomationReply reply = ask_(name, arguments);
        if (reply.ok())
            return reply.result;
        fault_ = reply.text.isEmpty() ? u"%1 failed"_s.arg(name) : plainLine(reply.text);
        return {};
    }

    template <typename Type>
    std::optional<Type> typed(const QString& name, const QVariantList& arguments = {}) {
        const QVariant value = any(name, arguments);
        if (!fault_.isEmpty())
            return std::nullopt;
        if (value.metaType() == QMetaType::fromType<Type>())
            return value.value<Type>();
        fail(name);
        return std::nullopt;
    }

    void fail(const QString& name) {
        if (fault_.isEmpty())
            fault_ = u"Kiv_Skyhold gave an odd answer for "_s + name;
    }

    const QString& fault() const { return fault_; }

  private:
    const AskMember& ask_;
    QString fault_;
};

VerdictFacts askFacts(Questions& questions) {
    VerdictFacts facts;
    facts.running = questions.typed<bool>(u"DeviceIsRunning"_s);
    facts.dataReady = questions.typed<bool>(u"DataReady"_s);
    facts.sinceGoodData = questions.typed<std::int32_t>(u"SecondsSinceGoodData"_s);
    facts.safe = questions.typed<bool>(u"Safe"_s);
    return facts;
}

ConditionStatus askCondition(Questions& questions, const ConditionRow& row) {
    ConditionStatus condition;
    const QString member = QString::fromUtf16(row.condition);
    const QString key = QString::fromUtf16(row.key);
    condition.name = QString::fromUtf16(row.name);
    condition.level = questions.typed<std::int32_t>(member).value_or(0);
    if (condition.level < 0 || condition.level > 3) {
        questions.fail(member);
        return condition;
    }
    const auto displayed = [&](const QString& what) {
        const auto text = questions.typed<QString>(u"Kiv_DataDisplayed"_s, {what, key});
        return plainLine(text.value_or(QString())).trimmed();
    };
    condition.description = displayed(u"desc"_s);
    condition.value = displayed(u"value"_s);
    if (condition.level > 0) {
        const auto index = static_cast<std::size_t>(condition.level - 1);
        const QString flag = QString::fromUtf16(row.unsafeFlag[index]);
        condition.flagged = questions.typed<std::int32_t>(flag).value_or(0) != 0;
    }
    return condition;
}

QString descriptionOf(const ConditionStatus& condition) {
    return condition.description.isEmpty() ? u"level %1"_s.arg(condition.level)
                                           : condition.description;
}

// When the sensor program was last read; nothing before the first reading.
QVariant timeOfReading(const QVariant& answer) {
    return answer.value<AutomationDate>() == AutomationDate{} ? QVariant() : answer;
}

// The messages of the delay and of the alarms of both sources, which come joined in one text.
QStringList messagesIn(const QString& joined) {
    QStringList messages;
    for (const QString& message : joined.split(u" / "_s)) {
        const QString plain = plainLine(message).trimmed();
        if (!plain.isEmpty())
            messages.append(plain);
    }
    return messages;
}

QStringList causesOf(const Status& status, const QString& joinedMessages) {
    QStringList causes;
    if (status.verdict == Verdict::Safe)
        return causes;
    if (status.verdict == Verdict::Unknown)
        causes.append(unknownCause(status.facts));
    for (const ConditionStatus& condition : status.conditions) {
        if (status.verdict == Verdict::Unsafe && condition.flagged)
            causes.append(condition.name + u": "_s + descriptionOf(condition));
    }
    causes += messagesIn(joinedMessages);
    causes.removeAll(QString());
    if (causes.isEmpty())
        causes.append(u"the conditions do not tell why"_s);
    return causes;
}

} // namespace

Status readStatus(const AskMember& ask) {
    Questions questions(ask);
    Status status;
    const VerdictFacts before = askFacts(questions);
    for (const ConditionRow& row : kConditions)
        status.conditions.push_back(askCondition(questions, row));
    const QString messages = questions.typed<QString>(u"Kiv_SafeDelayMsg"_s).value_or(QString());
    status.lastReading = timeOfReading(questions.any(u"LastReading"_s));
    // A cycle may run between two questions, so that facts of two cycles would be taken together.
    // No more than one falls into the time that all questions may take: one of the two sets is of
    // one cycle.
    const VerdictFacts after = askFacts(questions);
    if (!questions.fault().isEmpty())
        return unknownStatus(questions.fault());
    const Verdict first = verdictOf(before);
    const Verdict second = verdictOf(after);
    status.verdict = worse(first, second);
    status.facts = status.verdict == second ? after : before;
    status.causes = causesOf(status, messages);
    return status;
}

Status unknownStatus(const QString& cause) {
    Status status;
    status.causes.append(cause);
    return status;
}

QString statusText(const Status& status) {
    QString text = verdictName(status.verdict).toUpper();
    if (!status.causes.isEmpty())
        text += u"  "_s + status.causes.join(u", "_s);
    text += u'\n';
    if (status.conditions.empty())
        return text;
    qsizetype nameWidth = 0;
    qsizetype valueWidth = 0;
    for (const ConditionStatus& condition : status.conditions) {
        nameWidth = std::max(nameWidth, condition.name.size());
        valueWidth = std::max(valueWidth, condition.value.size());
    }
    for (const ConditionStatus& condition : status.conditions) {
        QString line = condition.name.leftJustified(nameWidth) + u"  "_s +
                       condition.value.rightJustified(valueWidth) + u"  "_s +
                       descriptionOf(condition);
        if (condition.flagged)
            line += u" (flagged unsafe)"_s;
        text += line + u'\n';
    }
    const QString read = valueText(status.lastReading);
    return text + u"Last reading "_s + (read.isEmpty() ? u"none"_s : read) + u'\n';
}

QString statusLine(const Status& status) {
    QStringList parts{verdictName(status.verdict).toUpper()};
    if (!status.causes.isEmpty())
        parts.append(status.causes.join(u", "_s));
    for (const ConditionStatus& condition : status.conditions)
        parts.append(condition.name + u' ' + condition.value + u' ' + descriptionOf(condition));
    return parts.join(u" | "_s);
}

} // namespace skyhold
