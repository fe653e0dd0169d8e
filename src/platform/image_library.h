// SPDX-License-Identifier: GPL-3.0-or-later
// The FreeImage library, loaded at run time so that a missing library is a reported state.
#pragma once

#include <QLibrary>

#include <memory>

namespace skyhold {

struct ImageFunctions; // platform/image_functions.h

class ImageLibrary {
  public:
    explicit ImageLibrary(const QString& name = QStringLiteral("freeimage"));
    ~ImageLibrary();

    // Loads the library and initialises it; false when it is missing.
    bool initialise();
    void deInitialise();
    bool loaded() const { return initialised_; }

    // Its functions; nullptr when the library is missing, which is tried again at every call.
    const ImageFunctions* functions();

  private:
    QString name_;
    QLibrary library_;
    bool initialised_ = false;
    std::unique_ptr<ImageFunctions> functions_;
};

} // namespace skyhold
