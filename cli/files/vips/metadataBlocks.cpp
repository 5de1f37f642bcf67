#include "cli/files/vips/metadataBlocks.h"

#include <algorithm>
#include <array>
#include <exiv2/exiv2.hpp>
#include <mutex>

namespace zelcli {

namespace {

/// Exiv2's XMP toolkit is for one thread at a time.
std::mutex g_mutex;

/// Tags that tell how a TIFF file lies on the disk; each file writes its own.
constexpr std::array<std::uint16_t, 28> kLayoutTags = {
    0x00FE, 0x00FF, 0x0100, 0x0101, 0x0102, 0x0103, 0x0106, 0x010A, 0x0111, 0x0115,
    0x0116, 0x0117, 0x011C, 0x013D, 0x0140, 0x0142, 0x0143, 0x0144, 0x0145, 0x014A,
    0x0152, 0x0153, 0x015B, 0x02BC, 0x83BB, 0x8649, 0x8773, 0x0220};

/// Colour channels as they lie in a JPEG file, which say nothing about another one.
constexpr std::uint16_t kYcbcrFirst = 0x0211, kYcbcrLast = 0x0214;

bool belongsToLayout(const Exiv2::Exifdatum& datum) {
    const std::string group = datum.groupName();
    if (group.rfind("SubImage", 0) == 0 || group == "Image2" || group == "Image3") return true;
    if (group != "Image") return false;
    return std::find(kLayoutTags.begin(), kLayoutTags.end(), datum.tag()) != kLayoutTags.end() ||
           (datum.tag() >= kYcbcrFirst && datum.tag() <= kYcbcrLast);
}

template <typename Data, typename Unwanted>
void eraseIf(Data& data, const Unwanted& unwanted) {
    for (auto at = data.begin(); at != data.end();) at = unwanted(*at) ? data.erase(at) : std::next(at);
}

Exiv2::ExifData exifOf(const Metadata& metadata) {
    Exiv2::ExifData exif;
    if (!metadata.exif.empty())
        Exiv2::ExifParser::decode(exif, metadata.exif.data(),
                                  static_cast<std::uint32_t>(metadata.exif.size()));
    return exif;
}

/// The byte order of a block is part of what makers' notes rely on.
void setExif(Metadata& metadata, const Exiv2::ExifData& exif, Exiv2::ByteOrder order) {
    Exiv2::Blob block;
    if (!exif.empty()) Exiv2::ExifParser::encode(block, order, exif);
    metadata.exif.assign(block.begin(), block.end());
}

Exiv2::ByteOrder orderOf(const Metadata& metadata) {
    return !metadata.exif.empty() && metadata.exif[0] == 'M' ? Exiv2::bigEndian : Exiv2::littleEndian;
}

Exiv2::XmpData xmpOf(const Metadata& metadata) {
    Exiv2::XmpData xmp;
    if (!metadata.xmp.empty()) Exiv2::XmpParser::decode(xmp, metadata.xmp);
    return xmp;
}

void setXmp(Metadata& metadata, const Exiv2::XmpData& xmp) {
    metadata.xmp.clear();
    if (!xmp.empty()) Exiv2::XmpParser::encode(metadata.xmp, xmp, Exiv2::XmpParser::useCompactFormat);
}

/// Sets a number that is there.
template <typename Data, typename Key>
void renew(Data& data, const char* name, const std::string& value) {
    const auto at = data.findKey(Key(name));
    if (at != data.end()) at->setValue(value);
}

void adaptExif(Exiv2::ExifData& exif, int width, int height) {
    Exiv2::ExifThumb(exif).erase();
    eraseIf(exif, belongsToLayout);
    const auto set = renew<Exiv2::ExifData, Exiv2::ExifKey>;
    set(exif, "Exif.Image.Orientation", "1");
    set(exif, "Exif.Photo.PixelXDimension", std::to_string(width));
    set(exif, "Exif.Photo.PixelYDimension", std::to_string(height));
}

/// Formats without a resolution of their own leave it to EXIF.
void readResolution(const Exiv2::ExifData& exif, double (&dotsPerMm)[2]) {
    constexpr int kCentimetres = 3;
    const auto across = exif.findKey(Exiv2::ExifKey("Exif.Image.XResolution")),
               down = exif.findKey(Exiv2::ExifKey("Exif.Image.YResolution"));
    const auto unit = exif.findKey(Exiv2::ExifKey("Exif.Image.ResolutionUnit"));
    if (dotsPerMm[0] > 0 || across == exif.end() || down == exif.end()) return;
    const double mm = unit != exif.end() && unit->toLong() == kCentimetres ? 10.0 : 25.4;
    dotsPerMm[0] = static_cast<double>(across->toFloat()) / mm;
    dotsPerMm[1] = static_cast<double>(down->toFloat()) / mm;
}

void adaptXmp(Exiv2::XmpData& xmp, int width, int height) {
    const auto set = renew<Exiv2::XmpData, Exiv2::XmpKey>;
    set(xmp, "Xmp.tiff.Orientation", "1");
    for (const char* name : {"Xmp.tiff.ImageWidth", "Xmp.exif.PixelXDimension"})
        set(xmp, name, std::to_string(width));
    for (const char* name : {"Xmp.tiff.ImageLength", "Xmp.exif.PixelYDimension"})
        set(xmp, name, std::to_string(height));
    eraseIf(xmp,
            [](const Exiv2::Xmpdatum& datum) { return datum.key().rfind("Xmp.xmp.Thumbnails", 0) == 0; });
}

void silence() {
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    Exiv2::XmpParser::initialize();
}

/// The library's classes throw, and are for one thread at a time.
template <typename Work>
void withExiv2(const Work& work) {
    const std::lock_guard lock(g_mutex);
    static const bool silent = (silence(), true);
    static_cast<void>(silent);
    work();
}

}  // namespace

void readMetadata(std::span<const unsigned char> file, Metadata& metadata, std::vector<std::string>& notes) {
    try {
        withExiv2([&] {
            const auto image = Exiv2::ImageFactory::open(file.data(), static_cast<long>(file.size()));
            image->readMetadata();
            setExif(metadata, image->exifData(), image->byteOrder());
            setXmp(metadata, image->xmpData());
            const Exiv2::DataBuf iptc = Exiv2::IptcParser::encode(image->iptcData());
            if (iptc.pData_) metadata.iptc.assign(iptc.pData_, iptc.pData_ + iptc.size_);
            metadata.comment = image->comment();
        });
    } catch (const std::exception&) {
        notes.emplace_back("what its file carries beside the pixels is damaged, and is left out in part");
    }
}

void adaptMetadata(Metadata& metadata, int width, int height) {
    try {
        withExiv2([&] {
            const Exiv2::ByteOrder order = orderOf(metadata);
            Exiv2::ExifData exif = exifOf(metadata);
            adaptExif(exif, width, height);
            readResolution(exif, metadata.dotsPerMm);
            setExif(metadata, exif, order);
            Exiv2::XmpData xmp = xmpOf(metadata);
            adaptXmp(xmp, width, height);
            setXmp(metadata, xmp);
        });
    } catch (const std::exception&) {
        metadata.exif.clear();
        metadata.xmp.clear();
    }
}

void removeGps(Metadata& metadata) {
    withExiv2([&] {
        const Exiv2::ByteOrder order = orderOf(metadata);
        Exiv2::ExifData exif = exifOf(metadata);
        eraseIf(exif, [](const Exiv2::Exifdatum& datum) {
            return datum.groupName() == "GPSInfo" || datum.key() == "Exif.Image.GPSTag";
        });
        setExif(metadata, exif, order);
        Exiv2::XmpData xmp = xmpOf(metadata);
        eraseIf(xmp, [](const Exiv2::Xmpdatum& datum) { return datum.tagName().rfind("GPS", 0) == 0; });
        setXmp(metadata, xmp);
    });
}

void writeMetadata(std::vector<unsigned char>& file, const Metadata& metadata) {
    withExiv2([&] {
        const auto image = Exiv2::ImageFactory::open(file.data(), static_cast<long>(file.size()));
        image->readMetadata();
        Exiv2::ExifData exif = exifOf(metadata);
        if (image->imageType() == Exiv2::ImageType::tiff)  // the file's own layout is told by the same tags
            for (const auto& datum : image->exifData())
                if (belongsToLayout(datum)) exif.add(datum);
        image->setByteOrder(orderOf(metadata));
        image->setExifData(exif);
        image->setXmpData(xmpOf(metadata));
        Exiv2::IptcData iptc;
        if (!metadata.iptc.empty())
            Exiv2::IptcParser::decode(iptc, metadata.iptc.data(),
                                      static_cast<std::uint32_t>(metadata.iptc.size()));
        const auto takes = [&](Exiv2::MetadataId part) {
            return (image->checkMode(part) & Exiv2::amWrite) != 0;
        };
        if (takes(Exiv2::mdIptc)) image->setIptcData(iptc);
        if (takes(Exiv2::mdComment)) image->setComment(metadata.comment);
        image->writeMetadata();
        Exiv2::BasicIo& io = image->io();
        io.open();
        std::vector<unsigned char> written(io.size());
        io.read(written.data(), static_cast<long>(written.size()));
        file = std::move(written);
    });
}

}  // namespace zelcli
