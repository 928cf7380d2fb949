#include "siblings/tools/MessageCatalogue.h"

#include "os/File.h"

namespace pxvis::tools {

namespace {

constexpr uint32_t kMagic = 0x950412DE;
constexpr uint32_t kSwappedMagic = 0xDE120495;

// Numbers and texts of the file; all that would lie outside it is empty.
class Reader
{
public:
    explicit Reader(std::string_view bytes)
        : m_bytes(bytes)
    {
        m_isBigEndian = Number(0) == kSwappedMagic;
    }

    bool IsCatalogue() const { return Number(0) == kMagic; }

    uint32_t Number(uint64_t offset) const
    {
        if (offset + 4 > m_bytes.size())
            return 0;
        uint32_t value = 0;
        for (uint64_t i = 0; i < 4; ++i) {
            const auto byte = static_cast<uint8_t>(m_bytes[offset + i]);
            value |= uint32_t { byte } << 8 * (m_isBigEndian ? 3 - i : i);
        }
        return value;
    }

    // The text of an entry (length, offset) of a table, up to its first zero.
    std::string_view Text(uint64_t entry) const
    {
        const uint64_t length = Number(entry);
        const uint64_t offset = Number(entry + 4);
        if (offset > m_bytes.size() || length > m_bytes.size() - offset)
            return {};
        const std::string_view text = m_bytes.substr(offset, length);
        return text.substr(0, text.find('\0'));
    }

private:
    std::string_view m_bytes;
    bool m_isBigEndian = false;
};

}

bool MessageCatalogue::Load(std::string_view bytes)
{
    m_messages.ClearAll();
    const Reader reader(bytes);
    const uint32_t version = reader.Number(4) >> 16; // the major one
    const uint32_t count = reader.Number(8);
    if (!reader.IsCatalogue() || version > 1 || count > kMaxMessages)
        return false;
    const uint64_t originals = reader.Number(12);
    const uint64_t translations = reader.Number(16);
    // Entries may share their texts, so that a small file could ask for very much memory.
    size_t budget = kMaxBytes;
    for (uint32_t i = 0; i < count; ++i) {
        const std::string_view original = reader.Text(originals + uint64_t { i } * 8);
        const std::string_view translation = reader.Text(translations + uint64_t { i } * 8);
        const size_t cost = original.size() + translation.size();
        if (cost > budget) {
            m_messages.ClearAll();
            return false;
        }
        budget -= cost;
        // The empty message holds the catalogue's own data.
        if (!original.empty() && !translation.empty())
            m_messages.Set(OQString::FromUtf8(original), OQString::FromUtf8(translation));
    }
    return true;
}

bool MessageCatalogue::LoadFile(const std::string& path)
{
    std::string bytes;
    if (os::ReadFile(path, kMaxBytes, bytes) == os::FileError::None && Load(bytes))
        return true;
    m_messages.ClearAll();
    return false;
}

const OQString* MessageCatalogue::Find(const OQString& message) const
{
    const auto* node = m_messages.Find(message);
    return node ? &node->value : nullptr;
}

}
