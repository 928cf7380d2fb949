#pragma once

#include "foundation/OQMap.h"

#include <memory>

// Maps used as sets, and maps that own their values. All iterate and grow as OQMap does.

struct OQNoValue
{
};

template <class T>
class OQUniqueList : public OQMap<T, OQNoValue>
{
public:
    using OQMap<T, OQNoValue>::OQMap;

    // False if it was there already.
    bool Add(const T& item)
    {
        bool existed = false;
        this->FindOrAdd(item, &existed);
        return !existed;
    }
};

// Without regard to case.
class OQStringUniqueList : public OQStringMap<OQNoValue>
{
public:
    using OQStringMap<OQNoValue>::OQStringMap;

    bool Add(const OQString& text)
    {
        bool existed = false;
        FindOrAdd(text, &existed);
        return !existed;
    }
};

// The number that stands for a text: its hash, without regard to case.
struct OQStringHashBase
{
    uint32_t number = 0;

    OQStringHashBase() = default;

    OQStringHashBase(const OQString& text)
        : number(OQHashText(text.View()))
    {
    }

    explicit operator uint32_t() const { return number; }

    bool operator==(const OQStringHashBase&) const = default;
};

// Keeps 32 bits for each text, not the text: two texts of one hash count as the same.
class OQStringCRCUniqueList : public OQUniqueList<OQStringHashBase>
{
public:
    using OQUniqueList<OQStringHashBase>::OQUniqueList;
};

// Owns the objects that its values point at: removing an entry, setting another object, and the end
// of the map delete them.
template <class Map, class V>
class OQOwningMap : public Map
{
public:
    using Map::Map;
    OQOwningMap() = default;
    OQOwningMap(const OQOwningMap&) = delete;
    OQOwningMap& operator=(const OQOwningMap&) = delete;

    ~OQOwningMap() override { this->ClearAll(); }

    // If there is no memory for the entry, the object is deleted, so that nobody has to ask.
    template <class Key>
    void Set(const Key& key, V* value)
    {
        std::unique_ptr<V> owned(value);
        V*& stored = this->FindOrAdd(key)->value;
        if (stored != value)
            delete stored;
        stored = owned.release();
    }

    void DestroyNode(typename Map::Node* node, bool free) override
    {
        delete node->value;
        Map::DestroyNode(node, free);
    }
};

template <class K, class V>
using OQOwnedPtrMap = OQOwningMap<OQMap<K, V*>, V>;

template <class V>
using OQStringToOwnedPtrMap = OQOwningMap<OQStringMap<V*>, V>;
