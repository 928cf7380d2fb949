#include "foundation/OQString.h"

#include "foundation/OQStringArray.h"
#include "foundation/OQStringGlobals.h"
#include "foundation/StringPrinting.h"

#include <cstring>
#include <vector>

namespace {

struct StaticText
{
    OQStringHeader header;
    OQChar text[4];
};

// An owner of its own, as another module has one.
class CountingManager final : public IOQStringManager
{
public:
    OQStringHeader* Allocate(int32_t length, bool useCache) override
    {
        OQStringHeader* block = Real().Allocate(length, useCache);
        block->owner = this;
        ++blocks;
        return block;
    }

    void Free(OQStringHeader* block) override
    {
        block->owner = &Real();
        Real().Free(block);
        --blocks;
    }

    OQChar* AllocateEmpty(int32_t length) override { return Allocate(length, true)->Text(); }

    OQChar* AllocateZeroed(int32_t) override { return GetEmpty(); }

    OQChar* CreateFromNarrow(const char*) override { return GetEmpty(); }

    OQChar* Create(const OQChar* text, int32_t length, int32_t, bool, bool, bool) override
    {
        OQStringHeader* block = Allocate(length, true);
        std::memcpy(block->Text(), text, sizeof(OQChar) * static_cast<size_t>(length + 1));
        block->length = length;
        return block->Text();
    }

    OQChar* GetEmpty() override { return Real().GetEmpty(); }

    int blocks = 0;

private:
    static OQStringGlobals& Real() { return OQStringGlobals::Get(); }
};

// A string that holds the given characters, with their header in front.
OQString Adopt(OQChar* text)
{
    static_assert(sizeof(OQString) == sizeof(OQChar*));
    OQString result;
    std::memcpy(static_cast<void*>(&result), &text, sizeof text);
    return result;
}

// While these live, new blocks are as long as they were asked for.
std::vector<OQString> EmptyTheCache()
{
    std::vector<OQString> strings(16);
    for (OQString& text : strings)
        text += u'x';
    return strings;
}

const OQStringHeader& HeaderOf(const OQString& text)
{
    return *OQStringHeader::Of(const_cast<OQChar*>(text.GetText()));
}

}

TEST_CASE("Copies share the text until one of them is written to")
{
    OQString first = u"abc";
    const OQString second = first;
    CHECK(first.GetText() == second.GetText());
    CHECK(HeaderOf(first).references == 2);
    first += u"d";
    CHECK(first == u"abcd");
    CHECK(second == u"abc");
    CHECK(HeaderOf(second).references == 1);

    const OQString nothing;
    CHECK(nothing.GetText() == OQString(u"").GetText());
    CHECK(nothing.GetText() == OQString(nullptr).GetText());
}

TEST_CASE("A copy of a string whose buffer is out is a separate block")
{
    OQString text = u"abc";
    OQChar* buffer = text.GetBuffer(3);
    CHECK(HeaderOf(text).references == OQStringHeader::Locked);
    const OQString copy = text;
    OQString assigned;
    assigned = text;
    buffer[0] = u'x';
    text.ReleaseBuffer();
    CHECK(text == u"xbc");
    CHECK(copy == u"abc");
    CHECK(assigned == u"abc");
}

TEST_CASE("A text in constant data survives any number of copies, writes and releases")
{
    StaticText block { { nullptr, 3, 4, OQStringHeader::StaticMarker }, { u'a', u'b', u'c', 0 } };
    {
        const OQString text = Adopt(block.text);
        const std::vector<OQString> copies(100, text);
        CHECK(copies[99].GetText() == block.text);
        OQString written = text;
        written.MakeUpper();
        CHECK(written == u"ABC");
    }
    CHECK(block.header.references == OQStringHeader::StaticMarker);
    CHECK(block.text[0] == u'a');
}

TEST_CASE("A text that passes from one owner to another is copied through the target's")
{
    CountingManager other;
    {
        OQString foreign = Adopt(other.Create(u"abc", 3, -1, false, false, false));
        CHECK(other.blocks == 1);
        const OQString mine = foreign;
        CHECK(mine == u"abc");
        CHECK(mine.GetText() != foreign.GetText());
        CHECK(other.blocks == 1);
        foreign = OQString(u"xyz").Left(2) + u"!";
        foreign = Adopt(other.Create(u"pqr", 3, -1, false, false, false));
        const OQString text = u"text";
        foreign = text;
        CHECK(HeaderOf(foreign).owner == &other);
        CHECK(foreign == u"text");
    }
    CHECK(other.blocks == 0);
}

TEST_CASE("Buffers grow by powers of two, by 1 MiB steps, exactly, and not at all")
{
    const std::vector<OQString> cached = EmptyTheCache();
    OQString text = u"x";
    text.GetBuffer(20);
    text.ReleaseBuffer(0);
    const int capacity = HeaderOf(text).capacity;
    CHECK(capacity == 33);
    const OQChar* before = text.GetText();
    text.GetBuffer(capacity - 1);
    text.ReleaseBuffer(0);
    CHECK(text.GetText() == before);
    text.GetBuffer(capacity); // the capacity counts the terminator
    text.ReleaseBuffer(0);
    CHECK(HeaderOf(text).capacity == 65);

    text.GetBuffer(0x100000);
    text.ReleaseBuffer(0);
    CHECK(HeaderOf(text).capacity == 0x200001);

    OQString exact;
    exact.GetBuffer(1500, true);
    exact.ReleaseBuffer(0);
    CHECK(HeaderOf(exact).capacity == 1501);
    CHECK_THROWS_AS(exact.GetBuffer(INT32_MAX), std::bad_alloc);
    CHECK(exact.IsEmpty());
}

TEST_CASE("ReleaseBuffer measures up to the first zero and never past the block")
{
    OQString text = u"abcdef";
    text.GetBuffer(6)[2] = 0;
    text.ReleaseBuffer();
    CHECK(text == u"ab");

    OQChar* buffer = text.GetBuffer(2000, true);
    for (int i = 0; i <= 2000; ++i)
        buffer[i] = u'x';
    text.ReleaseBuffer();
    CHECK(text.GetLength() == 2000);
    text.ReleaseBuffer(5); // nothing is out
    CHECK(text.GetLength() == 2000);
}

TEST_CASE("A string may be appended to, inserted in and cut out of itself")
{
    OQString text = u"abc";
    for (int i = 0; i < 10; ++i)
        text += text;
    CHECK(text.GetLength() == 3 * 1024);
    CHECK(text.Right(4) == u"cabc");
    text = text.Left(6);
    text += text.GetText() + 4;
    CHECK(text == u"abcabcbc");
    text.Insert(2, text);
    CHECK(text == u"ababcabcbccabcbc");
    text = text.Mid(1, 2);
    CHECK(text == u"ba");
    text += u'!';
    CHECK(u"<" + text + u'>' == u"<ba!>");
}

TEST_CASE("Positions outside the text are clipped to it")
{
    OQString text = u"abc";
    CHECK(text.Left(-1).IsEmpty());
    CHECK(text.Left(9) == u"abc");
    CHECK(text.Right(9) == u"abc");
    CHECK(text.Right(-1).IsEmpty());
    CHECK(text.Mid(9).IsEmpty());
    CHECK(text.Mid(-5, 2) == u"ab");
    CHECK(text.Find(u'c', 99) == -1);
    CHECK(text.Find(u"", 3) == 3);
    CHECK(text.Find(u'a', -7) == 0);
    text.Delete(2, 99);
    text.Delete(-4, 0);
    text.Insert(99, u"!");
    CHECK(text == u"ab!");
}

TEST_CASE("Comparison is exact or in lower case, by unit values")
{
    CHECK(OQString(u"abc") < OQString(u"abd"));
    CHECK(OQString(u"Z") < OQString(u"a"));
    CHECK(OQString(u"ab") < OQString(u"abc"));
    CHECK(OQString(u"\u00e9") > OQString(u"z"));
    CHECK(OQString(u"ABC").CompareNoCase(u"abc") == 0);
    CHECK(OQString(u"\u00c4\u0416").CompareNoCase(u"\u00e4\u0436") == 0);
    CHECK(OQString(u"a_").CompareNoCase(u"AB") < 0); // "_" is above "B" but below "b"
    CHECK(OQString(u"xYz").FindNoCase(u"yZ") == 1);
    CHECK(OQString(u"<XmlFN v").StartsWithNoCase(u"<XMLFN"));
    CHECK_FALSE(OQString(u"ab").StartsWith(u"abc"));
    CHECK(OQString(u"abc").EndsWith(u"bc"));
    CHECK(OQString(u"a.b.c").ReverseFind(u'.') == 3);
}

TEST_CASE("Trimming, replacing and splitting")
{
    OQString text = u" \t\u00a0a b\r\n\u2003";
    text.Trim();
    CHECK(text == u"a b");
    text = u"  ";
    text.Trim();
    CHECK(text.IsEmpty());

    text = u"aaaa";
    CHECK(text.Replace(u"aa", u"b") == 2);
    CHECK(text == u"bb");
    CHECK(text.Replace(u"b", u"abba") == 2);
    CHECK(text == u"abbaabba");
    CHECK(text.Replace(u"", u"x") == 0);
    CHECK(text.Replace(u"bb", u"") == 2);
    CHECK(text == u"aaaa");

    OQStringArray parts;
    OQString(u";a;;b;").Split(u';', parts);
    CHECK(parts.Join(u"|") == u"|a||b|");
    CHECK(parts.GetCount() == 5);
    parts[1].Split(u';', parts); // the list holds what is split
    CHECK(parts.GetCount() == 1);
    CHECK(parts[0] == u"a");
}

TEST_CASE("Freed blocks are taken again when they fit")
{
    const std::vector<OQString> cached = EmptyTheCache();
    const OQChar* address = nullptr;
    {
        OQString text;
        text.GetBuffer(700, true);
        text.ReleaseBuffer(0);
        address = text.GetText();
    }
    OQString close;
    close.GetBuffer(695, true);
    close.ReleaseBuffer(0);
    CHECK(close.GetText() == address);
    CHECK(HeaderOf(close).capacity == 701);
}
