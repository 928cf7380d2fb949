#pragma once

#include <cstddef>
#include <utility>

// A linked list. Nodes stay where they are till they are removed, so a loop may remove the one it
// stands at. One thread at a time. Memory that can't be had throws std::bad_alloc and leaves the
// list as it was.
template <class T>
class OQList
{
public:
    class Node
    {
    public:
        T value;

        Node* Next() { return m_next; }

        const Node* Next() const { return m_next; }

        Node* Previous() { return m_previous; }

        const Node* Previous() const { return m_previous; }

    private:
        friend class OQList;

        explicit Node(T&& v)
            : value(std::move(v))
        {
        }

        Node* m_next = nullptr;
        Node* m_previous = nullptr;
    };

    template <class N, class V>
    class Iterator
    {
    public:
        explicit Iterator(N* node)
            : m_node(node)
        {
        }

        V& operator*() const { return m_node->value; }

        Iterator& operator++()
        {
            m_node = m_node->Next();
            return *this;
        }

        bool operator==(const Iterator&) const = default;

    private:
        N* m_node;
    };

    OQList() = default;

    OQList(OQList&& other) noexcept { Swap(other); }

    OQList(const OQList&) = delete;
    OQList& operator=(const OQList&) = delete;

    OQList& operator=(OQList&& other) noexcept
    {
        Swap(other);
        return *this;
    }

    ~OQList() { Clear(); }

    int GetCount() const { return m_count; }

    bool IsEmpty() const { return m_count == 0; }

    // Null if the list is empty.
    Node* First() { return m_first; }

    const Node* First() const { return m_first; }

    Node* Last() { return m_last; }

    const Node* Last() const { return m_last; }

    Node* AddFirst(T value) { return Link(new Node(std::move(value)), nullptr); }

    Node* AddLast(T value) { return Link(new Node(std::move(value)), m_last); }

    Node* InsertAfter(Node* node, T value) { return Link(new Node(std::move(value)), node); }

    // Gives the node behind the one that goes.
    Node* Remove(Node* node)
    {
        Node* const next = node->m_next;
        (node->m_previous ? node->m_previous->m_next : m_first) = next;
        (next ? next->m_previous : m_last) = node->m_previous;
        --m_count;
        delete node;
        return next;
    }

    void Clear()
    {
        while (m_first)
            Remove(m_first);
    }

    Iterator<Node, T> begin() { return Iterator<Node, T>(m_first); }

    Iterator<Node, T> end() { return Iterator<Node, T>(nullptr); }

    Iterator<const Node, const T> begin() const { return Iterator<const Node, const T>(m_first); }

    Iterator<const Node, const T> end() const { return Iterator<const Node, const T>(nullptr); }

private:
    // Behind `previous`; null: at the front.
    Node* Link(Node* node, Node* previous)
    {
        Node* const next = previous ? previous->m_next : m_first;
        node->m_previous = previous;
        node->m_next = next;
        (previous ? previous->m_next : m_first) = node;
        (next ? next->m_previous : m_last) = node;
        ++m_count;
        return node;
    }

    void Swap(OQList& other) noexcept
    {
        std::swap(m_first, other.m_first);
        std::swap(m_last, other.m_last);
        std::swap(m_count, other.m_count);
    }

    Node* m_first = nullptr;
    Node* m_last = nullptr;
    int m_count = 0;
};
