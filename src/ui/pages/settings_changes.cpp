// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/settings_changes.h"

#include "ui/look/look.h"
#include "ui/pages/page_parts.h"
#include "ui/pages/setting_places.h"
#include "ui/widgets/bind.h"
#include "ui/widgets/readout.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace skyhold {

namespace {

constexpr std::size_t kLines = 5;
constexpr int kSettlesMs = 300; // what follows within this is of the user's doing

// A line edit takes these keys for itself, even when it has nothing to undo.
bool isIdleUndo(QObject* watched, const QEvent& event) {
    const auto* line = qobject_cast<const QLineEdit*>(watched);
    if (event.type() != QEvent::ShortcutOverride || !line)
        return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    return (key.matches(QKeySequence::Undo) && !line->isUndoAvailable()) ||
           (key.matches(QKeySequence::Redo) && !line->isRedoAvailable());
}

// A box is ticked when its key is released, a button by its shortcut a moment later.
bool canChangeSettings(const QEvent& event) {
    switch (event.type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::Wheel:
    case QEvent::Drop:
        return true;
    default:
        return false;
    }
}

} // namespace

SettingsChanges::SettingsChanges(MonitoringCore& core, QObject* parent)
    : QObject(parent)
    , core_(core)
    , journal_(core.records) {
    setObjectName(u"SettingsChanges"_s);
    qApp->installEventFilter(this);
    settled_.setSingleShot(true);
    settled_.setInterval(kSettlesMs - 50);
    connect(&settled_, &QTimer::timeout, this, [this] { note(settling()); });
    SessionControls& session = core_.records.session;
    follow(this, session.CyclesDone, [this](std::int64_t) { note(settling()); });
    follow(this, session.State, [this](SessionState state) {
        note(settling());
        if (state == SessionState::Idle)
            journal_.unlock();
        else
            journal_.lock();
        Q_EMIT changed();
    });
}

bool SettingsChanges::eventFilter(QObject* watched, QEvent* event) {
    if (isIdleUndo(watched, *event)) {
        event->ignore();
        return true;
    }
    if (pending_ || !canChangeSettings(*event))
        return false;
    note(settling());
    pending_ = true;
    lastInputMs_ = core_.clock.MsClock();
    settled_.start();
    QMetaObject::invokeMethod(
        this,
        [this] {
            pending_ = false;
            note(true);
        },
        Qt::QueuedConnection);
    return false;
}

bool SettingsChanges::settling() const {
    return lastInputMs_ && core_.clock.MsClock() - *lastInputMs_ < kSettlesMs;
}

void SettingsChanges::note(bool byUser) {
    if (!pending_ && journal_.look(core_.clock.now(), byUser))
        Q_EMIT changed();
}

void SettingsChanges::noteUser() {
    pending_ = false;
    note(true);
}

QString SettingsChanges::words(const SettingsStep& step) const {
    const std::vector<SettingPlace> places = settingPlaces(core_.records);
    // Of options the one that was chosen says it all.
    const auto chosen = std::ranges::find_if(step.changes, [this](const SettingChange& change) {
        return journal_.row(change).type == KeyType::Boolean && change.after == u"True";
    });
    const bool option = chosen != step.changes.end() && step.changes.size() > 1;
    const SettingChange& shown = option ? *chosen : step.changes.front();
    const KeyRow& row = journal_.row(shown);
    QString text = settingTitle(row, places);
    if (row.role == KeyRole::Secret)
        text += u" changed"_s;
    else if (!option)
        text += u' ' + settingText(row, shown.before, core_.records.units) + u" → "_s +
                settingText(row, shown.after, core_.records.units);
    const std::size_t more = step.changes.size() - (option ? 2 : 1);
    if (more > 0)
        text += u", %1 more"_s.arg(more);
    return step.byUser ? text : text + u" (another program)"_s;
}

QStringList SettingsChanges::lines(std::size_t most) const {
    QStringList lines;
    const std::vector<SettingsStep>& steps = journal_.steps();
    for (std::size_t i = steps.size(); i > 0 && lines.size() < static_cast<qsizetype>(most); --i)
        lines += formatDate(steps[i - 1].at, u"hh:mm") + u' ' + words(steps[i - 1]);
    return lines;
}

QString SettingsChanges::undoText() const {
    const SettingsStep* step = journal_.undoable();
    return step ? words(*step) : QString();
}

QString SettingsChanges::redoText() const {
    const SettingsStep* step = journal_.redoable();
    return step ? words(*step) : QString();
}

void SettingsChanges::undo() {
    noteUser();
    journal_.undo();
    Q_EMIT changed();
}

void SettingsChanges::redo() {
    noteUser();
    journal_.redo();
    Q_EMIT changed();
}

QWidget* makeChangesCard(SettingsChanges& changes, QWidget* parent) {
    QVBoxLayout* column = addGroup(parent, u"Changes"_s);
    QWidget* group = column->parentWidget();
    std::vector<Readout*> shown;
    for (std::size_t i = 0; i < kLines; ++i) {
        auto* line = new Readout(group);
        line->setObjectName(indexed("Change", i));
        line->setPixelSize(12);
        line->cutInMiddle(); // what it was and what it is stand at the end
        if (i > 0)
            line->setTone(Tone::Dim);
        column->addWidget(line);
        shown.push_back(line);
    }
    auto* buttons = new QHBoxLayout;
    const auto addButton = [&](const char* name, const QString& text, auto act) {
        auto* button = new QPushButton(text, group);
        button->setObjectName(QString::fromLatin1(name));
        QObject::connect(button, &QPushButton::clicked, &changes, act);
        buttons->addWidget(button);
        return button;
    };
    QPushButton* undo = addButton("ButtUndo", u"Undo"_s, [&changes] { changes.undo(); });
    QPushButton* redo = addButton("ButtRedo", u"Redo"_s, [&changes] { changes.redo(); });
    buttons->addStretch();
    column->addLayout(buttons);
    column->addStretch();
    const auto show = [&changes, shown, undo, redo] {
        const QStringList lines = changes.lines(kLines);
        for (std::size_t i = 0; i < shown.size(); ++i) {
            const QString line = lines.value(static_cast<qsizetype>(i));
            shown[i]->setText(i == 0 && line.isEmpty() ? u"Nothing since the start"_s : line);
            shown[i]->setToolTip(line);
        }
        undo->setEnabled(!changes.undoText().isEmpty());
        undo->setToolTip(!undo->isEnabled() && !lines.isEmpty()
                             ? u"What was changed before the session began can be taken back once "
                               u"it has ended"_s
                             : changes.undoText());
        redo->setEnabled(!changes.redoText().isEmpty());
        redo->setToolTip(changes.redoText());
    };
    QObject::connect(&changes, &SettingsChanges::changed, group, show);
    show();
    return group;
}

} // namespace skyhold
