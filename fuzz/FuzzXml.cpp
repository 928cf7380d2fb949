#include "FuzzTesting.h"
#include "foundation/OQTextEncoding.h"
#include "foundation/OQXmlDocument.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace {

// All that reading gives of the current element and what is behind and below it, as a text.
// Nesting is bounded by the caller's stack, so deep trees are only walked to a depth.
void Describe(OQXmlDocument& document, OQString& out, int depth)
{
    constexpr int deepest = 100;
    while (document.FindElem()) {
        out += u'<' + document.GetTagName() + u'|' + document.GetAttrib(u"a") + u'|'
            + document.GetAttrib(u"GUID") + u'|' + document.GetData() + u'>';
        if (depth < deepest) {
            document.IntoElem();
            Describe(document, out, depth + 1);
            document.OutOfElem();
        }
        out += u'/';
    }
}

OQString Description(OQXmlDocument& document)
{
    OQString out;
    document.ResetPos();
    Describe(document, out, 0);
    return out;
}

// Steps and edits that the input chooses.
void Edit(OQXmlDocument& document, FuzzedDataProvider& input)
{
    const OQString name = OQString::FromUtf8(input.ConsumeRandomLengthString(12));
    const OQString text = OQString::FromUtf8(input.ConsumeRandomLengthString(24));
    const uint32_t flags = input.ConsumeIntegral<uint8_t>() & (OQXmlCData | OQXmlNoLineEnds);
    switch (input.ConsumeIntegralInRange(0, 9)) {
    case 0:
        document.ResetPos();
        break;
    case 1:
        document.FindElem();
        break;
    case 2:
        document.FindElem(name.GetText());
        break;
    case 3:
        document.IntoElem();
        break;
    case 4:
        document.OutOfElem();
        break;
    case 5:
        document.FindChildElem();
        break;
    case 6:
        document.AddElem(name.GetText(), text.GetText(), flags);
        break;
    case 7:
        document.AddChildElem(name.GetText(), text.GetText(), flags);
        break;
    case 8:
        document.SetAttrib(name.GetText(), text.GetText());
        break;
    default:
        document.SetData(text.GetText(), flags);
        break;
    }
}

}

// Any text can be read and edited; what editing makes of a text without faults has none, and reads
// as the edited document does.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size); // numbers come from the end of the data
    const int edits = input.ConsumeIntegralInRange(0, 12);
    const uint32_t documentFlags = input.ConsumeIntegral<uint8_t>() & 0x1E;
    const size_t textLength = input.ConsumeIntegralInRange<size_t>(0, size);
    const OQString text = OQBytesToText(input.ConsumeBytesAsString(textLength));

    OQXmlDocument document(documentFlags);
    const bool good = document.SetDocument(text);
    FUZZ_CHECK(good == document.GetError().IsEmpty());
    FUZZ_CHECK_EQUAL(document.GetDoc(), text);
    Description(document);
    document.ResetPos();
    for (int i = 0; i < edits; ++i)
        Edit(document, input);

    OQXmlDocument again(documentFlags);
    again.SetDocument(document.GetDoc());
    const OQString description = Description(document);
    if (good && !(documentFlags & OQXmlStartTagOnly))
        FUZZ_CHECK_EQUAL(description, Description(again));

    // Nothing can be written for the character 0, which ends texts anyway.
    const OQString plain(text.GetText());
    FUZZ_CHECK_EQUAL(OQXmlDocument::Unescape(OQXmlDocument::Escape(
                         plain, OQXmlEscapeAll & ~uint32_t { OQXmlReplaceControls })),
        plain);
    return 0;
}
