#include "foundation/OQStringArray.h"

#include <new>

OQString OQStringArray::Join(const OQString& separator) const
{
    int64_t length = 0;
    for (const OQString& part : *this)
        length += int64_t { part.GetLength() } + separator.GetLength();
    if (length > INT_MAX)
        throw std::bad_alloc();
    OQString result;
    if (IsEmpty())
        return result;
    result.GetBuffer(static_cast<int>(length), true);
    result.ReleaseBuffer(0);
    for (int i = 0; i < GetCount(); ++i) {
        if (i > 0)
            result += separator;
        result += (*this)[i];
    }
    return result;
}
