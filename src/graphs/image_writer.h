// SPDX-License-Identifier: GPL-3.0-or-later
// Saves pictures as image files on a thread of its own: encoding takes longer than a client should
// have to wait for an answer.
#pragma once

#include "graphs/export.h"

#include <QMutex>
#include <QObject>
#include <QThreadPool>

#include <array>
#include <functional>
#include <optional>

namespace skyhold {

class ImageWriter {
  public:
    // `library` has been initialised when the first picture comes, and is not shut down before
    // finish().
    explicit ImageWriter(ImageLibrary& library);
    ~ImageWriter();
    ImageWriter(const ImageWriter&) = delete;
    ImageWriter& operator=(const ImageWriter&) = delete;

    // The picture of graph 0..5. One that still waits to be written gives way to it, so that a slow
    // disk never makes a queue.
    void save(std::size_t graph, const ImageFile& file);
    // The graph is not saved any more: an earlier failure no longer counts.
    void forget(std::size_t graph);

    // Whether the last save of any graph failed; never waits.
    bool failed() const;
    // Called on the thread of the maker, as soon as it serves events, when failed() has changed.
    std::function<void()> failedChanged;

    // Returns when all has been written; failedChanged has been called by then.
    void finish();

  private:
    struct Place {
        std::optional<ImageFile> waiting;
        SavedImage saved; // of the worker alone
        bool failed = false;
    };

    void work();
    void report();

    ImageLibrary& library_;
    mutable QMutex mutex_; // of `waiting`, `failed` and `working_`
    std::array<Place, 6> places_;
    bool working_ = false;
    bool reported_ = false; // what failedChanged was last called for
    QObject receiver_;
    QThreadPool pool_;
};

} // namespace skyhold
