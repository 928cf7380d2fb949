#include "siblings/image/PictureFile.h"

#include "siblings/image/Pixels.h"

#include <algorithm>
#include <cstdlib>

namespace pxvis::image {

namespace {

constexpr std::string_view kPngSignature = "\x89PNG\r\n\x1A\n";

// Reads numbers of a file; past its end all bytes are 0.
class Bytes
{
public:
    explicit Bytes(std::string_view bytes)
        : m_bytes(bytes)
    {
    }

    size_t Size() const { return m_bytes.size(); }

    uint32_t Byte(size_t at) const
    {
        return at < m_bytes.size() ? static_cast<unsigned char>(m_bytes[at]) : 0;
    }

    uint32_t Little16(size_t at) const { return Byte(at) | Byte(at + 1) << 8; }

    uint32_t Little24(size_t at) const { return Little16(at) | Byte(at + 2) << 16; }

    uint32_t Little32(size_t at) const { return Little16(at) | Little16(at + 2) << 16; }

    uint32_t Big32(size_t at) const
    {
        return Byte(at) << 24 | Byte(at + 1) << 16 | Byte(at + 2) << 8 | Byte(at + 3);
    }

    uint32_t Big16(size_t at) const { return Byte(at) << 8 | Byte(at + 1); }

private:
    std::string_view m_bytes;
};

void AddPart(PictureFile& file, std::string_view part)
{
    if (!file.parts.empty() && file.parts.back().data() + file.parts.back().size() == part.data())
        file.parts.back()
            = std::string_view(file.parts.back().data(), file.parts.back().size() + part.size());
    else
        file.parts.push_back(part);
}

void AppendLittle(std::string& text, uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
        text.push_back(static_cast<char>(value >> 8 * i & 0xFF));
}

bool TakeAll(std::string_view bytes, PictureFile& file)
{
    AddPart(file, bytes);
    return true;
}

bool ExaminePng(std::string_view bytes, PictureFile& file)
{
    constexpr size_t signature = kPngSignature.size();
    constexpr size_t frame = 12; // of a chunk: length, name, checksum
    const Bytes numbers(bytes);
    // Told that a picture is too large, the decoder would still unpack all of it.
    if (bytes.size() < signature + frame || bytes.substr(signature + 4, 4) != "IHDR"
        || !IsAllowedSize(numbers.Big32(signature + 8), numbers.Big32(signature + 12)))
        return false;
    AddPart(file, bytes.substr(0, signature));
    for (size_t at = signature; bytes.size() - at >= frame;) {
        const size_t length = frame + size_t { numbers.Big32(at) };
        if (length > bytes.size() - at)
            return false;
        const std::string_view name = bytes.substr(at + 4, 4);
        if (name == "IHDR" || name == "PLTE" || name == "tRNS" || name == "IDAT" || name == "IEND")
            AddPart(file, bytes.substr(at, length));
        if (name == "IEND")
            return true;
        at += length;
    }
    return false;
}

// A progressive picture is gone over once a scan, and a scan may be a few bytes. Its marker can't
// be in a scan's data; elsewhere it is counted in vain at times. Behind the last one the picture's
// end must come.
bool ExamineJpeg(std::string_view bytes, PictureFile& file)
{
    file.scans = 0;
    size_t last = 0;
    for (size_t at = bytes.find("\xFF\xDA"); at != std::string_view::npos;
         at = bytes.find("\xFF\xDA", at + 2)) {
        ++file.scans;
        last = at;
    }
    return file.scans > 0 && bytes.find("\xFF\xD9", last) != std::string_view::npos
        && TakeAll(bytes, file);
}

// What the blocks that start there hold together, each with its length in front, up to `most`
// bytes. Gives the place past the empty one; 0 if the file ends before.
size_t TakeGifBlocks(std::string_view bytes, size_t at, size_t most, std::string& content)
{
    const Bytes numbers(bytes);
    content.clear();
    while (at < bytes.size() && numbers.Byte(at) != 0) {
        content += bytes.substr(at + 1, std::min<size_t>(numbers.Byte(at), most - content.size()));
        at += numbers.Byte(at) + 1;
    }
    return at < bytes.size() ? at + 1 : 0;
}

void AppendGifBlocks(std::string& text, std::string_view content)
{
    for (; !content.empty(); content.remove_prefix(std::min<size_t>(content.size(), 255))) {
        const std::string_view block = content.substr(0, 255);
        text.push_back(static_cast<char>(block.size()));
        text += block;
    }
    text.push_back('\0');
}

size_t GifColors(uint32_t flags)
{
    return flags & 0x80 ? size_t { 3 } << (1 + (flags & 7)) : 0;
}

// The first frame alone, in full blocks: the decoder spends its time on each block, and on each
// code, of which a pixel needs no more than one and those that clear the table.
bool ExamineGif(std::string_view bytes, PictureFile& file)
{
    constexpr size_t screen = 13;
    constexpr size_t codesPerPixel = 4; // bytes
    const Bytes numbers(bytes);
    std::string control; // of the frame that follows: its transparent colour
    std::string content;
    size_t at = screen + GifColors(numbers.Byte(10));
    while (at != 0 && numbers.Byte(at) == '!') {
        const bool isControl = numbers.Byte(at + 1) == 0xF9;
        at = TakeGifBlocks(bytes, at + 2, isControl ? 4 : 0, content);
        if (isControl && content.size() == 4)
            control = "!\xF9" + ('\4' + content) + '\0';
    }
    const uint32_t frameWidth = numbers.Little16(at + 5);
    const uint32_t frameHeight = numbers.Little16(at + 7);
    if (at == 0 || numbers.Byte(at) != ',' || frameWidth == 0 || frameHeight == 0)
        return false;
    // A frame that reaches beyond the picture makes it larger: the decoder expects none.
    const uint32_t width = std::max(numbers.Little16(6), numbers.Little16(at + 1) + frameWidth);
    const uint32_t height = std::max(numbers.Little16(8), numbers.Little16(at + 3) + frameHeight);
    const size_t codes = at + 11 + GifColors(numbers.Byte(at + 9));
    if (!IsAllowedSize(width, height)
        || TakeGifBlocks(
               bytes, codes, 1024 + codesPerPixel * size_t { frameWidth } * frameHeight, content)
            == 0)
        return false;
    file.head = bytes.substr(0, 6);
    AppendLittle(file.head, width, 2);
    AppendLittle(file.head, height, 2);
    file.head += bytes.substr(10, screen - 10 + GifColors(numbers.Byte(10)));
    file.head += control;
    file.head += bytes.substr(at, codes - at);
    AppendGifBlocks(file.head, content);
    file.head += ';';
    return true;
}

bool ExamineBmp(std::string_view bytes, PictureFile& file)
{
    const Bytes numbers(bytes);
    constexpr uint32_t newHeader = 40;
    if (numbers.Little32(14) < newHeader) // the old one has 16-bit sizes and nothing packed
        return TakeAll(bytes, file);
    const auto width = static_cast<int32_t>(numbers.Little32(18));
    const int64_t height = std::abs(int64_t { static_cast<int32_t>(numbers.Little32(22)) });
    const int64_t bits = numbers.Little16(28);
    const uint32_t packing = numbers.Little32(30);
    if (!IsAllowedSize(width, height))
        return false;
    const int64_t needed = numbers.Little32(10) + (width * bits + 31) / 32 * 4 * height;
    const bool isPacked = packing == 1 || packing == 2;
    return (isPacked || static_cast<int64_t>(bytes.size()) >= needed) && TakeAll(bytes, file);
}

// JPEGs in a TIFF may be progressive and shared by all tiles: work that nothing here could bound.
bool ExamineTiff(std::string_view bytes, PictureFile& file)
{
    const Bytes numbers(bytes);
    const bool isBig = bytes.front() == 'M';
    const auto number16
        = [&](size_t at) { return isBig ? numbers.Big16(at) : numbers.Little16(at); };
    const auto number32
        = [&](size_t at) { return isBig ? numbers.Big32(at) : numbers.Little32(at); };
    const size_t directory = number32(4);
    constexpr uint32_t compression = 259;
    constexpr size_t entrySize = 12;
    const uint32_t count = number16(directory);
    for (uint32_t i = 0; i < count; ++i) {
        const size_t entry = directory + 2 + entrySize * i;
        // Of one byte, of two or of four: the decoder takes any.
        const uint32_t type = number16(entry + 2);
        const uint32_t value = type == 1 || type == 6 ? numbers.Byte(entry + 8)
            : type == 3 || type == 8                  ? number16(entry + 8)
                                                      : number32(entry + 8);
        if (number16(entry) == compression && (value == 6 || value == 7))
            return false;
    }
    return TakeAll(bytes, file);
}

// A list of pictures, of which the decoder takes one, but none that is a PNG, as the largest one
// usually is.
bool ExamineIco(std::string_view bytes, PictureFile& file)
{
    const Bytes numbers(bytes);
    const uint32_t count = numbers.Little16(4);
    const auto side = [&](size_t at) { return numbers.Byte(at) == 0 ? 256 : numbers.Byte(at); };
    std::string_view largest;
    uint32_t largestArea = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const size_t entry = 6 + size_t { 16 } * i;
        const uint64_t length = numbers.Little32(entry + 8);
        const uint64_t offset = numbers.Little32(entry + 12);
        if (length + offset > bytes.size())
            return false;
        const uint32_t area = side(entry) * side(entry + 1);
        if (area > largestArea) {
            largestArea = area;
            largest = bytes.substr(offset, length);
        }
    }
    if (!largest.starts_with(kPngSignature))
        return TakeAll(bytes, file);
    file.decoder = "png";
    return ExaminePng(largest, file);
}

// The first frame of an animation as a picture of its own: the decoder would make room for the
// whole, and tell its troubles on standard error.
bool TakeWebpFrame(std::string_view frame, PictureFile& file)
{
    constexpr size_t header = 16;
    constexpr uint32_t hasAlpha = 0x10;
    if (frame.size() < header)
        return false;
    const Bytes numbers(frame);
    const uint32_t width = numbers.Little24(6); // one less than it is, as the height
    const uint32_t height = numbers.Little24(9);
    if (!IsAllowedSize(int64_t { width } + 1, int64_t { height } + 1))
        return false;
    const std::string_view picture = frame.substr(header);
    file.head = "RIFF";
    AppendLittle(file.head, static_cast<uint32_t>(4 + 18 + picture.size()), 4);
    file.head += "WEBPVP8X";
    AppendLittle(file.head, 10, 4);
    AppendLittle(file.head, hasAlpha, 4);
    AppendLittle(file.head, width, 3);
    AppendLittle(file.head, height, 3);
    file.head += picture; // in one piece, as the decoder wants it
    return true;
}

bool ExamineWebp(std::string_view bytes, PictureFile& file)
{
    constexpr uint32_t isAnimation = 2;
    const Bytes numbers(bytes);
    if (bytes.size() < size_t { numbers.Little32(4) } + 8)
        return false;
    const std::string_view kind = bytes.substr(12, 4);
    if (kind == "VP8 ")
        return IsAllowedSize(numbers.Little16(26) & 0x3FFF, numbers.Little16(28) & 0x3FFF)
            && TakeAll(bytes, file);
    if (kind == "VP8L") {
        const uint32_t sizes = numbers.Little32(21);
        return IsAllowedSize((sizes & 0x3FFF) + 1, (sizes >> 14 & 0x3FFF) + 1)
            && TakeAll(bytes, file);
    }
    if (kind != "VP8X"
        || !IsAllowedSize(
            int64_t { numbers.Little24(24) } + 1, int64_t { numbers.Little24(27) } + 1))
        return false;
    if (!(numbers.Byte(20) & isAnimation))
        return TakeAll(bytes, file);
    constexpr size_t chunkHeader = 8;
    for (size_t at = 12; at + chunkHeader <= bytes.size();) {
        const size_t length = numbers.Little32(at + 4);
        if (length > bytes.size() - at - chunkHeader)
            return false;
        if (bytes.substr(at, 4) == "ANMF")
            return TakeWebpFrame(bytes.substr(at + chunkHeader, length), file);
        at += chunkHeader + length + length % 2;
    }
    return false;
}

}

bool Examine(std::string_view bytes, PictureFile& file)
{
    using namespace std::string_view_literals;

    constexpr struct
    {
        std::string_view signature;
        const char* decoder;
        bool (*examine)(std::string_view bytes, PictureFile& file);
    } formats[] = {
        { kPngSignature, "png", &ExaminePng },
        { "\xFF\xD8\xFF"sv, "jpeg", &ExamineJpeg },
        { "GIF87a"sv, "gif", &ExamineGif },
        { "GIF89a"sv, "gif", &ExamineGif },
        { "BM"sv, "bmp", &ExamineBmp },
        { "II*\0"sv, "tiff", &ExamineTiff },
        { "MM\0*"sv, "tiff", &ExamineTiff },
        { "\0\0\1\0"sv, "ico", &ExamineIco },
        { "RIFF"sv, "webp", &ExamineWebp },
    };

    file = {};
    for (const auto& format : formats) {
        if (bytes.starts_with(format.signature)) {
            file.decoder = format.decoder;
            return format.examine(bytes, file);
        }
    }
    return false;
}

}
