// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/writer.h"

#include "history/rows.h"
#include "platform/log.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace skyhold {

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

constexpr auto kFirstRetry = 1s;
constexpr auto kLongestRetry = 30s;

// Puts back in front what could not be written.
template <class Item>
void putBack(std::vector<Item>& items, std::deque<Item>& waiting) {
    waiting.insert(waiting.begin(), std::make_move_iterator(items.begin()),
                   std::make_move_iterator(items.end()));
    items.clear();
}

template <class Item>
std::vector<Item> takeAll(std::deque<Item>& waiting) {
    std::vector<Item> taken(std::make_move_iterator(waiting.begin()),
                            std::make_move_iterator(waiting.end()));
    waiting.clear();
    return taken;
}

} // namespace

// What the worker and the program share. The worker holds it too: one that hangs in a write when
// the program ends never finds it gone.
struct HistoryWriter::Shared {
    void add(const KeptCycle& cycle) {
        const std::lock_guard lock(mutex);
        if (!state.on)
            return;
        cycles.push_back(cycle);
        bound();
        wake.notify_one();
    }
    void add(HistoryEvent event) {
        const std::lock_guard lock(mutex);
        if (!state.on)
            return;
        events.push_back(std::move(event));
        bound();
        wake.notify_one();
    }

    void work(const QString& path);
    void writeAll(HistoryStore& store, std::unique_lock<std::mutex>& lock);
    void tidyAll(HistoryStore& store, std::unique_lock<std::mutex>& lock);
    void bound();
    void noteFault(const QString& fault);
    std::optional<HistoryEvent> unreportedLoss();

    std::mutex mutex; // of all below
    std::condition_variable wake, ended;
    std::deque<KeptCycle> cycles;
    std::deque<HistoryEvent> events;
    std::int64_t lastAtMs = 0;                             // of what was written
    std::int64_t tidiedMs = 0;                             // when tidied last
    bool tidying = false;                                  // there is more to tidy
    std::int64_t reportedReadings = 0, reportedEvents = 0; // losses that an event reports
    std::chrono::seconds retry = kFirstRetry;
    std::chrono::steady_clock::time_point notBefore{};
    HistoryKeep keep;
    HistoryState state;
    bool ending = false;
    bool done = true;
};

void HistoryWriter::Shared::bound() {
    while (cycles.size() + events.size() > kMostWaiting) {
        if (!cycles.empty()) {
            cycles.pop_front();
            ++state.lostReadings;
        } else {
            events.pop_front();
            ++state.lostEvents;
        }
    }
}

void HistoryWriter::Shared::noteFault(const QString& fault) {
    if (state.fault == fault)
        return;
    if (!fault.isEmpty())
        qCWarning(historyLog, "cannot be written: %s", qUtf8Printable(fault));
    else
        qCWarning(historyLog, "can be written again, %lld readings and %lld events were lost",
                  static_cast<long long>(state.lostReadings),
                  static_cast<long long>(state.lostEvents));
    state.fault = fault;
}

std::optional<HistoryEvent> HistoryWriter::Shared::unreportedLoss() {
    const std::int64_t readings = state.lostReadings - reportedReadings;
    const std::int64_t lostEvents = state.lostEvents - reportedEvents;
    if (readings == 0 && lostEvents == 0)
        return std::nullopt;
    return HistoryEvent{
        .atMs = !cycles.empty() ? cycles.front().atMs : lastAtMs,
        .kind = u"history"_s,
        .name = {},
        .state = u"lost"_s,
        .text =
            u"%1 readings and %2 events were lost: the disk could not be written"_s.arg(readings)
                .arg(lostEvents),
        .detail = {}};
}

void HistoryWriter::Shared::writeAll(HistoryStore& store, std::unique_lock<std::mutex>& lock) {
    const std::int64_t readings = state.lostReadings;
    const std::int64_t lost = state.lostEvents;
    const std::optional<HistoryEvent> loss = unreportedLoss();
    HistoryBatch batch{takeAll(events), takeAll(cycles)};
    if (loss)
        batch.events.insert(batch.events.begin(), *loss);
    lock.unlock();
    const bool written = store.write(batch);
    const std::int64_t bytes = store.fileBytes();
    lock.lock();
    if (!written) {
        if (loss)
            batch.events.erase(batch.events.begin());
        putBack(batch.events, events);
        putBack(batch.cycles, cycles);
        bound();
        noteFault(store.fault());
        notBefore = std::chrono::steady_clock::now() + retry;
        retry = std::min<std::chrono::seconds>(2 * retry, kLongestRetry);
        return;
    }
    reportedReadings = readings;
    reportedEvents = lost;
    for (const HistoryEvent& event : batch.events)
        lastAtMs = std::max(lastAtMs, event.atMs);
    if (!batch.cycles.empty())
        lastAtMs = batch.cycles.back().atMs;
    state.fileBytes = bytes;
    retry = kFirstRetry;
    noteFault({});
    if (const QString aside = store.setAside(); aside != state.setAside && !aside.isEmpty()) {
        state.setAside = aside;
        qCWarning(historyLog, "the database was torn (%s); it is %s now, and a new one has begun",
                  qUtf8Printable(store.fault()), qUtf8Printable(aside));
        events.push_back({.atMs = lastAtMs,
                          .kind = u"history"_s,
                          .name = {},
                          .state = u"torn"_s,
                          .text = u"The history before was torn and is set aside: "_s + aside,
                          .detail = {}});
    }
    tidying = tidying || lastAtMs / kTiers[0].spanMs != tidiedMs / kTiers[0].spanMs;
}

void HistoryWriter::Shared::tidyAll(HistoryStore& store, std::unique_lock<std::mutex>& lock) {
    const std::int64_t now = lastAtMs;
    const HistoryKeep kept = keep;
    lock.unlock();
    const bool more = store.tidy(now, kept);
    lock.lock();
    tidying = more;
    tidiedMs = now;
}

void HistoryWriter::Shared::work(const QString& path) {
    // Gone before the program may end: it uses what the end of the program destroys.
    auto store = std::make_unique<HistoryStore>(path);
    store->open(); // ends a session that was lost; a fault comes up again with the first write
    std::unique_lock lock(mutex);
    for (;;) {
        const auto nothing = [this] {
            return cycles.empty() && events.empty();
        };
        if (ending && nothing())
            break;
        if (nothing() && !tidying) {
            wake.wait(lock);
            continue;
        }
        if (std::chrono::steady_clock::now() < notBefore) {
            if (ending)
                break; // it has been tried
            wake.wait_until(lock, notBefore);
            continue;
        }
        if (!nothing())
            writeAll(*store, lock);
        else
            tidyAll(*store, lock);
    }
    lock.unlock();
    store.reset();
    lock.lock();
    done = true;
    ended.notify_all();
}

HistoryWriter::HistoryWriter()
    : shared_(std::make_shared<Shared>()) {}

HistoryWriter::~HistoryWriter() {
    end();
}

void HistoryWriter::begin(const QString& path, const HistoryKeep& keep) {
    end();
    shared_ = std::make_shared<Shared>();
    shared_->state.on = true;
    shared_->keep = keep;
    shared_->done = false;
    std::thread([shared = shared_, path] { shared->work(path); }).detach();
}

void HistoryWriter::keep(const HistoryKeep& keep) {
    const std::lock_guard lock(shared_->mutex);
    shared_->keep = keep;
}

void HistoryWriter::add(const KeptCycle& cycle) {
    shared_->add(cycle);
}

void HistoryWriter::add(HistoryEvent event) {
    shared_->add(std::move(event));
}

HistoryState HistoryWriter::state() const {
    const std::lock_guard lock(shared_->mutex);
    return shared_->state;
}

bool HistoryWriter::end(int patienceMs) {
    std::unique_lock lock(shared_->mutex);
    if (!shared_->state.on)
        return true;
    shared_->ending = true;
    shared_->notBefore = {};
    shared_->wake.notify_one();
    const bool done = shared_->ended.wait_for(lock, std::chrono::milliseconds(patienceMs),
                                              [this] { return shared_->done; });
    shared_->state.on = false;
    return done && shared_->cycles.empty() && shared_->events.empty();
}

} // namespace skyhold
