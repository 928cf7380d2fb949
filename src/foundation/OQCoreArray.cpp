#include "foundation/OQCoreArray.h"

int OQArrayBase::GrownCapacity(int64_t count, size_t elementSize) const
{
    // Small arrays stay small, large ones grow in few copies.
    static constexpr int32_t steps[] = { 4, 64, 256, 1024, 4096, 16384, 65536 };
    int64_t capacity = count + 65536;
    if (m_growthStep > 0) {
        capacity = (count / m_growthStep + 1) * m_growthStep;
    } else {
        for (const int32_t step : steps) {
            if (count <= step) {
                capacity = step;
                break;
            }
        }
    }
    if (count > INT_MAX || capacity > PTRDIFF_MAX / static_cast<int64_t>(elementSize))
        throw std::bad_alloc();
    return static_cast<int>(capacity < INT_MAX ? capacity : INT_MAX);
}
