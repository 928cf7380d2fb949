#pragma once

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

// Types that stay whole when their bytes are moved to another address, with nothing done at the old
// one; a class says so by a member type OQByteMovable. Growth moves these by one raw copy, others
// one by one.
template <class T>
inline constexpr bool OQIsByteMovable = std::is_trivially_copyable_v<T> || requires
{
    typename T::OQByteMovable;
};

class OQArrayBase
{
public:
    int GetCount() const { return m_count; }

    bool IsEmpty() const { return m_count == 0; }

    int GetCapacity() const { return m_capacity; }

    // -1: steps that grow with the array; g above 0: capacities are multiples of g.
    void SetGrowthStep(int step) { m_growthStep = step > 0 ? step : -1; }

protected:
    OQArrayBase() = default;
    ~OQArrayBase() = default;

    // The capacity for `count` elements of `elementSize` bytes. Throws std::bad_alloc where count
    // or bytes can't be told in 31 and 63 bits.
    int GrownCapacity(int64_t count, size_t elementSize) const;

    int32_t m_count = 0;
    int32_t m_capacity = 0;
    int32_t m_growthStep = -1;
};

// The storage of an array and its growth. HasLifetime: elements need their constructor and
// destructor; without it they are plain data. One thread at a time.
template <class T, class Arg = const T&, bool HasLifetime = !std::is_trivially_copyable_v<T>>
class OQCoreArray : public OQArrayBase
{
public:
    virtual ~OQCoreArray()
    {
        RemoveAll();
        std::free(m_data);
    }

    OQCoreArray(const OQCoreArray&) = delete;
    OQCoreArray& operator=(const OQCoreArray&) = delete;

    T* GetData() { return m_data; }

    const T* GetData() const { return m_data; }

protected:
    OQCoreArray() = default;

    virtual void DestroyElement(T& element)
    {
        if constexpr (HasLifetime)
            element.~T();
    }

    void RemoveAll()
    {
        while (m_count > 0)
            DestroyElement(m_data[--m_count]);
    }

    void SwapStorage(OQCoreArray& other) noexcept
    {
        std::swap(m_count, other.m_count);
        std::swap(m_capacity, other.m_capacity);
        std::swap(m_growthStep, other.m_growthStep);
        std::swap(m_data, other.m_data);
    }

    // Room for `count` elements. The old storage is given back by the caller, who may still need an
    // element in it: the result, or null if nothing moved.
    T* Grow(int64_t count)
    {
        if (count <= m_capacity)
            return nullptr;
        const int capacity = GrownCapacity(count, sizeof(T));
        T* data = static_cast<T*>(std::malloc(sizeof(T) * size_t(capacity)));
        if (!data)
            throw std::bad_alloc();
        MoveElements(data, m_data, m_count);
        m_capacity = capacity;
        return std::exchange(m_data, data);
    }

    // To storage that holds no elements; the ranges may overlap.
    static void MoveElements(T* target, T* source, int count)
    {
        if (count <= 0 || target == source)
            return;
        if constexpr (OQIsByteMovable<T> || !HasLifetime) {
            std::memmove(static_cast<void*>(target), static_cast<const void*>(source),
                sizeof(T) * size_t(count));
        } else if (target < source) {
            for (int i = 0; i < count; ++i)
                MoveElement(target + i, source + i);
        } else {
            for (int i = count - 1; i >= 0; --i)
                MoveElement(target + i, source + i);
        }
    }

    static void MoveElement(T* target, T* source)
    {
        new (static_cast<void*>(target)) T(std::move(*source));
        source->~T();
    }

    T* m_data = nullptr;
};
