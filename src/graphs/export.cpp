// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphs/export.h"

#include "platform/image_functions.h"
#include "platform/replacement_file.h"

#include <cstring>
#include <memory>

namespace skyhold {

namespace {

static_assert(static_cast<int>(ImageFormat::Png) == FIF_PNG);
static_assert(static_cast<int>(ImageFormat::Jpeg) == FIF_JPEG);

using Bitmap = std::unique_ptr<FIBITMAP, decltype(&FreeImage_Unload)>;

// The picture's pixels as a bitmap of the library, whose lines run from the bottom up.
Bitmap bitmapOf(const QImage& picture, const ImageFunctions& f) {
    const QImage image = picture.format() == QImage::Format_RGB32
                             ? picture
                             : picture.convertToFormat(QImage::Format_RGB32);
    Bitmap bitmap(f.Allocate(image.width(), image.height(), image.depth(), 0, 0, 0), f.Unload);
    if (!bitmap || f.GetColorsUsed(bitmap.get()) != 0)
        return {nullptr, f.Unload};
    const BITMAPINFOHEADER& header = f.GetInfo(bitmap.get())->bmiHeader;
    const std::size_t lineBytes = static_cast<std::size_t>(header.biWidth) * header.biBitCount / 8;
    BYTE* line = f.GetBits(bitmap.get());
    for (int y = static_cast<int>(f.GetHeight(bitmap.get())) - 1; y >= 0; --y, line += lineBytes)
        std::memcpy(line, image.constScanLine(y), lineBytes);
    return bitmap;
}

// Whether the file ends as its format does: the library does not notice a disk that is full when
// it writes the last bytes.
bool complete(const QByteArray& bytes, ImageFormat format) {
    return format == ImageFormat::Png ? bytes.endsWith("IEND\xAE\x42\x60\x82")
                                      : bytes.endsWith("\xFF\xD9");
}

bool encode(const QImage& picture, ImageFormat format, int flags, const ImageFunctions& f,
            ReplacementFile& file) {
    const Bitmap source = bitmapOf(picture, f);
    if (!source)
        return false;
    const Bitmap bitmap(f.ConvertTo24Bits(source.get()), f.Unload);
    return bitmap && f.Save(static_cast<FREE_IMAGE_FORMAT>(format), bitmap.get(),
                            file.writerPath().constData(), flags) == TRUE;
}

} // namespace

int ImageSaveFlags(const GraphControls& graphs) {
    if (graphs.ImageType.checked())
        return PNG_DEFAULT;
    switch (graphs.ImageQuality.Index) {
    case 0:
        return JPEG_QUALITYSUPERB;
    case 1:
        return JPEG_QUALITYGOOD;
    case 2:
        return JPEG_QUALITYNORMAL;
    default:
        return JPEG_DEFAULT;
    }
}

bool SavePicture(const ImageFile& file, ImageLibrary& library, SavedImage& saved) {
    const ImageFunctions* functions = library.functions();
    if (functions == nullptr || file.image.isNull())
        return false;
    if (saved.drawing < 0)
        ReplacementFile::removeLeftovers(file.name);
    ReplacementFile replacement(file.name);
    if (!replacement.isOpen())
        return false;

    const bool known =
        saved.drawing == file.drawing && saved.format == file.format && saved.flags == file.flags;
    if (known)
        return replacement.write(saved.bytes) && replacement.commit();

    if (!encode(file.image, file.format, file.flags, *functions, replacement))
        return false;
    const QByteArray bytes = replacement.contents();
    if (!complete(bytes, file.format) || !replacement.commit())
        return false;
    saved = {file.drawing, file.format, file.flags, bytes};
    return true;
}

} // namespace skyhold
