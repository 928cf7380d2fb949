#pragma once

#include "foundation/OQPropertyMap.h"
#include "foundation/OQString.h"

#include <cstdint>

enum OQPathForm : int
{
    OQPathNative = 1,
    OQPathBackslashes = 3,
    OQPathSlashes = 4,
    // "file://" and the path in UTF-8, percent-encoded; "localhost/" stands where the start of the
    // path would be taken for a host.
    OQPathUrl = 5,
};

// A file or address with what else is known about it. "/" and "\" both separate folders, whatever
// form the path is held in. One thread at a time.
class OQFilename
{
public:
    OQFilename() = default;

    // As by SetText.
    explicit OQFilename(const OQString& text) { SetText(text); }

    // Reads either text form. A plain path may have a tail behind an extension of 2 to 5 letters
    // and digits, which becomes the extra data "PostExtensionData"; an address never has one.
    // False, and an empty filename, for an XML form that isn't of our kind and version.
    bool SetText(const OQString& text);

    // The path alone, or with extra data the XML form: one line `<XMLFN version="1.0">...`. Extra
    // data of the name "Filename", which stands for the path there, are left out.
    OQString GetText() const;

    const OQString& GetPath() const { return m_path; }

    // Takes the path as it is; the extra data stay.
    void SetPath(const OQString& path) { m_path = path; }

    // An address that isn't a file's is the same in every form. A relative path has no URL: it gets
    // slashes.
    OQString GetPathAs(OQPathForm form) const;

    OQPropertyMap& GetExtraData() { return m_extraData; }

    const OQPropertyMap& GetExtraData() const { return m_extraData; }

    // With the separator at its end; empty if the path has none.
    OQString GetFolder() const;
    // What is behind the folder; of an address without its query.
    OQString GetName() const;
    OQString GetNameWithoutExtension() const;
    // The extra data "FileType", or else what is behind the last "." of the name.
    OQString GetExtension() const;

    bool Exists() const;
    // Bytes; -1 if it can't be told. Of an address only if its server may be asked, which takes
    // seconds at worst.
    int64_t GetSize(bool mayAskServer = false) const;

private:
    void SetPlainText(const OQString& text);
    bool SetXmlText(const OQString& text);
    OQString GetFilePath() const;

    OQString m_path;
    OQPropertyMap m_extraData;
};
