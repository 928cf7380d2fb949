#include "foundation/OQDllString.h"

#include "foundation/StringPrinting.h"

#include <cstring>

TEST_CASE("Another module reads and fills a string through its interface")
{
    OQString text = u"old";
    OQDllString holder(text);
    IOQDllString& border = holder;
    CHECK(OQString(border.GetText()) == u"old");
    border.SetText(u"abcdef", 3);
    CHECK(text == u"abc");
    border.SetText(border.GetText() + 1, -1);
    CHECK(text == u"bc");
    std::memcpy(border.GetBuffer(4, false), u"wxyz", 10);
    border.ReleaseBuffer(-1);
    CHECK(text == u"wxyz");
    border.SetText(nullptr, 5);
    CHECK(text.IsEmpty());
}

TEST_CASE("A byte buffer grows by what is asked, zeroed and counted on wish")
{
    OQByteBuffer buffer;
    uint8_t* added = buffer.Add(4, true, 100);
    REQUIRE(added);
    CHECK(buffer.GetCapacity() == 100);
    CHECK(added[3] == 0);
    CHECK(buffer.GetSize() == 4);
    CHECK(buffer.Add(10, false, 0, false) == buffer.GetData() + 4);
    CHECK(buffer.GetSize() == 4);
    buffer.Add(200, false, 10);
    CHECK(buffer.GetCapacity() == 204);
    CHECK(buffer.Add(SIZE_MAX) == nullptr);
    CHECK(buffer.Add(1, false, SIZE_MAX) == nullptr);
    OQDllBuffer border(buffer);
    CHECK(border.SetSize(300));
    CHECK(border.GetData()[299] == 0);
    CHECK_FALSE(border.SetSize(UINT64_MAX));
    CHECK(border.GetSize() == 300);
}
