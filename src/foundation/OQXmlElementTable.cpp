#include "foundation/OQXmlElementTable.h"

#include <algorithm>
#include <cstdlib>
#include <new>

void OQXmlElementTable::ReleaseChunks()
{
    for (OQXmlElement* chunk : m_chunks)
        std::free(chunk);
    m_chunks.Clear();
    m_recordCount = 0;
}

void OQXmlElementTable::Reset(int textLength)
{
    ReleaseChunks();
    m_nextUnused = 1;
    m_firstFree = 0;
    ResizeLastChunk(int64_t { textLength } / 64 + 8);
    (*this)[0] = {};
}

void OQXmlElementTable::ResizeLastChunk(int64_t recordCount)
{
    if (recordCount > INT32_MAX)
        throw std::bad_alloc();
    while (m_recordCount < recordCount) {
        const int lastSize = m_recordCount & ChunkMask; // 0: there is none, or it is full
        const int base = m_recordCount - lastSize;
        const int size = static_cast<int>(std::min<int64_t>(recordCount - base, ChunkSize));
        if (lastSize == 0) {
            m_chunks.Add(nullptr);
        }
        void* chunk = std::realloc(m_chunks.Last(), sizeof(OQXmlElement) * size_t(size));
        if (!chunk) {
            if (lastSize == 0)
                m_chunks.Remove(m_chunks.GetCount() - 1);
            throw std::bad_alloc();
        }
        m_chunks.Last() = static_cast<OQXmlElement*>(chunk);
        m_recordCount = base + size;
    }
}

int OQXmlElementTable::Take()
{
    int index = m_firstFree;
    if (index != 0) {
        m_firstFree = (*this)[index].next;
    } else {
        if (m_nextUnused == m_recordCount)
            ResizeLastChunk(int64_t { m_recordCount } + m_recordCount / 2);
        index = m_nextUnused++;
    }
    (*this)[index] = {};
    return index;
}

void OQXmlElementTable::GiveBackChildren(int index)
{
    int parent = index;
    while ((*this)[index].firstChild != 0) {
        const int child = (*this)[parent].firstChild;
        if (child == 0) {
            parent = (*this)[parent].parent;
            continue;
        }
        if ((*this)[child].firstChild != 0) {
            parent = child;
            continue;
        }
        (*this)[parent].firstChild = (*this)[child].next;
        (*this)[child].next = m_firstFree;
        m_firstFree = child;
    }
}

void OQXmlElementTable::Link(int index, int parent, int before)
{
    OQXmlElement& element = (*this)[index];
    OQXmlElement& owner = (*this)[parent];
    element.parent = parent;
    element.SetLevelBelow(owner);
    if (owner.firstChild == 0) {
        owner.firstChild = index;
        element.flags |= OQXmlElement::FirstSibling;
        element.previous = index;
        element.next = 0;
        return;
    }
    OQXmlElement& first = (*this)[owner.firstChild];
    const int behind = before != 0 ? before : first.previous;
    element.previous = behind;
    element.next = (*this)[behind].next;
    (*this)[behind].next = index;
    if (element.next != 0)
        (*this)[element.next].previous = index;
    else
        first.previous = index;
}

int OQXmlElementTable::LastChild(int parent) const
{
    const int first = (*this)[parent].firstChild;
    return first == 0 ? 0 : (*this)[first].previous;
}

void OQXmlElementTable::MoveChildren(int from, int to)
{
    const int first = (*this)[from].firstChild;
    if (first == 0)
        return;
    const int last = LastChild(from);
    for (int child = first; child != 0; child = (*this)[child].next)
        (*this)[child].parent = to;
    (*this)[from].firstChild = 0;
    const int lastBefore = LastChild(to);
    if (lastBefore == 0) {
        (*this)[to].firstChild = first;
        return;
    }
    (*this)[lastBefore].next = first;
    (*this)[first].previous = lastBefore;
    (*this)[first].flags &= ~uint32_t { OQXmlElement::FirstSibling };
    (*this)[(*this)[to].firstChild].previous = last;
}

void OQXmlElementTable::SetLevels()
{
    for (int index = NextBelow(0, 0); index != 0; index = NextBelow(index, 0))
        (*this)[index].SetLevelBelow((*this)[(*this)[index].parent]);
}

int OQXmlElementTable::NextBelow(int index, int top) const
{
    if ((*this)[index].firstChild != 0)
        return (*this)[index].firstChild;
    while (index != top) {
        if ((*this)[index].next != 0)
            return (*this)[index].next;
        index = (*this)[index].parent;
    }
    return 0;
}
