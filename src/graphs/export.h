// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures as image files.
#pragma once

#include "platform/image_library.h"
#include "records/file_controls.h"

#include <QByteArray>
#include <QImage>

namespace skyhold {

enum class ImageFormat { Jpeg = 2, Png = 13 }; // the image library's numbers

// The image library's save flags for the chosen format and quality.
int ImageSaveFlags(const GraphControls& graphs);

// A picture on its way to a file.
struct ImageFile {
    QImage image;    // null: never drawn
    int drawing = 0; // which drawing of the picture it is
    QString name;    // full path
    ImageFormat format = ImageFormat::Png;
    int flags = 0;
};

// What a picture was last saved as.
struct SavedImage {
    int drawing = -1;
    ImageFormat format = ImageFormat::Png;
    int flags = 0;
    QByteArray bytes;
};

// Writes the picture to a file that is whole whenever it is opened; a file or a link of that name
// is replaced. False when it could not be written, or without the image library. A drawing that
// was saved as `saved` already is not encoded again.
bool SavePicture(const ImageFile& file, ImageLibrary& library, SavedImage& saved);

} // namespace skyhold
