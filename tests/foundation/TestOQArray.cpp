#include "foundation/OQArray.h"

#include "foundation/OQStringArray.h"
#include "foundation/StringPrinting.h"

#include <string>

namespace {

struct Counted
{
    explicit Counted(int& live)
        : m_live(live)
    {
        ++m_live;
    }

    ~Counted() { --m_live; }

    int& m_live;
};

}

TEST_CASE("Arrays grow by the table, or in multiples of their step")
{
    OQNumberArray<int> array;
    CHECK(array.GetCapacity() == 0);
    const int counts[] = { 1, 5, 65, 257, 1025, 4097, 16385, 65537 };
    const int capacities[] = { 4, 64, 256, 1024, 4096, 16384, 65536, 65537 + 65536 };
    for (int i = 0; i < 8; ++i) {
        while (array.GetCount() < counts[i])
            array.Add(array.GetCount());
        CHECK(array.GetCapacity() == capacities[i]);
    }
    CHECK(array[65536] == 65536);

    OQNumberArray<int> stepped;
    stepped.SetGrowthStep(10);
    for (int i = 0; i < 21; ++i)
        stepped.Add(i);
    CHECK(stepped.GetCapacity() == 30);
}

TEST_CASE("A size that no memory can hold is refused and changes nothing")
{
    struct Huge
    {
        char bytes[size_t { 1 } << 33];
    };

    OQArray<Huge> huge;
    CHECK_THROWS_AS(huge.Reserve(INT32_MAX), std::bad_alloc);
    CHECK(huge.GetCapacity() == 0);
    OQNumberArray<double> array { 1, 2 };
    array.SetSize(-3);
    CHECK(array.IsEmpty());
}

TEST_CASE("Removal moves the tail down and zero-fills the slots that come free")
{
    OQNumberArray<int> array { 1, 2, 3, 4, 5 };
    array.Remove(1, 2);
    REQUIRE(array.GetCount() == 3);
    CHECK(array[1] == 4);
    CHECK(array.GetData()[3] == 0);
    CHECK(array.GetData()[4] == 0);
    array.Remove(2, 99);
    array.Remove(-1);
    array.Remove(7);
    CHECK(array.GetCount() == 2);
    array.SetSize(4);
    CHECK(array[3] == 0);
    array.Insert(99, 9);
    array.Insert(-5, 8);
    CHECK(array[0] == 8);
    CHECK(array.Last() == 9);
    CHECK(array.Find(4) == 2);
    CHECK(array.Find(77) == -1);
}

TEST_CASE("An element of the array itself may be added while the array grows")
{
    OQStringArray strings;
    OQArray<std::string> texts; // not movable as bytes: short ones point into themselves
    strings.Add(u"one");
    texts.Add("one");
    for (int i = 0; i < 300; ++i) {
        strings.Add(strings[0]);
        texts.Add(texts[0]);
        strings.Insert(0, strings.Last());
        texts.Insert(0, texts.Last());
    }
    for (int i = 0; i < strings.GetCount(); ++i) {
        REQUIRE(strings[i] == u"one");
        REQUIRE(texts[i] == "one");
    }
    texts.Remove(0, 500);
    CHECK(texts.Last() == "one");
    OQArray<std::string> copy = texts;
    const OQArray<std::string> moved = std::move(copy);
    CHECK(moved.GetCount() == texts.GetCount());
}

TEST_CASE("Owning arrays delete what is removed, and what is left at their end")
{
    int live = 0;
    {
        OQOwnedPtrArray<Counted> owner;
        for (int i = 0; i < 70; ++i)
            owner.Add(new Counted(live));
        owner.Insert(3, new Counted(live));
        CHECK(live == 71);
        delete owner.Detach(0);
        owner.Remove(5, 10);
        CHECK(live == 60);
        OQOwnedPtrArray<Counted> other = std::move(owner);
        CHECK(live == 60);
        other.SetSize(50);
        CHECK(live == 50);
    }
    CHECK(live == 0);
}
