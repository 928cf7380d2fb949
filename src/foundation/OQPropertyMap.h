#pragma once

#include "foundation/OQMap.h"
#include "foundation/OQString.h"

#include <cstdint>
#include <memory>

class OQXmlDocument;

// Named text values with typed access, and two text forms to send or keep them. Keys are compared
// without regard to case; a key keeps the spelling that it was first written with. Numbers are
// held as text. Iteration gives nodes with `key` and `value` and ends with the next change. A text
// that is read in takes time in proportion to its length; items of one that is made to take more
// are dropped from there on. One thread at a time; memory that can't be had throws std::bad_alloc.
// The order of the virtual operations is fixed: add at the end only.
class OQPropertyMap
{
public:
    // Tells what its searches cost, in characters looked at: keys can be made to meet in one chain.
    class Items : public OQStringMap<OQString>
    {
    public:
        bool Equal(const OQString& key, const OQString& stored) const override
        {
            m_searchCost += key.GetLength() + 1;
            return OQStringMap::Equal(key, stored);
        }

        int64_t GetSearchCost() const { return m_searchCost; }

    private:
        mutable int64_t m_searchCost = 0;
    };

    OQPropertyMap() = default;

    OQPropertyMap(const OQPropertyMap& other) { OQPropertyMap::Assign(other); }

    OQPropertyMap(OQPropertyMap&& other) noexcept = default;

    virtual ~OQPropertyMap() = default;

    OQPropertyMap& operator=(const OQPropertyMap& other)
    {
        OQPropertyMap::Assign(other);
        return *this;
    }

    OQPropertyMap& operator=(OQPropertyMap&& other) noexcept = default;

    virtual bool Has(const OQString& key) const;

    // True, and the value, if the key exists; otherwise the default text, empty for null.
    virtual bool GetString(OQString& text, const OQString& key, const OQChar* fallback) const;
    // The value as a number; one that begins with no number gives 0. The fallback counts only
    // without the key.
    virtual int32_t GetInt(const OQString& key, int32_t fallback) const;
    virtual int64_t GetInt64(const OQString& key, int64_t fallback) const;
    virtual uint64_t GetInt64(const OQString& key, uint64_t fallback) const;
    // A number that a double can't hold, and what isn't finite, gives 0.
    virtual double GetDouble(const OQString& key, double fallback) const;
    // Hexadecimal digits, with or without "0x".
    virtual void* GetPointer(const OQString& key, void* fallback) const;

    // dropEmpty: an empty value removes the key.
    virtual void SetString(const OQString& key, const OQString& value, bool dropEmpty = false);
    virtual void SetInt(const OQString& key, int32_t value);
    virtual void SetInt64(const OQString& key, int64_t value);
    // Written as the signed number of the same bits, which is what the reading operation takes.
    virtual void SetInt64(const OQString& key, uint64_t value);
    virtual void SetPointer(const OQString& key, const void* value);
    // As many decimals as GetDouble needs to give the very value.
    virtual void SetDouble(const OQString& key, double value);

    virtual void Clear();
    virtual void Remove(const OQString& key);

    virtual void Assign(const OQPropertyMap& other);
    // Values of the other map replace those of the same key.
    virtual void Merge(const OQPropertyMap& other);
    // The same keys with exactly the same values.
    virtual bool Equals(const OQPropertyMap& other) const;

    // Counted form: the number of items and then each key and value, all as "(length:text)".
    // Without items the number is 0.
    virtual void SaveCounted(OQString& text, bool withItems) const;
    // Replaces the contents. `position` ends behind what was read. False if the text is not of
    // that form or ends early; what was read up to there stays.
    virtual bool LoadCounted(const OQString& text, int& position);
    virtual bool LoadCounted(const OQString& text);

    // XML form: an element `root` with the attribute "version", of one decimal, around the items.
    // skipIfEmpty: an empty map gives an empty text.
    virtual void SaveXml(
        OQString& text, const OQString& root, bool skipIfEmpty, double version) const;
    // Replaces the contents. False, and an empty map, if the text has no such root of exactly this
    // version. Faults of the text inside lose no more than the elements that have them.
    virtual bool LoadXml(const OQString& text, const OQString& root, double version);
    // Adds an element "Item" for each item behind the current position of the document.
    virtual void SaveItems(OQXmlDocument& document) const;
    // Replaces the contents by the elements "Item" behind the current position, up to the end of
    // their parent.
    virtual void LoadItems(OQXmlDocument& document);

    // A line for each item: prefix, key, ": ", value, suffix.
    virtual void Dump(OQString& text, const OQString& prefix, const OQString& suffix) const;

    OQString GetString(const OQString& key, const OQChar* fallback = nullptr) const;

    int GetCount() const { return m_items ? m_items->GetCount() : 0; }

    bool IsEmpty() const { return !m_items; }

    Items::Iterator<const Items::Node> begin() const
    {
        return m_items ? std::as_const(*m_items).begin() : end();
    }

    Items::Iterator<const Items::Node> end() const { return {}; }

private:
    const OQString* Find(const OQString& key) const;
    bool MayLoadMore(const OQString& text) const;

    std::unique_ptr<Items> m_items; // none while there is nothing in it
};
