#include "foundation/OQHtmlEntities.h"

#include "foundation/StringPrinting.h"

TEST_CASE("Entities of HTML become characters for display")
{
    CHECK(DecodeHtmlEntities(u"&Auml;&auml;&szlig;&yuml;&iexcl;&times;&ETH;&thorn;&frac12;&brvbar;")
        == u"\u00c4\u00e4\u00df\u00ff\u00a1\u00d7\u00d0\u00fe\u00bd\u00a6");
    CHECK(DecodeHtmlEntities(u"&lt;&gt;&amp;&quot;&apos;&ndash;&mdash;&rsquo;") == u"<>&\"'--'");
    CHECK(DecodeHtmlEntities(u"a&nbsp;b") == u"a b");
    CHECK(DecodeHtmlEntities(u"&ldquo;&rdquo;&hellip;") == u"\u201c\u201d\u2026");
    CHECK(DecodeHtmlEntities(u"&#65;&#160;&#08364;&#x42;&#x20aC;&#x1F3B5;")
        == u"A\u00a0\u20acB\u20ac\U0001F3B5");
    CHECK(DecodeHtmlEntities(u"x &amp;amp; y&") == u"x &amp; y&");
    CHECK(DecodeHtmlEntities(u"&&lt;;") == u"&<;");
}

TEST_CASE("What is no entity of HTML stays as it stands")
{
    for (const OQChar* kept : { u"", u"&", u"&;", u"&#;", u"&#x;", u"&amp", u"&AMP;", u"&lsquo;",
             u"&euro;", u"& amp;", u"&amp ;", u"&#9;", u"&#x9;", u"&#123456;", u"&#x123456;",
             u"&#00;", u"&#xD800;", u"&#6a;", u"&#xg0;", u"&#X41;", u"&#-65;", u"&Agrav\u00e9;" })
        CHECK(DecodeHtmlEntities(kept) == kept);
}
