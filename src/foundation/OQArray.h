#pragma once

#include "foundation/OQCoreArray.h"

#include <initializer_list>
#include <memory>

// Indexes out of range: Insert clips its position, Remove clips its run; operator[] must be given a
// valid one. Memory that can't be had throws std::bad_alloc and leaves the array as it was.
template <class T, class Arg = const T&, bool HasLifetime = !std::is_trivially_copyable_v<T>>
class OQArray : public OQCoreArray<T, Arg, HasLifetime>
{
    using Core = OQCoreArray<T, Arg, HasLifetime>;

public:
    OQArray() = default;

    OQArray(std::initializer_list<T> elements)
    {
        for (const T& element : elements)
            Add(element);
    }

    OQArray(const OQArray& other)
        : Core()
    {
        Append(other);
    }

    OQArray(OQArray&& other) noexcept { this->SwapStorage(other); }

    OQArray& operator=(const OQArray& other)
    {
        if (this != &other) {
            Clear();
            Append(other);
        }
        return *this;
    }

    OQArray& operator=(OQArray&& other) noexcept
    {
        this->SwapStorage(other);
        return *this;
    }

    T& operator[](int index) { return this->m_data[index]; }

    const T& operator[](int index) const { return this->m_data[index]; }

    T* begin() { return this->m_data; }

    T* end() { return this->m_data + this->m_count; }

    const T* begin() const { return this->m_data; }

    const T* end() const { return this->m_data + this->m_count; }

    T& Last() { return this->m_data[this->m_count - 1]; }

    const T& Last() const { return this->m_data[this->m_count - 1]; }

    // Gives the index.
    int Add(Arg element)
    {
        if (this->m_count < this->m_capacity) {
            new (static_cast<void*>(this->m_data + this->m_count)) T(element);
            return this->m_count++;
        }
        T copy(element); // the element may lie in the storage that growing gives back
        std::free(this->Grow(int64_t { this->m_count } + 1));
        new (static_cast<void*>(this->m_data + this->m_count)) T(std::move(copy));
        return this->m_count++;
    }

    int Add(T&& element) requires(HasLifetime)
    {
        T moved(std::move(element));
        std::free(this->Grow(int64_t { this->m_count } + 1));
        new (static_cast<void*>(this->m_data + this->m_count)) T(std::move(moved));
        return this->m_count++;
    }

    void Append(const OQArray& other)
    {
        const int count = other.GetCount();
        std::free(this->Grow(int64_t { this->m_count } + count));
        for (int i = 0; i < count; ++i)
            Add(other[i]);
    }

    void Insert(int index, Arg element)
    {
        T copy(element);
        std::free(this->Grow(int64_t { this->m_count } + 1));
        index = index < 0 ? 0 : index > this->m_count ? this->m_count : index;
        T* place = this->m_data + index;
        Core::MoveElements(place + 1, place, this->m_count - index);
        new (static_cast<void*>(place)) T(std::move(copy));
        ++this->m_count;
    }

    // The slots that come free are filled with zeros.
    void Remove(int index, int count = 1)
    {
        if (index < 0 || index >= this->m_count || count <= 0)
            return;
        count = count < this->m_count - index ? count : this->m_count - index;
        T* place = this->m_data + index;
        for (int i = 0; i < count; ++i)
            this->DestroyElement(place[i]);
        Core::MoveElements(place, place + count, this->m_count - index - count);
        this->m_count -= count;
        std::memset(static_cast<void*>(this->m_data + this->m_count), 0, sizeof(T) * size_t(count));
    }

    // New elements are made by their default; for plain data, zeros. Below 0 counts as 0.
    void SetSize(int count)
    {
        count = count < 0 ? 0 : count;
        Remove(count, this->m_count - count);
        std::free(this->Grow(count));
        for (; this->m_count < count; ++this->m_count)
            new (static_cast<void*>(this->m_data + this->m_count)) T();
    }

    // Room for `count` elements in all.
    void Reserve(int count) { std::free(this->Grow(count)); }

    // Keeps the storage for what comes next.
    void Clear() { Remove(0, this->m_count); }

    // The first equal element from `from` on, or -1.
    int Find(Arg element, int from = 0) const
    {
        for (int i = from < 0 ? 0 : from; i < this->m_count; ++i) {
            if (this->m_data[i] == element)
                return i;
        }
        return -1;
    }
};

// Whole numbers and floats.
template <class T>
class OQNumberArray : public OQArray<T, T, false>
{
    static_assert(std::is_arithmetic_v<T>);

public:
    using OQArray<T, T, false>::OQArray;
};

// Pointers that someone else owns.
template <class T>
class OQPointerArray : public OQArray<T*, T*, false>
{
public:
    using OQArray<T*, T*, false>::OQArray;
};

// Pointers that it owns: removing one, and the end of the array, deletes what they point at.
template <class T>
class OQOwnedPtrArray : public OQArray<T*, T*, false>
{
    using Base = OQArray<T*, T*, false>;

public:
    OQOwnedPtrArray() = default;
    OQOwnedPtrArray(const OQOwnedPtrArray&) = delete;
    OQOwnedPtrArray(OQOwnedPtrArray&&) noexcept = default;
    OQOwnedPtrArray& operator=(const OQOwnedPtrArray&) = delete;
    OQOwnedPtrArray& operator=(OQOwnedPtrArray&&) noexcept = default;

    ~OQOwnedPtrArray() override { this->RemoveAll(); }

    // If the array can't grow, the element is deleted, so that nobody has to ask.
    int Add(T* element)
    {
        std::unique_ptr<T> owned(element);
        const int index = Base::Add(element);
        owned.release();
        return index;
    }

    void Insert(int index, T* element)
    {
        std::unique_ptr<T> owned(element);
        Base::Insert(index, element);
        owned.release();
    }

    // Takes the element out without deleting it.
    T* Detach(int index)
    {
        T* element = this->m_data[index];
        this->m_data[index] = nullptr;
        this->Remove(index);
        return element;
    }

private:
    // Two owners of one pointer would delete it twice.
    using Base::Append;

    void DestroyElement(T*& element) override
    {
        delete element;
        element = nullptr;
    }
};
