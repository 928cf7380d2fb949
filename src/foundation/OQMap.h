#pragma once

#include "foundation/OQMapBase.h"
#include "foundation/OQString.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

// A chained hash map. Keys are compared by ==, so texts exactly; OQStringMap compares them without
// regard to case. KeyArg: how a key is handed in. Iteration goes from bucket 0 upward, along each
// chain, and gives nodes with the members `key` and `value`; it ends with the next change of the
// map. Nodes stay where they are till they are removed. One thread at a time. Memory that can't be
// had throws std::bad_alloc.
template <class K, class V, class KeyArg = const K&, class ValueArg = const V&>
class OQMap : public OQMapBase
{
public:
    struct Node : OQMapNode
    {
        explicit Node(KeyArg k)
            : key(k)
        {
        }

        K key;
        V value {};
    };

    template <class N>
    class Iterator
    {
    public:
        using value_type = N;
        using difference_type = std::ptrdiff_t;

        Iterator() = default;

        Iterator(const OQMap* map, OQMapNode* node)
            : m_map(map)
            , m_node(node)
        {
        }

        N& operator*() const { return *static_cast<N*>(m_node); }

        N* operator->() const { return static_cast<N*>(m_node); }

        Iterator& operator++()
        {
            m_node = m_map->NextNode(m_node);
            return *this;
        }

        Iterator operator++(int)
        {
            Iterator before = *this;
            ++*this;
            return before;
        }

        bool operator==(const Iterator& other) const { return m_node == other.m_node; }

    private:
        const OQMap* m_map = nullptr;
        OQMapNode* m_node = nullptr;
    };

    explicit OQMap(CBlockDataContainer* pool = nullptr)
        : OQMapBase(pool)
    {
    }

    OQMap(const OQMap& other)
        : OQMapBase(nullptr)
    {
        *this = other;
    }

    OQMap(OQMap&& other) noexcept
        : OQMapBase(nullptr)
    {
        SwapEntries(other);
    }

    ~OQMap() override { OQMap::ClearAll(); }

    OQMap& operator=(const OQMap& other)
    {
        if (this == &other)
            return *this;
        ClearAll();
        for (const Node& node : other)
            FindOrAdd(node.key)->value = node.value;
        return *this;
    }

    OQMap& operator=(OQMap&& other) noexcept
    {
        SwapEntries(other);
        return *this;
    }

    void ClearAll() override
    {
        // By the buckets alone: in the destructor, Hash is no longer that of a derived class.
        for (uint32_t bucket = 0; bucket < m_bucketCount; ++bucket) {
            while (OQMapNode* node = m_buckets[bucket]) {
                m_buckets[bucket] = node->next;
                DestroyNode(static_cast<Node*>(node), !m_pool);
            }
        }
        ReleaseBuckets();
    }

    uint32_t BucketOf(const OQMapNode* node) const override
    {
        return Hash(static_cast<const Node*>(node)->key) % m_bucketCount;
    }

    size_t NodeSize() const override { return sizeof(Node); }

    virtual uint32_t Hash(KeyArg key) const
    {
        if constexpr (std::is_convertible_v<KeyArg, const OQString&>)
            return OQHashText(static_cast<const OQString&>(key).View());
        else if constexpr (std::is_pointer_v<K>)
            return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(key) >> 3);
        else
            return static_cast<uint32_t>(key);
    }

    virtual bool Equal(KeyArg key, const K& stored) const { return key == stored; }

    // free: the node's memory is given back as well.
    virtual void DestroyNode(Node* node, bool free)
    {
        node->~Node();
        if (free)
            ::operator delete(node);
    }

    virtual Node* CreateNode(KeyArg key)
    {
        static_assert(alignof(Node) <= 8 || alignof(Node) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
        void* memory = m_pool ? m_pool->Allocate(NodeSize()) : ::operator new(NodeSize());
        try {
            return new (memory) Node(key);
        } catch (...) {
            if (!m_pool)
                ::operator delete(memory);
            throw;
        }
    }

    Node* Find(KeyArg key) { return const_cast<Node*>(static_cast<const OQMap*>(this)->Find(key)); }

    const Node* Find(KeyArg key) const
    {
        if (m_count == 0)
            return nullptr;
        return FindInBucket(key, Hash(key) % m_bucketCount);
    }

    bool Contains(KeyArg key) const { return Find(key) != nullptr; }

    // False, and `value` left as it is, without the key.
    bool Lookup(KeyArg key, V& value) const
    {
        const Node* node = Find(key);
        if (node)
            value = node->value;
        return node != nullptr;
    }

    Node* FindOrAdd(KeyArg key, bool* existed = nullptr)
    {
        const uint32_t hash = Hash(key);
        Node* node = m_bucketCount == 0
            ? nullptr
            : const_cast<Node*>(FindInBucket(key, hash % m_bucketCount));
        if (existed)
            *existed = node != nullptr;
        if (node)
            return node;
        node = CreateNode(key);
        try {
            GrowForOne();
        } catch (...) {
            DestroyNode(node, !m_pool);
            throw;
        }
        LinkAtEnd(node, hash % m_bucketCount);
        return node;
    }

    void Set(KeyArg key, ValueArg value) { FindOrAdd(key)->value = value; }

    // True if there was such an entry.
    bool Remove(KeyArg key)
    {
        if (m_count == 0)
            return false;
        OQMapNode** link = &m_buckets[Hash(key) % m_bucketCount];
        for (; *link; link = &(*link)->next) {
            auto* node = static_cast<Node*>(*link);
            if (!Equal(key, node->key))
                continue;
            *link = node->next;
            --m_count;
            DestroyNode(node, !m_pool);
            return true;
        }
        return false;
    }

    Iterator<Node> begin() { return { this, NextNode(nullptr) }; }

    Iterator<Node> end() { return {}; }

    Iterator<const Node> begin() const { return { this, NextNode(nullptr) }; }

    Iterator<const Node> end() const { return {}; }

private:
    const Node* FindInBucket(KeyArg key, uint32_t bucket) const
    {
        for (const OQMapNode* node = m_buckets[bucket]; node; node = node->next) {
            if (Equal(key, static_cast<const Node*>(node)->key))
                return static_cast<const Node*>(node);
        }
        return nullptr;
    }
};

// Text keys compared without regard to case; an entry keeps the spelling that it was made with.
template <class V, class ValueArg = const V&>
class OQStringMap : public OQMap<OQString, V, const OQString&, ValueArg>
{
public:
    using OQMap<OQString, V, const OQString&, ValueArg>::OQMap;

    bool Equal(const OQString& key, const OQString& stored) const override
    {
        return key.GetLength() == stored.GetLength() && key.StartsWithNoCase(stored);
    }
};
