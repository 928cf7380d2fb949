#include "FuzzTesting.h"
#include "foundation/OQFilename.h"
#include "foundation/OQPropertyMap.h"
#include "foundation/OQTextEncoding.h"

#include <algorithm>
#include <cmath>
#include <fuzzer/FuzzedDataProvider.h>

namespace {

// What was read of a text, whole or in part, is saved and read as itself.
void CheckCounted(const OQString& text, int start)
{
    OQPropertyMap map;
    start = std::min(start, text.GetLength());
    int position = start;
    map.LoadCounted(text, position);
    FUZZ_CHECK(position >= start && position <= text.GetLength());
    OQString saved;
    map.SaveCounted(saved, true);
    OQPropertyMap again;
    position = 0;
    FUZZ_CHECK(again.LoadCounted(saved, position));
    FUZZ_CHECK(position == saved.GetLength());
    FUZZ_CHECK(again.Equals(map) && map.Equals(again));
}

// The first save replaces characters that XML has no place for; then nothing changes any more.
void CheckXml(const OQString& text)
{
    OQPropertyMap map;
    if (!map.LoadXml(text, u"Map", 1.0))
        FUZZ_CHECK(map.IsEmpty());
    for (int round = 0; round < 2; ++round) {
        OQString saved;
        map.SaveXml(saved, u"Map", false, 1.0);
        OQPropertyMap again;
        FUZZ_CHECK(again.LoadXml(saved, u"Map", 1.0));
        if (round == 1)
            FUZZ_CHECK(again.Equals(map) && map.Equals(again));
        map = again;
    }
}

void CheckFilename(const OQString& text)
{
    OQFilename filename;
    if (!filename.SetText(text))
        FUZZ_CHECK(filename.GetPath().IsEmpty() && filename.GetExtraData().IsEmpty());
    for (const OQPathForm form : { OQPathNative, OQPathBackslashes, OQPathSlashes, OQPathUrl })
        OQFilename(filename.GetPathAs(form)).GetName();
    filename.GetNameWithoutExtension();
    filename.GetExtension();
    const OQString parts = filename.GetFolder() + filename.GetName();
    if (filename.GetPath().Find(u"://") < 0)
        FUZZ_CHECK_EQUAL(parts, filename.GetPath());

    OQFilename previous(filename.GetText());
    OQFilename again(previous.GetText());
    FUZZ_CHECK_EQUAL(again.GetPath(), previous.GetPath());
    FUZZ_CHECK(again.GetExtraData().Equals(previous.GetExtraData()));
}

void CheckNumbers(const OQString& key, FuzzedDataProvider& input)
{
    OQPropertyMap map;
    // The least number of a type has no text that is read as it.
    const int64_t integer = input.ConsumeIntegralInRange(-INT64_MAX, INT64_MAX);
    const int32_t shortened = std::max(static_cast<int32_t>(integer), -INT32_MAX);
    map.SetInt64(key, integer);
    FUZZ_CHECK(map.GetInt64(key, int64_t { 0 }) == integer);
    map.SetInt(key, shortened);
    FUZZ_CHECK(map.GetInt(key, 0) == shortened);
    const auto number = input.ConsumeFloatingPointInRange(-8e307, 8e307);
    map.SetDouble(key, number);
    FUZZ_CHECK(map.GetDouble(key, -1) == number);
    map.SetString(key, key);
    map.GetInt64(key, uint64_t { 0 });
    map.GetPointer(key, nullptr);
    FUZZ_CHECK(std::isfinite(map.GetDouble(key, 0)));
    map.Remove(key);
    FUZZ_CHECK(map.IsEmpty());
}

}

// Any text can be read in each of the forms.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size); // numbers come from the end of the data
    const int form = input.ConsumeIntegralInRange(0, 3);
    const int start = input.ConsumeIntegralInRange(0, 7);
    if (form == 3) {
        const OQString key = OQBytesToText(input.ConsumeRandomLengthString());
        CheckNumbers(key, input);
        return 0;
    }
    const OQString text = OQBytesToText(input.ConsumeRemainingBytesAsString());
    if (form == 0)
        CheckCounted(text, start);
    else if (form == 1)
        CheckXml(OQString(text.GetText())); // texts of files end at the character 0
    else
        CheckFilename(OQString(text.GetText()));
    return 0;
}
