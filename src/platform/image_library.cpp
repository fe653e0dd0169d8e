// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/image_library.h"

#include "platform/image_functions.h"

namespace skyhold {

namespace {

constexpr int kMajorVersion = 3;

template <class Function>
bool resolve(QLibrary& library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(library.resolve(name));
    return function != nullptr;
}

bool resolveAll(QLibrary& library, ImageFunctions& f) {
    return resolve(library, "FreeImage_Allocate", f.Allocate) &&
           resolve(library, "FreeImage_GetBits", f.GetBits) &&
           resolve(library, "FreeImage_GetInfo", f.GetInfo) &&
           resolve(library, "FreeImage_GetHeight", f.GetHeight) &&
           resolve(library, "FreeImage_GetColorsUsed", f.GetColorsUsed) &&
           resolve(library, "FreeImage_ConvertTo24Bits", f.ConvertTo24Bits) &&
           resolve(library, "FreeImage_Save", f.Save) &&
           resolve(library, "FreeImage_Unload", f.Unload);
}

} // namespace

ImageLibrary::ImageLibrary(const QString& name)
    : name_(name)
    , functions_(std::make_unique<ImageFunctions>()) {}

ImageLibrary::~ImageLibrary() = default;

bool ImageLibrary::initialise() {
    if (initialised_)
        return true;
    library_.setFileNameAndVersion(name_, kMajorVersion);
    decltype(&FreeImage_Initialise) start = nullptr;
    if (!resolve(library_, "FreeImage_Initialise", start) || !resolveAll(library_, *functions_))
        return false;
    start(FALSE);
    initialised_ = true;
    return true;
}

void ImageLibrary::deInitialise() {
    if (!initialised_)
        return;
    initialised_ = false;
    decltype(&FreeImage_DeInitialise) stop = nullptr;
    if (resolve(library_, "FreeImage_DeInitialise", stop))
        stop();
}

const ImageFunctions* ImageLibrary::functions() {
    return initialise() ? functions_.get() : nullptr;
}

} // namespace skyhold
