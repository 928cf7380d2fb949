#include "foundation/OQMap.h"

#include "foundation/OQNumberText.h"
#include "foundation/StringPrinting.h"

#include <vector>

namespace {

// Every key meets in one chain.
class OneChainMap : public OQMap<int, int>
{
public:
    ~OneChainMap() override { OneChainMap::ClearAll(); }

    uint32_t Hash(const int&) const override { return 5; }
};

}

TEST_CASE("The hash runs over the lower case of the text")
{
    CHECK(OQHashText({}) == 0);
    CHECK(OQHashText(u"a") == 97);
    CHECK(OQHashText(u"AB") == 97u * 65599 + 98);
    // ((97 * 65599 + 98) * 65599 + 99) modulo 2^32
    CHECK(OQHashText(u"aBc") == 807794786u);
}

TEST_CASE("The table grows with the seventeenth entry to 31 buckets")
{
    OQMap<int, int> map;
    CHECK(map.GetBucketCount() == 0);
    for (int i = 0; i < 16; ++i)
        map.Set(i, i * i);
    CHECK(map.GetBucketCount() == 7);
    map.Set(16, 256);
    CHECK(map.GetBucketCount() == 31);
    CHECK(map.GetCount() == 17);
    for (int i = 0; i < 17; ++i)
        CHECK(map.Find(i)->value == i * i);
}

TEST_CASE("Plain maps compare texts exactly, string maps without regard to case")
{
    OQMap<OQString, OQString> exact;
    exact.Set(u"Add", u"2");
    exact.Set(u"add", u"3");
    CHECK(exact.GetCount() == 2);
    OQString value = u"kept";
    CHECK_FALSE(exact.Lookup(u"ADD", value));
    CHECK(value == u"kept");
    CHECK(exact.Lookup(u"Add", value));
    CHECK(value == u"2");

    OQStringMap<int> map;
    map.Set(u"ABC", 1);
    bool existed = false;
    map.FindOrAdd(u"abc", &existed)->value = 2;
    CHECK(existed);
    CHECK(map.GetCount() == 1);
    CHECK(map.begin()->key == u"ABC"); // the first spelling stays
    CHECK(map.begin()->value == 2);
    CHECK(map.Remove(u"aBc"));
    CHECK_FALSE(map.Remove(u"aBc"));
    CHECK(map.IsEmpty());
}

TEST_CASE("Iteration goes bucket by bucket, along each chain in order of insertion")
{
    OQMap<int, int> map;
    for (const int key : { 15, 3, 8, 1, 10, 7 })
        map.Set(key, 0);
    std::vector<int> keys;
    for (const auto& node : map)
        keys.push_back(node.key);
    CHECK(keys == std::vector<int> { 7, 15, 8, 1, 3, 10 }); // modulo 7: 0, 1 1 1, 3 3
}

TEST_CASE("Keys of one hash stay in order of insertion through growth and removal")
{
    OneChainMap map;
    for (int i = 0; i < 40; ++i)
        map.Set(39 - i, i);
    map.Remove(39);
    map.Remove(20);
    map.Remove(0);
    int previous = 39;
    for (const auto& node : map) {
        CHECK(node.key < previous);
        CHECK(node.key != 20);
        previous = node.key;
    }
    CHECK(map.GetCount() == 37);
}

TEST_CASE("Maps copy, move and clear, with nodes from the heap or from a pool")
{
    CBlockDataContainer pool;
    OQMap<OQString, OQString> pooled(&pool);
    for (int i = 0; i < 5000; ++i)
        pooled.Set(OQIntToText(i), OQIntToText(i * 2));
    OQMap<OQString, OQString> copy = pooled;
    pooled.ClearAll();
    pooled.Set(u"again", u"yes");
    OQMap<OQString, OQString> moved = std::move(copy);
    REQUIRE(moved.GetCount() == 5000);
    CHECK(moved.Find(u"4999")->value == u"9998");
    moved = std::move(pooled);
    CHECK(moved.Contains(u"again"));
}
