#include "foundation/OQList.h"

#include "foundation/StringPrinting.h"

#include <string>

namespace {

std::string Forward(const OQList<char>& list)
{
    std::string text;
    for (const char c : list)
        text += c;
    return text;
}

std::string Backward(const OQList<char>& list)
{
    std::string text;
    for (const auto* node = list.Last(); node; node = node->Previous())
        text += node->value;
    return text;
}

}

TEST_CASE("A list keeps its order both ways through adding and removing anywhere")
{
    OQList<char> list;
    CHECK(list.First() == nullptr);
    auto* c = list.AddLast('c');
    auto* a = list.AddFirst('a');
    list.InsertAfter(a, 'b');
    list.InsertAfter(c, 'd');
    CHECK(Forward(list) == "abcd");
    CHECK(Backward(list) == "dcba");
    CHECK(list.Remove(c)->value == 'd');
    CHECK(list.Remove(list.Last()) == nullptr);
    list.Remove(a);
    CHECK(Forward(list) == "b");
    CHECK(Backward(list) == "b");

    for (char i = '0'; i <= '9'; ++i)
        list.AddLast(i);
    for (auto* node = list.First(); node;)
        node = (node->value & 1) ? list.Remove(node) : node->Next();
    CHECK(Forward(list) == "b02468");
    OQList<char> moved = std::move(list);
    CHECK(Backward(moved) == "86420b");
    CHECK(moved.GetCount() == 6);
    moved.Clear();
    CHECK(moved.IsEmpty());
    CHECK(Forward(moved).empty());
}

TEST_CASE("A list frees what its elements hold")
{
    const OQString text = u"shared";
    {
        OQList<OQString> list;
        for (int i = 0; i < 10; ++i)
            list.AddLast(text);
        list.Remove(list.First());
        CHECK(OQStringHeader::Of(const_cast<OQChar*>(text.GetText()))->references == 10);
    }
    CHECK(OQStringHeader::Of(const_cast<OQChar*>(text.GetText()))->references == 1);
}
