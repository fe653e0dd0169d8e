#include "platform/image_library.h"

namespace skyhold {

namespace {

using InitialiseFunction = void (*)(int loadLocalPluginsOnly);
using DeInitialiseFunction = void (*)();

} // namespace

bool ImageLibrary::initialise() {
    library_.setFileNameAndVersion(QStringLiteral("freeimage"), 3);
    const auto start =
        reinterpret_cast<InitialiseFunction>(library_.resolve("FreeImage_Initialise"));
    if (start == nullptr)
        return false;
    start(0);
    initialised_ = true;
    return true;
}

void ImageLibrary::deInitialise() {
    if (!initialised_)
        return;
    initialised_ = false;
    const auto stop =
        reinterpret_cast<DeInitialiseFunction>(library_.resolve("FreeImage_DeInitialise"));
    if (stop != nullptr)
        stop();
}

} // namespace skyhold
