// The FreeImage library, loaded at run time so that a missing library is a reported state.
#pragma once

#include <QLibrary>

namespace skyhold {

class ImageLibrary {
  public:
    // Loads the library and initialises it; false when it is missing.
    bool initialise();
    void deInitialise();
    bool loaded() const { return initialised_; }

  private:
    QLibrary library_;
    bool initialised_ = false;
};

} // namespace skyhold
