#pragma once

#include "foundation/OQArray.h"

#include <algorithm>
#include <cstdint>

// Where an element stands in the text of its document. Relations are indexes of the table; 0, the
// document itself, also stands for none.
struct OQXmlElement
{
    enum : uint32_t
    {
        LevelMask = 0xFFFF, // 1 for the root; the greatest one also stands for all below it
        FirstSibling = 0x80000,
        NoEndTag = 0x100000, // written as an empty element, or never ended
        FaultInContent = 0x200000,
        IllFormed = 0x800000, // of the document
    };

    // Longer tags are kept as these values and measured anew when they are needed.
    static constexpr int MaximumStartTag = 0x3FFFFF;
    static constexpr int MaximumEndTag = 0x3FF;

    int32_t start; // offset of the "<" of the start tag
    int32_t length; // of the whole element
    uint32_t startTagLength : 22;
    uint32_t endTagLength : 10;
    uint32_t flags;
    int32_t parent;
    int32_t firstChild;
    int32_t next; // sibling; chains the free records, too
    int32_t previous; // sibling; the first one's is the last child

    int End() const { return start + length; }

    uint32_t Level() const { return flags & LevelMask; }

    void SetLevelBelow(const OQXmlElement& owner)
    {
        flags
            = (flags & ~uint32_t { LevelMask }) | std::min<uint32_t>(owner.Level() + 1, LevelMask);
    }

    void SetStartTagLength(int tagLength)
    {
        startTagLength = static_cast<uint32_t>(std::min(tagLength, MaximumStartTag)) & 0x3FFFFF;
    }

    void SetEndTagLength(int tagLength)
    {
        endTagLength = static_cast<uint32_t>(std::min(tagLength, MaximumEndTag)) & 0x3FF;
    }
};

static_assert(sizeof(OQXmlElement) == 32);

// The elements of a document, in chunks of 65536 records of which only the last may be smaller.
// Record 0 always exists. Throws std::bad_alloc.
class OQXmlElementTable
{
public:
    OQXmlElementTable() { Reset(0); }

    ~OQXmlElementTable() { ReleaseChunks(); }

    OQXmlElementTable(const OQXmlElementTable&) = delete;
    OQXmlElementTable& operator=(const OQXmlElementTable&) = delete;

    // Drops all records but the document's, with room for a text of that length.
    void Reset(int textLength);

    OQXmlElement& operator[](int index) { return m_chunks[index >> ChunkBits][index & ChunkMask]; }

    const OQXmlElement& operator[](int index) const
    {
        return m_chunks[index >> ChunkBits][index & ChunkMask];
    }

    // A zeroed record.
    int Take();

    // All records below the given one.
    void GiveBackChildren(int index);

    // Behind `before`, or as the last child if that is 0.
    void Link(int index, int parent, int before);

    // Hands the children of `from` to `to`, behind those that it has. Levels stay, till they are
    // all set anew.
    void MoveChildren(int from, int to);
    void SetLevels();

    int LastChild(int parent) const;

    // The next record of the tree below `top` in document order; 0 at the end.
    int NextBelow(int index, int top) const;

private:
    static constexpr int ChunkBits = 16;
    static constexpr int ChunkSize = 1 << ChunkBits;
    static constexpr int ChunkMask = ChunkSize - 1;

    void ResizeLastChunk(int64_t recordCount);
    void ReleaseChunks();

    OQPointerArray<OQXmlElement> m_chunks;
    int m_recordCount = 0; // room in the chunks
    int m_nextUnused = 0;
    int m_firstFree = 0;
};
