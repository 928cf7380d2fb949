#include "foundation/OQFilename.h"

#include "foundation/CFileLoader.h"
#include "foundation/OQCharacters.h"
#include "foundation/OQFileSystem.h"
#include "foundation/OQXmlDocument.h"
#include "os/File.h"

#include <algorithm>

namespace {

constexpr const OQChar* XmlRoot = u"XMLFN";
constexpr const OQChar* XmlStart = u"<XMLFN version=";
constexpr const OQChar* XmlVersion = u"1.0";
constexpr const OQChar* PathItem = u"Filename";
constexpr const OQChar* TailItem = u"PostExtensionData";
constexpr const OQChar* TypeItem = u"FileType";
constexpr const OQChar* FileScheme = u"file://";
constexpr const OQChar* LocalHost = u"localhost/";
constexpr std::u16string_view Separators = u"/\\";

bool IsFileUrl(const OQString& path)
{
    return path.StartsWithNoCase(FileScheme);
}

// As in C:/Music.
bool StartsWithDrive(std::u16string_view path)
{
    return path.size() >= 2 && path[1] == u':' && path[0] < 128 && OQIsLetter(path[0])
        && (path.size() == 2 || Separators.find(path[2]) != std::u16string_view::npos);
}

OQString WithSlashes(OQString path)
{
    path.Replace(u'\\', u'/');
    return path;
}

int HexDigitAt(const std::string& text, size_t at)
{
    return at < text.size() ? OQHexDigitValue(static_cast<unsigned char>(text[at])) : -1;
}

// Codes that would end the path or add a folder to it stay as they stand, and so does what is no
// code.
OQString DecodePercent(const OQString& url)
{
    const std::string encoded = url.ToUtf8();
    std::string decoded;
    for (size_t i = 0; i < encoded.size(); ++i) {
        const int high = encoded[i] == '%' ? HexDigitAt(encoded, i + 1) : -1;
        const int low = high >= 0 ? HexDigitAt(encoded, i + 2) : -1;
        const int value = high * 16 + low;
        if (low < 0 || value == 0 || value == '/' || value == '\\') {
            decoded += encoded[i];
            continue;
        }
        decoded += static_cast<char>(value);
        i += 2;
    }
    return OQString::FromUtf8(decoded);
}

OQString EncodePercent(const OQString& path)
{
    constexpr std::string_view plain = "/-._~"; // without ":", which would make a drive
    constexpr const char* digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char byte : path.ToUtf8()) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 128
            && (OQIsLetter(value) || OQIsDigit(value) || plain.find(byte) != plain.npos)) {
            encoded += byte;
        } else {
            encoded += '%';
            encoded += digits[value >> 4];
            encoded += digits[value & 15];
        }
    }
    return OQString::FromUtf8(encoded);
}

OQString PathOfUrl(const OQString& url)
{
    OQString path = url.Mid(static_cast<int>(std::u16string_view(FileScheme).size()));
    if (path.StartsWithNoCase(LocalHost))
        path = path.Mid(static_cast<int>(std::u16string_view(LocalHost).size()) - 1);
    if (StartsWithDrive(path.Mid(1).View()))
        return DecodePercent(path.Mid(1));
    const bool hasHost = !path.IsEmpty() && Separators.find(path[0]) == std::u16string_view::npos
        && !StartsWithDrive(path.View());
    return hasHost ? u"//" + DecodePercent(path) : DecodePercent(path);
}

OQString UrlOfPath(const OQString& path)
{
    if (path.StartsWith(u"/"))
        return FileScheme + EncodePercent(path);
    if (!StartsWithDrive(path.View()))
        return path;
    return FileScheme + (LocalHost + path.Left(2)) + EncodePercent(path.Mid(2));
}

void AppendItem(OQString& text, const OQString& name, const OQString& value)
{
    text += u"<Item Name=\"" + OQXmlDocument::Escape(name, OQXmlEscapeFilename) + u"\">"
        + OQXmlDocument::Escape(value, OQXmlEscapeFilename) + u"</Item>";
}

// Where the name begins; 0 without a folder.
size_t NameStart(std::u16string_view path)
{
    const size_t separator = path.find_last_of(Separators);
    return separator == std::u16string_view::npos ? 0 : separator + 1;
}

// Behind what folders and name are made of.
size_t PathEnd(const OQString& path)
{
    const size_t query = CFileLoader::IsAddress(path) ? path.View().find_first_of(u"?#")
                                                      : std::u16string_view::npos;
    return std::min(query, path.View().size());
}

OQString ToString(std::u16string_view text)
{
    return OQString(text.data(), static_cast<int>(text.size()));
}

}

bool OQFilename::SetText(const OQString& text)
{
    m_path.Clear();
    m_extraData.Clear();
    if (text.StartsWithNoCase(XmlStart))
        return SetXmlText(text);
    SetPlainText(text);
    return true;
}

bool OQFilename::SetXmlText(const OQString& text)
{
    OQXmlDocument document(OQXmlIgnoreCase);
    document.SetDocument(text); // a fault loses one item, not all of them
    if (!document.FindElem(XmlRoot) || document.GetAttrib(u"version") != XmlVersion)
        return false;
    document.IntoElem();
    m_extraData.LoadItems(document);
    m_path = m_extraData.GetString(PathItem);
    m_extraData.Remove(PathItem);
    return true;
}

void OQFilename::SetPlainText(const OQString& text)
{
    m_path = text;
    if (CFileLoader::IsAddress(text))
        return;
    const std::u16string_view view = text.View();
    const size_t dot = view.rfind(u'.');
    if (dot == std::u16string_view::npos || dot < NameStart(view))
        return;
    size_t end = dot + 1;
    while (end < view.size() && (OQIsDigit(view[end]) || OQIsLetter(view[end])))
        ++end;
    const size_t length = end - dot - 1;
    if (length < 2 || length > 5 || end == view.size())
        return;
    m_path = ToString(view.substr(0, end));
    m_extraData.SetString(TailItem, ToString(view.substr(end)));
}

OQString OQFilename::GetText() const
{
    if (m_extraData.IsEmpty())
        return m_path;
    OQString text = OQString(XmlStart) + u"\"" + XmlVersion + u"\">";
    AppendItem(text, PathItem, m_path);
    for (const auto& item : m_extraData) {
        if (item.key.CompareNoCase(PathItem) != 0)
            AppendItem(text, item.key, item.value);
    }
    return text + u"</" + XmlRoot + u">";
}

OQString OQFilename::GetPathAs(OQPathForm form) const
{
    const bool isUrl = IsFileUrl(m_path);
    if (!isUrl && CFileLoader::IsAddress(m_path))
        return m_path;
    OQString path = WithSlashes(isUrl ? PathOfUrl(m_path) : m_path);
    switch (form) {
    case OQPathBackslashes:
        path.Replace(u'/', u'\\');
        return path;
    case OQPathUrl:
        return UrlOfPath(path);
    case OQPathNative:
    case OQPathSlashes:
        return path;
    }
    return m_path;
}

OQString OQFilename::GetFolder() const
{
    return ToString(m_path.View().substr(0, NameStart(m_path.View().substr(0, PathEnd(m_path)))));
}

OQString OQFilename::GetName() const
{
    const OQString path = IsFileUrl(m_path) ? PathOfUrl(m_path) : m_path;
    const std::u16string_view view = path.View().substr(0, PathEnd(path));
    return ToString(view.substr(NameStart(view)));
}

OQString OQFilename::GetNameWithoutExtension() const
{
    const OQString name = GetName();
    const int dot = name.ReverseFind(u'.');
    return dot < 0 ? name : name.Left(dot);
}

OQString OQFilename::GetExtension() const
{
    OQString type = m_extraData.GetString(TypeItem);
    if (!type.IsEmpty())
        return type;
    const OQString name = GetName();
    const int dot = name.ReverseFind(u'.');
    return dot < 0 ? OQString() : name.Mid(dot + 1);
}

// By which the system knows the file: a name may hold "\" where that is no separator.
OQString OQFilename::GetFilePath() const
{
    return OQFileSystem::FileExists(m_path) ? m_path : GetPathAs(OQPathNative);
}

bool OQFilename::Exists() const
{
    return OQFileSystem::FileExists(GetFilePath());
}

int64_t OQFilename::GetSize(bool mayAskServer) const
{
    if (CFileLoader::IsAddress(m_path) && !IsFileUrl(m_path))
        return mayAskServer ? CFileLoader::GetSizeAt(m_path) : -1;
    return pxvis::os::FileSize(GetFilePath().ToUtf8());
}
