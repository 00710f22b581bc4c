#include "MacImages.h"

namespace macimages {

namespace {
// BGRA in memory with premultiplied alpha: QImage::Format_ARGB32_Premultiplied on a little-endian host.
constexpr CGBitmapInfo argb32Premultiplied =
    CGBitmapInfo(kCGImageAlphaPremultipliedFirst) | CGBitmapInfo(kCGBitmapByteOrder32Host);
} // namespace

QImage imageFromCGImage(CGImageRef image)
{
    if (!image)
        return {};
    const size_t width = CGImageGetWidth(image);
    const size_t height = CGImageGetHeight(image);
    QImage result(int(width), int(height), QImage::Format_ARGB32_Premultiplied);
    if (result.isNull())
        return {};
    result.fill(Qt::transparent);
    CGColorSpaceRef sRGB = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    CGContextRef context = CGBitmapContextCreate(result.bits(), width, height, 8, size_t(result.bytesPerLine()),
                                                 sRGB, argb32Premultiplied);
    CGColorSpaceRelease(sRGB);
    if (!context)
        return {};
    // The context's first row in memory is the image's top row, as in QImage.
    CGContextDrawImage(context, CGRectMake(0, 0, CGFloat(width), CGFloat(height)), image);
    CGContextRelease(context);
    return result;
}

CGImageRef createCGImage(const QImage &image)
{
    if (image.isNull())
        return nullptr;
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    CFDataRef data = CFDataCreate(kCFAllocatorDefault, pixels.constBits(), CFIndex(pixels.sizeInBytes()));
    if (!data)
        return nullptr;
    CGDataProviderRef provider = CGDataProviderCreateWithCFData(data);
    CFRelease(data);
    CGColorSpaceRef sRGB = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    CGImageRef result = CGImageCreate(size_t(pixels.width()), size_t(pixels.height()), 8, 32,
                                      size_t(pixels.bytesPerLine()), sRGB, argb32Premultiplied, provider, nullptr,
                                      false, kCGRenderingIntentDefault);
    CGColorSpaceRelease(sRGB);
    CGDataProviderRelease(provider);
    return result;
}

} // namespace macimages
