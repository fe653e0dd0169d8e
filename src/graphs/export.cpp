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

bool SavePicture(const Picture& picture, const QString& fileName, ImageFormat format, int flags,
                 ImageLibrary& library, SavedImage& saved) {
    const ImageFunctions* functions = library.functions();
    if (functions == nullptr || picture.Image.isNull())
        return false;
    if (saved.drawing < 0)
        ReplacementFile::removeLeftovers(fileName);
    ReplacementFile file(fileName);
    if (!file.isOpen())
        return false;

    const bool known =
        saved.drawing == picture.Drawings && saved.format == format && saved.flags == flags;
    if (known)
        return file.write(saved.bytes) && file.commit();

    if (!encode(picture.Image, format, flags, *functions, file))
        return false;
    const QByteArray bytes = file.contents();
    if (!complete(bytes, format) || !file.commit())
        return false;
    saved = {picture.Drawings, format, flags, bytes};
    return true;
}

} // namespace skyhold
