// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/image_writer.h"

#include <QMutexLocker>

#include <algorithm>
#include <utility>

namespace skyhold {

ImageWriter::ImageWriter(ImageLibrary& library)
    : library_(library) {
    pool_.setMaxThreadCount(1);
}

ImageWriter::~ImageWriter() {
    pool_.waitForDone();
}

void ImageWriter::save(std::size_t graph, const ImageFile& file) {
    const QMutexLocker lock(&mutex_);
    places_[graph].waiting = file;
    if (std::exchange(working_, true))
        return;
    pool_.start([this] { work(); });
}

void ImageWriter::forget(std::size_t graph) {
    const QMutexLocker lock(&mutex_);
    places_[graph].failed = false;
}

bool ImageWriter::failed() const {
    const QMutexLocker lock(&mutex_);
    return std::any_of(places_.begin(), places_.end(),
                       [](const Place& place) { return place.failed; });
}

void ImageWriter::finish() {
    pool_.waitForDone();
    report();
}

// On the worker's thread, until nothing waits.
void ImageWriter::work() {
    QMutexLocker lock(&mutex_);
    const auto next = [this] {
        return std::find_if(places_.begin(), places_.end(),
                            [](const Place& place) { return place.waiting.has_value(); });
    };
    for (auto place = next(); place != places_.end(); place = next()) {
        const ImageFile file = *std::exchange(place->waiting, std::nullopt);
        lock.unlock();
        const bool saved = SavePicture(file, library_, place->saved);
        lock.relock();
        place->failed = !saved;
    }
    working_ = false;
    lock.unlock();
    QMetaObject::invokeMethod(
        &receiver_, [this] { report(); }, Qt::QueuedConnection);
}

void ImageWriter::report() {
    const bool now = failed();
    if (std::exchange(reported_, now) != now && failedChanged)
        failedChanged();
}

} // namespace skyhold
