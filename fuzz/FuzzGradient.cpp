#include "FuzzTesting.h"
#include "engine2d/CGradientEx.h"
#include "foundation/OQTextEncoding.h"

#include <climits>
#include <fuzzer/FuzzedDataProvider.h>

// Any text gives a gradient, whose own text gives the same one again.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size); // numbers come from the end of the data
    const float y = input.ConsumeFloatingPoint<float>();
    // Small tables are as good as large ones and much faster.
    const int32_t entries = input.ConsumeIntegralInRange(0, 300);
    const OQString text = OQBytesToText(input.ConsumeRemainingBytesAsString());

    CGradientEx gradient;
    gradient.SetText(text);
    const OQString canonical = gradient.GetText();
    CGradientEx again;
    again.SetText(canonical);
    FUZZ_CHECK_EQUAL(again.GetText(), canonical);

    for (const int32_t count : { 1, entries == 300 ? INT_MAX : entries }) {
        for (const float phase : { 0.0f, 1.0f, y }) {
            gradient.BuildTable(phase, count);
            again.BuildTable(phase, count);
            for (const int32_t index : { 0, 1, count / 2, count - 1, count, -1, INT_MAX }) {
                const uint32_t color = gradient.TableColor(index);
                FUZZ_CHECK(color <= 0xFFFFFF);
                FUZZ_CHECK(color == again.TableColor(index));
            }
        }
    }
    return 0;
}
