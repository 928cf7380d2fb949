#include "siblings/tools/SettingsDocument.h"

#include "foundation/OQXmlDocument.h"

#include <algorithm>

namespace pxvis::tools {

namespace {

constexpr OQChar kSeparator = u'\\';
constexpr const OQChar* kRootElement = u"Settings";
constexpr const OQChar* kKeyElement = u"Key";
constexpr const OQChar* kPathAttribute = u"Path";

bool IsBelow(const OQString& path, const OQString& above)
{
    return path.GetLength() > above.GetLength() && path[above.GetLength()] == kSeparator
        && path.StartsWithNoCase(above);
}

}

OQString SettingsDocument::NormalPath(const OQString& path)
{
    OQString normal;
    for (const OQChar character : path.View().substr(0, kMaxPath + 1)) {
        const bool separates = character == kSeparator || character == u'/';
        if (!separates)
            normal += character;
        else if (!normal.IsEmpty() && !normal.EndsWith(u"\\"))
            normal += kSeparator;
    }
    if (normal.EndsWith(u"\\"))
        normal.Delete(normal.GetLength() - 1);
    if (path.GetLength() > kMaxPath || normal.Find(u'\0') >= 0)
        normal.Clear();
    return normal;
}

bool SettingsDocument::Load(const OQString& text)
{
    m_keys.clear();
    m_index.ClearAll();
    OQXmlDocument document(OQXmlIgnoreCase);
    bool isWhole = document.SetDocument(text) && text.Find(u'\0') < 0;
    // A root that never ends hands its children up, so keys may stand beside it.
    const auto loadKeys = [&] {
        while (document.FindElem()) {
            if (document.GetTagName().CompareNoCase(kRootElement) == 0)
                continue;
            const OQString path = NormalPath(document.GetAttrib(kPathAttribute));
            const bool isKey = document.GetTagName().CompareNoCase(kKeyElement) == 0;
            Key* key = isKey && !path.IsEmpty() ? FindOrAdd(path) : nullptr;
            if (!key) {
                isWhole = false;
                continue;
            }
            OQPropertyMap values;
            document.IntoElem();
            values.LoadItems(document);
            isWhole = isWhole && !document.FindElem(); // left out, or no item
            document.OutOfElem();
            values.Remove(OQString());
            key->values.Merge(values);
        }
    };
    loadKeys();
    document.ResetPos();
    if (document.FindElem(kRootElement)) {
        document.IntoElem();
        loadKeys();
    } else {
        isWhole = false;
    }
    return isWhole;
}

OQString SettingsDocument::Save() const
{
    // Control characters as numbers, where the escapes of a property map would put a "?".
    constexpr uint32_t escapeText = OQXmlEscapeControls;
    constexpr uint32_t escapeAttribute = OQXmlEscapeControls | OQXmlEscapeQuote;
    OQString text = OQString(u"<") + kRootElement + u">\r\n";
    for (const std::unique_ptr<Key>& key : m_keys) {
        text += OQString(u"<") + kKeyElement + u" " + kPathAttribute + u"=\""
            + OQXmlDocument::Escape(key->path, escapeAttribute) + u"\">\r\n";
        for (const auto& item : key->values) {
            text += u"<Item Name=\"" + OQXmlDocument::Escape(item.key, escapeAttribute) + u"\">"
                + OQXmlDocument::Escape(item.value, escapeText) + u"</Item>\r\n";
        }
        text += OQString(u"</") + kKeyElement + u">\r\n";
    }
    text += OQString(u"</") + kRootElement + u">\r\n";
    return text;
}

const SettingsDocument::Key* SettingsDocument::Find(const OQString& path) const
{
    const auto* node = m_index.Find(path);
    return node ? node->value : nullptr;
}

SettingsDocument::Key* SettingsDocument::Find(const OQString& path)
{
    auto* node = m_index.Find(path);
    return node ? node->value : nullptr;
}

SettingsDocument::Key* SettingsDocument::FindOrAdd(const OQString& path)
{
    if (Key* key = Find(path))
        return key;
    if (m_keys.size() >= kMaxKeys)
        return nullptr;
    m_keys.push_back(std::make_unique<Key>());
    m_keys.back()->path = path;
    m_index.Set(path, m_keys.back().get());
    return m_keys.back().get();
}

bool SettingsDocument::HasKey(const OQString& path) const
{
    return Find(path) || std::any_of(m_keys.begin(), m_keys.end(), [&](const auto& key) {
        return IsBelow(key->path, path);
    });
}

bool SettingsDocument::DeleteKey(const OQString& path)
{
    const auto removed = std::erase_if(m_keys, [&](const auto& key) {
        return key->path.CompareNoCase(path) == 0 || IsBelow(key->path, path);
    });
    if (removed > 0)
        Reindex();
    return removed > 0;
}

void SettingsDocument::AddNamesBelow(const OQString& path, std::vector<OQString>& names) const
{
    OQStringMap<bool> known;
    for (const OQString& name : names)
        known.Set(name, true);
    for (const std::unique_ptr<Key>& key : m_keys) {
        if (!IsBelow(key->path, path))
            continue;
        const OQString rest = key->path.Mid(path.GetLength() + 1);
        const int end = rest.Find(kSeparator);
        const OQString name = end < 0 ? rest : rest.Left(end);
        bool wasThere = false;
        known.FindOrAdd(name, &wasThere);
        if (!wasThere)
            names.push_back(name);
    }
}

void SettingsDocument::Reindex()
{
    m_index.ClearAll();
    for (const std::unique_ptr<Key>& key : m_keys)
        m_index.Set(key->path, key.get());
}

}
