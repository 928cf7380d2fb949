#pragma once

#include "foundation/IOQDllString.h"
#include "foundation/OQByteBuffer.h"
#include "foundation/OQString.h"

// Hands a string of ours to another module. The string must outlive it.
class OQDllString final : public IOQDllString
{
public:
    explicit OQDllString(OQString& text)
        : m_text(text)
    {
    }

    const OQChar* GetText() const override { return m_text.GetText(); }

    void SetText(const OQChar* text, int32_t length) override
    {
        m_text = length < 0 ? OQString(text) : OQString(text, length);
    }

    void Clear() override { m_text.Clear(); }

    OQChar* GetBuffer(int32_t length, bool keep) override
    {
        return m_text.GetBuffer(length, false, keep);
    }

    void ReleaseBuffer(int32_t length) override { m_text.ReleaseBuffer(length); }

private:
    OQString& m_text;
};

// Hands a buffer of ours to another module. The buffer must outlive it.
class OQDllBuffer final : public IOQDllBuffer
{
public:
    explicit OQDllBuffer(OQByteBuffer& buffer)
        : m_buffer(buffer)
    {
    }

    bool SetSize(uint64_t size) override { return m_buffer.SetSize(size); }

    uint8_t* GetData() override { return m_buffer.GetData(); }

    uint64_t GetSize() const override { return m_buffer.GetSize(); }

private:
    OQByteBuffer& m_buffer;
};
