#include "foundation/OQFilename.h"

#include "TestFolder.h"
#include "foundation/StringPrinting.h"

TEST_CASE("A filename with extra data is one line of XML, one without is the path")
{
    OQFilename filename(u"/Music/a & \"b\".mp3");
    CHECK(filename.GetText() == u"/Music/a & \"b\".mp3");
    filename.GetExtraData().SetString(u"Title's", u"<\x02>");
    CHECK(filename.GetText()
        == u"<XMLFN version=\"1.0\"><Item Name=\"Filename\">/Music/a &amp; &quot;b&quot;.mp3</Item>"
           u"<Item Name=\"Title's\">&lt;&#x2;&gt;</Item></XMLFN>");

    filename.GetExtraData().SetString(u"Empty", u"");
    filename.GetExtraData().SetString(u"FILENAME", u"/etc/passwd");
    const OQFilename again(filename.GetText());
    CHECK(again.GetPath() == filename.GetPath());
    filename.GetExtraData().Remove(u"Filename");
    CHECK(again.GetExtraData().Equals(filename.GetExtraData()));
}

TEST_CASE("The XML form of a filename is known by its start, and refused in other versions")
{
    OQFilename filename;
    CHECK(filename.SetText(u"<xmlfn VERSION='1.0'>\r\n<Item name='filename'>a.mp3</Item></xmlfn>"));
    CHECK(filename.GetPath() == u"a.mp3");
    CHECK(filename.GetExtraData().IsEmpty());
    for (const OQChar* text : { u"<XMLFN version=\"1.1\"><Item Name='Filename'>a</Item></XMLFN>",
             u"<XMLFN version=1.0", u"<XMLFN version=/><x>", u"<XMLFN version=\"1\"></XMLFN>" }) {
        filename.SetPath(u"old");
        CHECK_FALSE(filename.SetText(text));
        CHECK(filename.GetPath().IsEmpty());
        CHECK(filename.GetExtraData().IsEmpty());
    }
}

TEST_CASE("What stands behind an extension is extra data, but for addresses")
{
    const struct
    {
        const OQChar* text;
        const OQChar* path;
        const OQChar* tail;
    } cases[] = { { u"/a/b.mp3|3", u"/a/b.mp3", u"|3" }, { u"b.flac, 2", u"b.flac", u", 2" },
        { u"b.mp3", u"b.mp3", nullptr }, { u"b.x|3", u"b.x|3", nullptr },
        { u"b.backup|3", u"b.backup|3", nullptr }, { u"b|3", u"b|3", nullptr },
        { u"", u"", nullptr }, { u"/some.dir/b|3", u"/some.dir/b|3", nullptr },
        { u"some.dir\\b|3", u"some.dir\\b|3", nullptr }, { u"b.mp3.", u"b.mp3.", nullptr },
        { u"http://h/b.mp3|3", u"http://h/b.mp3|3", nullptr } };

    for (const auto& [text, path, tail] : cases) {
        const OQFilename filename((OQString(text)));
        CHECK(filename.GetPath() == path);
        CHECK(filename.GetExtraData().Has(u"PostExtensionData") == (tail != nullptr));
        CHECK(filename.GetExtraData().GetString(u"PostExtensionData") == tail);
    }
}

TEST_CASE("Folder, name and extension of paths, addresses and URLs")
{
    const struct
    {
        const OQChar* path;
        const OQChar* folder;
        const OQChar* name;
        const OQChar* bareName;
        const OQChar* extension;
    } cases[] = { { u"/a.b/c.tar.gz", u"/a.b/", u"c.tar.gz", u"c.tar", u"gz" },
        { u"a\\b/c\\d", u"a\\b/c\\", u"d", u"d", u"" }, { u"c.mp3", u"", u"c.mp3", u"c", u"mp3" },
        { u"/a/", u"/a/", u"", u"", u"" }, { u"", u"", u"", u"", u"" },
        { u"a.", u"", u"a.", u"a", u"" },
        { u"http://h/a/b.mp3?c=/d.e#f", u"http://h/a/", u"b.mp3", u"b", u"mp3" },
        { u"file:///a%20b/c%20d.mp3", u"file:///a%20b/", u"c d.mp3", u"c d", u"mp3" } };

    for (const auto& [path, folder, name, bareName, extension] : cases) {
        OQFilename filename;
        filename.SetPath(path);
        CHECK(filename.GetFolder() == folder);
        CHECK(filename.GetName() == name);
        CHECK(filename.GetNameWithoutExtension() == bareName);
        CHECK(filename.GetExtension() == extension);
        filename.GetExtraData().SetString(u"filetype", u"cda");
        CHECK(filename.GetExtension() == u"cda");
    }
}

TEST_CASE("Paths go from every form to every other one")
{
    const OQPathForm forms[] = { OQPathNative, OQPathBackslashes, OQPathSlashes, OQPathUrl };
    const OQChar* paths[][4] = { // in the order of the forms
        { u"/M/\u00dc 100%/a#b?.mp3", u"\\M\\\u00dc 100%\\a#b?.mp3", u"/M/\u00dc 100%/a#b?.mp3",
            u"file:///M/%C3%9C%20100%25/a%23b%3F.mp3" },
        { u"/\U0001F3B5~", u"\\\U0001F3B5~", u"/\U0001F3B5~", u"file:///%F0%9F%8E%B5~" },
        { u"C:/M/a.mp3", u"C:\\M\\a.mp3", u"C:/M/a.mp3", u"file://localhost/C:/M/a.mp3" },
        { u"/C:/a", u"\\C:\\a", u"/C:/a", u"file:///C%3A/a" },
        { u"//server/a", u"\\\\server\\a", u"//server/a", u"file:////server/a" },
        { u"a/b c", u"a\\b c", u"a/b c", u"a/b c" },
        { u"http://h/a b", u"http://h/a b", u"http://h/a b", u"http://h/a b" }
    };
    for (const auto& path : paths) {
        for (const OQChar* from : path) {
            OQFilename filename;
            filename.SetPath(from);
            for (size_t to = 0; to < std::size(forms); ++to)
                CHECK(filename.GetPathAs(forms[to]) == path[to]);
        }
    }
}

TEST_CASE("Foreign URLs of files are read, with codes that would lead elsewhere left alone")
{
    const OQChar* urls[][2] = { { u"FILE://LocalHost/a/b", u"/a/b" }, { u"file:///C:/a", u"C:/a" },
        { u"file://C:\\a b", u"C:/a b" }, { u"file://server/a", u"//server/a" },
        { u"file:///a%2fb%5Cc%00d", u"/a%2fb%5Cc%00d" }, { u"file:///%4%zz%", u"/%4%zz%" },
        { u"file:///%FF", u"/\ufffd" }, { u"file://", u"" } };
    for (const auto& [url, path] : urls) {
        OQFilename filename;
        filename.SetPath(url);
        CHECK(filename.GetPathAs(OQPathNative) == path);
    }
}

TEST_CASE("Files are found by every form of their path, and measured")
{
    const TestFolder folder;
    folder.Write("a b.mp3", "12345");
    folder.Write("AC\\DC.mp3", "123");
    OQFilename filename;
    filename.SetPath(OQString::FromUtf8(folder.Path("a b.mp3")));
    for (const OQPathForm form : { OQPathNative, OQPathBackslashes, OQPathSlashes, OQPathUrl }) {
        OQFilename other;
        other.SetPath(filename.GetPathAs(form));
        CHECK(other.Exists());
        CHECK(other.GetSize() == 5);
    }
    filename.SetPath(OQString::FromUtf8(folder.Path("AC\\DC.mp3")));
    CHECK(filename.Exists());
    CHECK(filename.GetSize() == 3);
    for (const OQString& none : { OQString(), OQString::FromUtf8(folder.Path("")),
             OQString(u"/a\0b", 4), OQString(u"http://localhost/a") }) {
        filename.SetPath(none);
        CHECK_FALSE(filename.Exists());
        CHECK(filename.GetSize() == -1);
    }
}
