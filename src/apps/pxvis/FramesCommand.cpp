#include "apps/pxvis/FramesCommand.h"

#include "apps/pxvis/ErrorLine.h"
#include "apps/pxvis/ScriptSet.h"
#include "host/analysis/AudioRecord.h"

#include <bit>
#include <istream>
#include <ostream>

namespace pxvis {

static_assert(std::endian::native == std::endian::little,
    "pixels and records are written as they lie in memory");

namespace {

bool WritePicture(IOQImage& picture, std::ostream& output)
{
    const OQSize size = picture.GetSize();
    const uint32_t* bits = picture.GetBits();
    const std::streamsize rowBytes = std::streamsize { size.cx } * 4;
    for (int32_t y = size.cy - 1; y >= 0 && output; --y)
        output.write(reinterpret_cast<const char*>(bits + int64_t { y } * size.cx), rowBytes);
    return output.good();
}

}

int RunFrames(
    const FramesOptions& options, std::istream& records, std::ostream& output, std::ostream& errors)
{
    std::string error = VisualSession::SizeFault(options.session.width, options.session.height);
    if (!error.empty())
        return PrintUsageError(errors, error);
    const std::string script = FindScript(options.script, error);
    if (script.empty())
        return PrintError(errors, error);
    const auto session = VisualSession::Create(options.session, error);
    if (!session || !session->LoadScript(script, error))
        return PrintError(errors, error);
    for (;;) {
        host::AudioRecord record;
        switch (host::ReadAudioRecord(records, record)) {
        case host::RecordRead::End:
            return 0;
        case host::RecordRead::Truncated:
            return PrintError(errors,
                "the input ends inside record " + std::to_string(session->StepCount())
                    + " (from 0)");
        case host::RecordRead::Record:
            break;
        }
        if (!session->Step(record))
            return PrintError(errors, "no memory for a picture of this size");
        if (!WritePicture(session->Picture(), output))
            return PrintError(errors, "the pictures can't be written");
    }
}

}
