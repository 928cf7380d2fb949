#include "FuzzTesting.h"
#include "engine2d/CVisLayer.h"
#include "engine2d/CVisualization.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <pxvis/IVisAudioData.h>
#include <pxvis/SysString.h>
#include <string>
#include <unistd.h>

namespace {

constexpr OQRect picture { 0, 0, 32, 24 };

// A small part of what a Draw may cost: past it all is left out, as past the greater one.
constexpr int64_t workOfDraw = int64_t { 1 } << 22;

// In TMPDIR, which is best in memory: every run writes three files.
std::string FilePath(const char* ending)
{
    const char* folder = std::getenv("TMPDIR");
    return std::string(folder ? folder : "/tmp") + "/fuzz-" + std::to_string(getpid()) + ending;
}

void WriteFile(const std::string& path, std::string_view bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes));
}

// A picture of 2 x 2 pixels.
const OQString& CoverPath()
{
    static const OQString path = [] {
        constexpr char picture[]
            = "BM\x46\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\2\0\0\0\1\0\x18\0\0\0\0\0"
              "\x10\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
              "\xFF\0\0\0\xFF\0\0\0\0\0\xFF\xFF\xFF\xFF\0";
        WriteFile(FilePath(".bmp"), { picture, sizeof picture });
        return OQString::FromUtf8(FilePath(".bmp"));
    }();
    return path;
}

// A sweep and a ramp, with a beat and an impact in the second frame.
class FuzzAudio final : public IVisAudioData
{
public:
    FuzzAudio()
    {
        for (int i = 0; i < 1024; ++i) {
            m_block.waveform[0][i] = static_cast<int8_t>(i * i / 64);
            m_block.waveform[1][i] = static_cast<int8_t>(i);
            m_block.spectrum[i % 2][i / 2] = static_cast<uint8_t>(i / 4);
        }
    }

    int32_t Refresh() override
    {
        ++m_frame;
        return 0;
    }

    void Reserved() override { }

    const VisAudioBlock* GetData() override { return &m_block; }

    int32_t GetValue(int32_t which) override
    {
        const int32_t values[] = { m_frame == 2 ? 101 : 50, m_frame == 2, 60'000, m_frame == 1 };
        return which >= 0 && which < 4 ? values[which] : 0;
    }

    const void* GetPlayInfo() override { return &m_playInfo; }

    char16_t* GetTrackField(int32_t which) override
    {
        return SysAllocString(which == VisTrackFieldCoverFile ? CoverPath().GetText() : u"text");
    }

    char16_t* ExpandText(const char16_t* text) override { return SysAllocString(text); }

private:
    VisAudioBlock m_block {};
    VisPlayInfo m_playInfo { .playlistPosition = 3, .totalSeconds = 200, .elapsedSeconds = 3671 };
    int m_frame = 0;
};

class FuzzOwner final : public IVisualization2DOwner
{
public:
    void OnScriptLoaded() override { }

    IVisAudioData* GetAudioData() override { return new FuzzAudio; }
};

std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

OQString Saved(CVisualization& engine, const std::string& path)
{
    FUZZ_CHECK(engine.SaveScript({}) == 0);
    return OQString::FromUtf8(ReadFile(path));
}

// What another engine saves that has loaded the file at `path`.
OQString SavedAgain(const std::string& path)
{
    CVisualization other(nullptr);
    FUZZ_CHECK(other.LoadScript(OQString::FromUtf8(path)) == 0);
    return Saved(other, path);
}

// 0e999 is written as "nan" and read as 0; 1e38 is written in full, and whole numbers are read
// modulo 2^64.
bool HasWildNumber(const OQString& text)
{
    constexpr int mostDigits = 18;
    int digits = 0;
    for (const OQChar character : text.View()) {
        digits = character >= u'0' && character <= u'9' ? digits + 1 : 0;
        if (digits > mostDigits)
            return true;
    }
    return text.Find(OQString(u"nan")) >= 0 || text.Find(OQString(u"inf")) >= 0;
}

// The file at `path` is what `engine` saves; another engine that loads it saves the same.
void CheckSave(CVisualization& engine, const std::string& path)
{
    OQString saved = Saved(engine, path);
    // A layer without properties has a colour whose top byte no text can bring back.
    saved.Replace(u">0xFFFFFFFF</TransparentColor>", u">0xFFFFFF</TransparentColor>");
    // Nor can one bring back what is no number, or has more digits than are read.
    // A list of colours sets the colour anew when it is read, whichever had its turn.
    const OQString again = SavedAgain(path);
    if (HasWildNumber(saved) || saved.Find(OQString(u"<AlternatingColors>")) >= 0)
        return;
    FUZZ_CHECK_EQUAL(again, saved);
}

CVisLayerPiece* PieceAt(CVisLayerPiece& root, size_t number)
{
    CVisLayerPiece* piece = &root;
    while (CVisLayer* layer = piece->GetLayer()) {
        const auto count = static_cast<size_t>(layer->GetPieceCount());
        if (number % (count + 1) == count)
            break;
        piece = layer->GetPiece(static_cast<int32_t>(number % (count + 1)));
        number /= count + 1;
    }
    return piece;
}

// Edits as an editor makes them, chosen by the last bytes of the script.
void Edit(CVisualization& engine, std::string_view bytes)
{
    for (const char character : bytes) {
        const auto byte = static_cast<uint8_t>(character);
        CVisLayerPiece* piece = PieceAt(engine.GetRootPiece(), byte / 4);
        switch (byte % 4) {
        case 0:
            engine.AddPiece(CVisualization::newLayer, piece);
            break;
        case 1:
            engine.AddPiece(byte % 13, piece);
            break;
        default:
            engine.MovePiece(piece, byte % 4 == 2 ? -1 : 1);
            break;
        }
    }
}

}

// Any bytes load or are refused; what loads is drawn, and a save of it loads and saves as itself.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::string path = FilePath(".pxv");
    const std::string_view bytes { reinterpret_cast<const char*>(data), size };
    WriteFile(path, bytes);

    OQEngineContext context {
        .virtualClock = true, .virtualNanoseconds = 1'000'000'000'000, .workLeft = workOfDraw
    };
    FuzzOwner owner;
    CVisualization engine(&owner);
    engine.SetEngineContext(&context);
    const bool loaded = engine.LoadScript(OQString::FromUtf8(path)) == 0;
    for (int frame = 0; frame < 2; ++frame) {
        FUZZ_CHECK(engine.Draw(picture, false) == 0);
        context.virtualNanoseconds += 16'666'667;
    }
    FUZZ_CHECK(engine.GetBuffer().GetBits(0));
    engine.Resize({ 0, 0, 23, 31 });
    engine.Draw({ 0, 0, 23, 31 }, false);

    // Half of the scripts are edited before they are saved.
    if (loaded && !bytes.empty() && bytes.back() % 2 != 0) {
        Edit(engine, bytes.substr(bytes.size() - std::min<size_t>(bytes.size(), 6)));
        engine.Draw({ 0, 0, 23, 31 }, false);
    }
    if (loaded)
        CheckSave(engine, path);
    unlink(path.c_str());
    return 0;
}
