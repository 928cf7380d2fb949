#include "foundation/OQUniqueList.h"

#include "foundation/StringPrinting.h"

namespace {

struct Counted
{
    explicit Counted(int& counter)
        : live(counter)
    {
        ++live;
    }

    ~Counted() { --live; }

    int& live;
};

// Can't be copied, as if there were no memory.
struct NoMemoryKey
{
    NoMemoryKey() = default;

    NoMemoryKey(const NoMemoryKey&) { throw std::bad_alloc(); }

    explicit operator uint32_t() const { return 0; }

    bool operator==(const NoMemoryKey&) const = default;
};

}

TEST_CASE("Sets hold each item once, texts without regard to case or by their hash alone")
{
    OQUniqueList<int> numbers;
    CHECK(numbers.Add(3));
    CHECK_FALSE(numbers.Add(3));
    OQStringUniqueList texts;
    CHECK(texts.Add(u"Abc"));
    CHECK_FALSE(texts.Add(u"aBC"));
    CHECK(texts.Contains(u"ABC"));
    OQStringCRCUniqueList hashes;
    CHECK(hashes.Add(OQString(u"Abc")));
    CHECK_FALSE(hashes.Add(OQString(u"abc")));
    CHECK(hashes.begin()->key.number == OQHashText(u"abc"));
}

TEST_CASE("Owning maps delete what is removed, replaced or left")
{
    int live = 0;
    {
        OQStringToOwnedPtrMap<Counted> texts;
        texts.Set(OQString(u"a"), new Counted(live));
        texts.Set(OQString(u"A"), new Counted(live));
        CHECK(live == 1);
        OQOwnedPtrMap<int, Counted> numbers;
        for (int i = 0; i < 50; ++i)
            numbers.Set(i, new Counted(live));
        numbers.Remove(7);
        CHECK(live == 50);
        numbers.ClearAll();
        CHECK(live == 1);
        numbers.Set(1, new Counted(live));
        OQOwnedPtrMap<NoMemoryKey, Counted> full;
        CHECK_THROWS_AS(full.Set(NoMemoryKey(), new Counted(live)), std::bad_alloc);
        CHECK(live == 2);
    }
    CHECK(live == 0);
}
