#include "siblings/image/ImageTesting.h"

#include <pxvis/IOQVisualizationHost.h>

#include <fstream>
#include <string_view>

namespace {

std::string BytesOf(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

bool LoadBytes(IOQImage& image, std::string_view bytes, int32_t width = 0, int32_t height = 0)
{
    const HostPicture picture { reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size() };
    return image.LoadFromHost(&picture, width, height);
}

bool LoadFile(IOQImage& image, const std::u16string& path, int32_t width = 0, int32_t height = 0)
{
    return image.Load(path.c_str(), width, height, 0, -1, 1, 0, 0, 0, 0);
}

}

TEST_CASE("A saved picture is loaded again with every bit, from a file and from a host")
{
    Folder folder;
    Image image = MakeImage(5, 3);
    for (uint32_t i = 0; i < 15; ++i)
        image->GetBits()[i] = i * 0x11223345u;
    REQUIRE(image->SavePng(folder.Name("a.png").c_str(), false));

    Image loaded(OQCreateImage());
    CHECK_FALSE(loaded->IsValid());
    REQUIRE(LoadFile(*loaded, folder.Name("a.png")));
    CHECK(loaded->IsValid());
    CHECK(loaded->GetSize() == OQSize { 5, 3 });
    CHECK(std::equal(image->GetBits(), image->GetBits() + 15, loaded->GetBits()));

    fs::create_directory(folder.path / "b");
    fs::copy(folder.path / "a.png", folder.path / "b/c.png");
    const std::u16string other = folder.path.u16string() + u"\\b\\c.png";
    REQUIRE(LoadFile(*loaded, other, 10, -3));
    CHECK(loaded->GetSize() == OQSize { 10, 3 });
    REQUIRE(LoadBytes(*loaded, BytesOf(folder.path / "a.png"), 0, 7));
    CHECK(loaded->GetSize() == OQSize { 5, 7 });

    CHECK_FALSE(LoadFile(*loaded, folder.Name("missing.png")));
    CHECK_FALSE(loaded->IsValid());
    CHECK(loaded->GetBits() == nullptr);
}
