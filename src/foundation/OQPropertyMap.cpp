#include "foundation/OQPropertyMap.h"

#include "foundation/OQCharacters.h"
#include "foundation/OQFormat.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQXmlDocument.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <string>

namespace {

constexpr const OQChar* ItemElement = u"Item";
constexpr const OQChar* NameAttribute = u"Name";
constexpr const OQChar* VersionAttribute = u"version";

// The double nearest to the number at the start of the text. The reader of equations, by whose
// rules a last bit may differ and 20 digits wrap, wouldn't give back what was written.
double ReadDouble(const OQString& text)
{
    std::string number;
    for (const OQChar character : text.View()) {
        if (character > 127)
            break;
        if (!number.empty() || !OQIsSpace(character))
            number += static_cast<char>(character);
    }
    const size_t sign = number.starts_with('+') ? 1 : 0; // from_chars takes "-" only
    double value = 0;
    const auto result = std::from_chars(number.data() + sign, number.data() + number.size(), value);
    const bool twoSigns = sign != 0 && number.starts_with("+-");
    return result.ec == std::errc() && std::isfinite(value) && !twoSigns ? value : 0;
}

OQString WriteDouble(double value)
{
    char buffer[1200]; // the least double takes 1074 decimals
    const auto result = std::to_chars(buffer, std::end(buffer), value, std::chars_format::fixed);
    return OQString::FromUtf8({ buffer, static_cast<size_t>(result.ptr - buffer) });
}

uintptr_t ReadHex(std::u16string_view text)
{
    while (!text.empty() && OQIsSpace(text.front()))
        text.remove_prefix(1);
    if (text.starts_with(u"0x") || text.starts_with(u"0X"))
        text.remove_prefix(2);
    uintptr_t value = 0;
    for (const OQChar character : text) {
        const int digit = OQHexDigitValue(character);
        if (digit < 0)
            break;
        value = value << 4 | static_cast<uintptr_t>(digit);
    }
    return value;
}

void AppendCounted(OQString& text, const OQString& piece)
{
    text += u'(';
    OQAppendNumber(text, piece.GetLength());
    text += u':';
    text += piece;
    text += u')';
}

// Takes "(length:text)" from the front. False, and nothing taken, if there is none.
bool TakeCounted(std::u16string_view& text, OQString& piece)
{
    piece.Clear();
    if (!text.starts_with(u'('))
        return false;
    size_t at = 1;
    size_t length = 0;
    for (; at < text.size() && OQIsDigit(text[at]) && length <= text.size(); ++at)
        length = length * 10 + (text[at] - u'0');
    if (at == 1 || at == text.size() || text[at] != u':')
        return false;
    ++at;
    if (length >= text.size() - at || text[at + length] != u')')
        return false;
    piece = OQString(text.data() + at, static_cast<int>(length));
    text.remove_prefix(at + length + 1);
    return true;
}

}

const OQString* OQPropertyMap::Find(const OQString& key) const
{
    const Items::Node* node = m_items ? std::as_const(*m_items).Find(key) : nullptr;
    return node ? &node->value : nullptr;
}

bool OQPropertyMap::Has(const OQString& key) const
{
    return Find(key) != nullptr;
}

bool OQPropertyMap::GetString(OQString& text, const OQString& key, const OQChar* fallback) const
{
    const OQString* value = Find(key);
    text = value ? *value : OQString(fallback);
    return value != nullptr;
}

OQString OQPropertyMap::GetString(const OQString& key, const OQChar* fallback) const
{
    OQString text;
    GetString(text, key, fallback);
    return text;
}

int32_t OQPropertyMap::GetInt(const OQString& key, int32_t fallback) const
{
    const OQString* value = Find(key);
    return value ? OQTextToInt(value->GetText()) : fallback;
}

int64_t OQPropertyMap::GetInt64(const OQString& key, int64_t fallback) const
{
    const OQString* value = Find(key);
    return value ? OQTextToInt64(value->GetText()) : fallback;
}

uint64_t OQPropertyMap::GetInt64(const OQString& key, uint64_t fallback) const
{
    return static_cast<uint64_t>(GetInt64(key, static_cast<int64_t>(fallback)));
}

double OQPropertyMap::GetDouble(const OQString& key, double fallback) const
{
    const OQString* value = Find(key);
    return value ? ReadDouble(*value) : fallback;
}

void* OQPropertyMap::GetPointer(const OQString& key, void* fallback) const
{
    const OQString* value = Find(key);
    return value ? std::bit_cast<void*>(ReadHex(value->View())) : fallback;
}

void OQPropertyMap::SetString(const OQString& key, const OQString& value, bool dropEmpty)
{
    if (dropEmpty && value.IsEmpty()) {
        Remove(key);
        return;
    }
    if (m_items) {
        m_items->Set(key, value);
        return;
    }
    auto items = std::make_unique<Items>();
    items->Set(key, value);
    m_items = std::move(items);
}

void OQPropertyMap::SetInt(const OQString& key, int32_t value)
{
    SetString(key, OQIntToText(value));
}

void OQPropertyMap::SetInt64(const OQString& key, int64_t value)
{
    SetString(key, OQIntToText(value));
}

void OQPropertyMap::SetInt64(const OQString& key, uint64_t value)
{
    SetInt64(key, static_cast<int64_t>(value));
}

void OQPropertyMap::SetPointer(const OQString& key, const void* value)
{
    SetString(key, OQFormat(u"%p", { reinterpret_cast<uintptr_t>(value) }));
}

void OQPropertyMap::SetDouble(const OQString& key, double value)
{
    SetString(key, WriteDouble(value));
}

void OQPropertyMap::Clear()
{
    m_items.reset();
}

void OQPropertyMap::Remove(const OQString& key)
{
    if (m_items && m_items->Remove(key) && m_items->IsEmpty())
        m_items.reset();
}

void OQPropertyMap::Assign(const OQPropertyMap& other)
{
    if (this != &other)
        m_items = other.m_items ? std::make_unique<Items>(*other.m_items) : nullptr;
}

void OQPropertyMap::Merge(const OQPropertyMap& other)
{
    for (const Items::Node& item : other)
        SetString(item.key, item.value);
}

bool OQPropertyMap::Equals(const OQPropertyMap& other) const
{
    if (GetCount() != other.GetCount())
        return false;
    for (const Items::Node& item : *this) {
        const OQString* value = other.Find(item.key);
        if (!value || *value != item.value)
            return false;
    }
    return true;
}

// Keys that meet by chance cost a few looks for each character of the text.
bool OQPropertyMap::MayLoadMore(const OQString& text) const
{
    constexpr int64_t costOfCharacter = 64;
    return !m_items || m_items->GetSearchCost() <= costOfCharacter * text.GetLength();
}

void OQPropertyMap::SaveCounted(OQString& text, bool withItems) const
{
    OQString result;
    AppendCounted(result, OQIntToText(withItems ? GetCount() : 0));
    if (withItems) {
        for (const Items::Node& item : *this) {
            AppendCounted(result, item.key);
            AppendCounted(result, item.value);
        }
    }
    text = std::move(result);
}

bool OQPropertyMap::LoadCounted(const OQString& text, int& position)
{
    const std::unique_ptr<Items> old = std::move(m_items); // the text may be one of its values
    if (position < 0 || position > text.GetLength())
        return false;
    std::u16string_view rest = text.View().substr(static_cast<size_t>(position));
    OQString count;
    bool whole = TakeCounted(rest, count);
    // The count says only when to stop: the text decides how much there is.
    for (int left = OQTextToInt(count.GetText()); whole && left > 0; --left) {
        OQString key;
        OQString value;
        whole = MayLoadMore(text) && TakeCounted(rest, key);
        if (whole) {
            whole = TakeCounted(rest, value);
            SetString(key, value);
        }
    }
    position = text.GetLength() - static_cast<int>(rest.size());
    return whole;
}

bool OQPropertyMap::LoadCounted(const OQString& text)
{
    int position = 0;
    return LoadCounted(text, position);
}

void OQPropertyMap::SaveXml(
    OQString& text, const OQString& root, bool skipIfEmpty, double version) const
{
    text.Clear();
    if (skipIfEmpty && IsEmpty())
        return;
    OQXmlDocument document(OQXmlIgnoreCase);
    SaveItems(document);
    text = u"<" + root + u" " + VersionAttribute + u"=\"" + OQFixedToText(version, 1) + u"\">\r\n"
        + document.GetDoc() + u"</" + root + u">";
}

bool OQPropertyMap::LoadXml(const OQString& text, const OQString& root, double version)
{
    const std::unique_ptr<Items> old = std::move(m_items); // the text may be one of its values
    if (text.IsEmpty())
        return false;
    OQXmlDocument document(OQXmlIgnoreCase);
    document.SetDocument(text); // a fault loses one item, not all of them
    if (!document.FindElem(root.GetText())
        || ReadDouble(document.GetAttrib(VersionAttribute)) != version)
        return false;
    document.IntoElem();
    LoadItems(document);
    return true;
}

void OQPropertyMap::SaveItems(OQXmlDocument& document) const
{
    for (const Items::Node& item : *this) {
        document.AddElem(ItemElement, item.value.GetText());
        document.SetAttrib(NameAttribute, item.key.GetText());
    }
}

void OQPropertyMap::LoadItems(OQXmlDocument& document)
{
    Clear();
    while (MayLoadMore(document.GetDoc()) && document.FindElem(ItemElement))
        SetString(document.GetAttrib(NameAttribute), document.GetData());
}

void OQPropertyMap::Dump(OQString& text, const OQString& prefix, const OQString& suffix) const
{
    OQString result;
    for (const Items::Node& item : *this)
        result += OQFormat(u"%s%s: %s%s", { prefix, item.key, item.value, suffix });
    text = std::move(result);
}
