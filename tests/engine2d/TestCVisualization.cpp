#include "TestFolder.h"
#include "TestFolderVariable.h"
#include "VisTesting.h"
#include "engine2d/CVisComponent.h"
#include "engine2d/CVisLayer.h"
#include "engine2d/CVisualization.h"
#include "engine2d/VisLimits.h"

#include <doctest/doctest.h>

#include <chrono>
#include <string>
#include <thread>

namespace {

const std::string flushGuid = "36267E6D-70E1-435e-9E2A-428EEA2D3C7E";
const std::string transformGuid = "EB13A0B7-0B36-4bea-B95A-92ED8FEA86CD";

std::string Script(const std::string& content)
{
    return "<PXV Version=\"1.0\">\r\n" + content + "</PXV>\r\n";
}

std::string Component(const std::string& guid, const std::string& rows = {})
{
    return "<Component GUID=\"" + guid + "\" Name=\"x\"><Properties>" + rows
        + "</Properties></Component>\r\n";
}

OQString PathOf(const TestFile& file)
{
    return OQString::FromUtf8(file.Path());
}

// What a script becomes when it is loaded and saved.
std::string Saved(const std::string& script)
{
    const TestFile file("script.pxv", script);
    CVisualization engine(nullptr);
    REQUIRE(engine.LoadScript(PathOf(file)) == 0);
    engine.SaveScript({});
    return file.Read();
}

int CountOf(const std::string& text, const std::string& part)
{
    int count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

CVisLayer& Root(CVisualization& engine)
{
    return *engine.GetRootPiece().GetLayer();
}

std::string NameAt(const CVisLayer& layer, int32_t index)
{
    const CVisLayerPiece& piece = *layer.GetPiece(index);
    return piece.GetComponent() ? piece.GetComponent()->name : piece.GetLayer() ? "layer" : "empty";
}

std::string Names(const CVisLayer& layer)
{
    std::string names;
    for (int32_t i = 0; i < layer.GetPieceCount(); ++i)
        names += NameAt(layer, i) + ' ';
    return names;
}

}

TEST_CASE("A script is written with one element a line, and loads and saves to the same text")
{
    const std::string rows = "<OnEquation>on=if(t&lt;1&amp;1,1,0);t=(t+1)%3;</OnEquation>\r\n"
                             "<Color>0x102030</Color>\r\n<Rectangle>0;0.5;1;1</Rectangle>\r\n"
                             "<FlushEquation>f=impact;</FlushEquation>\r\n"
                             "<AlternatingColors/>\r\n";
    const std::string script
        = "<PXV Version=\"1.0\">\r\n<Layer>\r\n<Properties>\r\n"
          "<OnEquation>on=1</OnEquation>\r\n<ClearEachFrame>1</ClearEachFrame>\r\n"
          "<OutputMode>2</OutputMode>\r\n<Rectangle>0;0.5;1;1</Rectangle>\r\n"
          "<TransparentColor>0x0102FE</TransparentColor>\r\n</Properties>\r\n"
          "<Component GUID=\""
        + flushGuid + "\" Name=\"Flush\">\r\n<Properties>\r\n" + rows
        + "</Properties>\r\n</Component>\r\n<Layer>\r\n<Properties>\r\n"
          "<OnEquation>on=1</OnEquation>\r\n<ClearEachFrame>0</ClearEachFrame>\r\n"
          "<OutputMode>0</OutputMode>\r\n<Rectangle>0;0;1;1</Rectangle>\r\n"
          "<TransparentColor>0xFFFFFF</TransparentColor>\r\n</Properties>\r\n</Layer>\r\n</"
          "Layer>\r\n</PXV>\r\n";
    CHECK(Saved(script) == script);
    CHECK(Saved("<PXV Version=\"1.0\"></PXV>") == "<PXV Version=\"1.0\"/>\r\n");
}

TEST_CASE("Rows that a component doesn't know are dropped by a save, and so are unknown components")
{
    const std::string script
        = Script("<!-- a remark -->" + Component(flushGuid, "<Color>0x102030</Color><New>1</New>")
            + Component("36267e6d-70e1-435e-9e2a-428eea2d3c7e") + "<Stray><Layer/></Stray>"
            + "<Component/>");
    const TestFile file("kept.pxv", script);
    CVisualization engine(nullptr);
    REQUIRE(engine.LoadScript(PathOf(file)) == 0);
    CHECK(Names(Root(engine)) == "Flush empty empty ");
    const std::string saved = Saved(script);
    CHECK(saved.find("<Color>0x102030</Color>") != std::string::npos);
    CHECK(saved.find("New") == std::string::npos);
    CHECK(saved.find("36267e6d") == std::string::npos);
}

TEST_CASE("A row whose name is no path or no element harms nothing behind it")
{
    const std::string script = Script(Component(flushGuid, "<a\\b>1</a\\b><Color>0x000002</Color>")
        + Component(flushGuid, "<d><x<y</d><Color>0x000003</Color>") + Component(transformGuid));
    const std::string saved = Saved(script);
    CHECK(saved.find("<Color>0x000002</Color>") != std::string::npos);
    CHECK(saved.find("<Color>0x000003</Color>") != std::string::npos);
    CHECK(saved.find("x<y") == std::string::npos);
    CHECK(Saved(saved) == saved);
}

TEST_CASE("Friendly names are saved as values, and pieces in front of the properties are not read")
{
    CHECK(Saved(Script("<Layer><Properties><OutputMode>Add</OutputMode></Properties></Layer>"))
              .find("<OutputMode>2</OutputMode>")
        != std::string::npos);
    const TestFile file("hidden.pxv",
        Script("<Layer>" + Component(flushGuid) + "<Properties/>" + Component(transformGuid)
            + "</Layer>" + "<Layer>" + Component(flushGuid) + Component(transformGuid)
            + "</Layer>"));
    CVisualization engine(nullptr);
    REQUIRE(engine.LoadScript(PathOf(file)) == 0);
    CHECK(Names(*Root(engine).GetPiece(0)->GetLayer()) == "Transform ");
    CHECK(Names(*Root(engine).GetPiece(1)->GetLayer()) == "Flush Transform ");
}

TEST_CASE("What is no script leaves an empty engine and gives -1")
{
    TestOwner owner;
    CVisualization engine(&owner);
    const TestFile good("good.pxv", Script(Component(flushGuid)));
    for (const std::string text : { "", "hello", "<PXW Version=\"1.0\"/>", "<PXV/>",
             "<PXV Version=\"1.1\"/>", "<PXV Version=\"1.0 \"/>" }) {
        REQUIRE(engine.LoadScript(PathOf(good)) == 0);
        const TestFile bad("bad.pxv", text);
        CHECK(engine.LoadScript(PathOf(bad)) == -1);
        CHECK(Root(engine).GetPieceCount() == 0);
    }
    CHECK(engine.LoadScript(u"/nowhere/x.pxv") == -1);
    CHECK(owner.scriptsLoaded == 6);
    CHECK(engine.SaveScript(u"/proc/nowhere/x.pxv") == 0);
}

TEST_CASE("Hostile scripts are cut off at the limits on nesting and number of pieces")
{
    std::string deep;
    for (int i = 0; i < 20000; ++i)
        deep += "<Layer>";
    for (int i = 0; i < 20000; ++i)
        deep += "</Layer>";
    const TestFile nested("nested.pxv", Script(deep));
    CVisualization engine(nullptr);
    CHECK(engine.LoadScript(PathOf(nested)) == 0);
    int depth = 0;
    for (const CVisLayer* layer = &Root(engine); layer->GetPieceCount() > 0;
         layer = layer->GetPiece(0)->GetLayer())
        ++depth;
    CHECK(depth == 64);

    std::string wide;
    for (int i = 0; i < 5000; ++i)
        wide += "<Layer/>";
    const TestFile many("many.pxv", Script(wide));
    CHECK(engine.LoadScript(PathOf(many)) == 0);
    CHECK(Root(engine).GetPieceCount() == 4096);
    CHECK(engine.LoadScript(PathOf(TestFile("big.pxv", std::string(5 << 20, ' ')))) == -1);
}

TEST_CASE("A script that would take hours for a picture loses just the pieces that cost so much")
{
    // A million operations for each pixel; layers over layers; then a piece like any other.
    std::string equation = "d=d";
    for (int i = 0; i < 500'000; ++i)
        equation += "+d";
    std::string content = Component(transformGuid,
        "<DrawFrequency>1</DrawFrequency><TransformEquation>" + equation + "</TransformEquation>");
    for (int i = 0; i < 1000; ++i)
        content += "<Layer><Properties><Rectangle>0,0,20,20</Rectangle></Properties></Layer>";
    content += Component(transformGuid, "<DrawFrequency>1</DrawFrequency>");
    const TestFile file("script.pxv", Script(content));
    TestOwner owner;
    CVisualization engine(&owner);
    REQUIRE(engine.LoadScript(PathOf(file)) == 0);
    REQUIRE(engine.Draw({ 0, 0, 64, 48 }, false) == 0);
    CHECK(PixelAt(engine.GetBuffer(), 0, 0) == 0); // the last piece clears the outer frame
}

TEST_CASE("A size under 5 x 5 is refused, and a size that was taken stays until the next resize")
{
    TestOwner owner;
    CVisualization engine(&owner);
    CHECK(engine.Draw({ 0, 0, 3, 3 }, false) == -1);
    CHECK(engine.Draw({ 0, 0, 4, 4 }, false) == -1);
    CHECK(engine.Resize({ 0, 0, 5, 4 }) == -1);
    CHECK(owner.audio == nullptr);
    CHECK(engine.Resize({ 0, 0, 5, 5 }) == 0);
    CHECK(engine.Draw({ 0, 0, 99, 99 }, false) == 0);
    OQSize size;
    CHECK(*engine.GetBuffer().GetSize(&size) == OQSize { 5, 5 });
}

TEST_CASE("Audio that is not ready keeps the last picture, and the frame rate is written over it")
{
    const TestFile file(
        "t.pxv", Script(Component(transformGuid, "<DrawFrequency>1</DrawFrequency>")));
    TestOwner owner;
    CVisualization engine(&owner);
    REQUIRE(engine.LoadScript(PathOf(file)) == 0);
    const OQRect rect { 0, 0, 80, 40 };
    CHECK(engine.GetStep() == CVisualization::Step::Waiting);
    engine.Draw(rect, false);
    CHECK(engine.GetStep() == CVisualization::Step::Drawn);
    REQUIRE(owner.audio != nullptr);
    owner.audio->refreshResult = 1;
    FillBuffer(engine.GetBuffer(), 0x00123456);
    CHECK(engine.Draw(rect, false) == 0);
    CHECK(engine.GetStep() == CVisualization::Step::Kept);
    CHECK(PixelAt(engine.GetBuffer(), 0, 0) == 0x00123456);
    engine.Draw(rect, true);
    bool ink = false;
    for (int32_t x = 1; x < 78; ++x)
        ink = ink || PixelAt(engine.GetBuffer(), x, 9) != 0x00123456;
    CHECK(ink);
    CHECK(PixelAt(engine.GetBuffer(), 79, 39) == 0x00123456);
    engine.Resize({ 0, 0, 40, 20 });
    engine.Draw(rect, false);
    CHECK(engine.GetStep() == CVisualization::Step::Waiting);
    CVisualization silent(nullptr);
    silent.Draw(rect, false);
    CHECK(silent.GetStep() == CVisualization::Step::NoData);
}

TEST_CASE("A script that changes on the disk is read again within about half a second of drawing")
{
    const TestFile file("live.pxv", Script(Component(flushGuid)));
    TestOwner owner;
    CVisualization engine(&owner);
    REQUIRE(engine.LoadScript(PathOf(file)) == 0);
    const auto drawFor = [&](int milliseconds) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        while (std::chrono::steady_clock::now() < end) {
            engine.Draw({ 0, 0, 16, 16 }, false);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    };
    drawFor(700);
    CHECK(owner.scriptsLoaded == 1);
    file.Write(Script(Component(transformGuid)));
    std::filesystem::last_write_time(
        file.Path(), std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    drawFor(700);
    CHECK(owner.scriptsLoaded == 2);
    CHECK(Names(Root(engine)) == "Transform ");

    OQEngineContext context;
    context.virtualClock = true;
    engine.SetEngineContext(&context);
    file.Write(Script(Component(flushGuid)));
    for (int i = 0; i < 100; ++i) {
        context.virtualNanoseconds += 1'000'000'000;
        engine.Draw({ 0, 0, 16, 16 }, false);
    }
    CHECK(Names(Root(engine)) == "Transform ");
}

TEST_CASE("Pieces are added behind the one named, and to the front of a layer")
{
    CVisualization engine(nullptr);
    CHECK(engine.AddPiece(0, nullptr) == 1);
    CHECK(engine.AddPiece(CVisualization::newLayer, Root(engine).GetPiece(0)) == 1);
    CHECK(Names(Root(engine)) == "Transform layer ");
    CVisLayerPiece* layer = Root(engine).GetPiece(1);
    CHECK(engine.AddPiece(2, layer) == 1);
    CHECK(engine.AddPiece(1, layer) == 1);
    CHECK(Names(*layer->GetLayer()) == "Flush Spectrum Analyzer ");
    CHECK(engine.AddPiece(-1, nullptr) == 0);
    CHECK(engine.AddPiece(13, nullptr) == 0);
}

TEST_CASE("Moving goes past components, into layers, and out of them before or behind")
{
    CVisualization engine(nullptr);
    engine.AddPiece(CVisualization::newLayer, nullptr);
    engine.AddPiece(1, nullptr);
    engine.AddPiece(0, nullptr);
    CVisLayer& root = Root(engine);
    CHECK(Names(root) == "Transform Flush layer ");
    CVisLayerPiece* transform = root.GetPiece(0);
    CVisLayerPiece* layer = root.GetPiece(2);
    CHECK(engine.MovePiece(transform, -1) == 0);
    CHECK(engine.MovePiece(transform, 0) == 0);
    CHECK(engine.MovePiece(nullptr, 1) == 0);
    CHECK(engine.MovePiece(transform, 1) == 1);
    CHECK(Names(root) == "Flush Transform layer ");
    CHECK(engine.MovePiece(transform, 1) == 1);
    CHECK(Names(root) == "Flush layer ");
    CHECK(transform->GetParent() == layer);
    CHECK(engine.MovePiece(transform, 1) == 1);
    CHECK(Names(root) == "Flush layer Transform ");
    CHECK(engine.MovePiece(transform, 1) == 0);
    CHECK(engine.MovePiece(transform, -1) == 1);
    CHECK(engine.MovePiece(transform, -1) == 1);
    CHECK(Names(root) == "Flush Transform layer ");
    CHECK(transform->GetParent() == &engine.GetRootPiece());
}

TEST_CASE("Edits keep within what a save can bring back")
{
    const TestFile file("deep.pxv", "");
    CVisualization engine(nullptr);
    CVisLayerPiece* deepest = &engine.GetRootPiece();
    int layers = 0;
    while (engine.AddPiece(CVisualization::newLayer, deepest) == 1) {
        deepest = deepest->GetLayer()->GetPiece(0);
        ++layers;
    }
    CHECK(layers == VisLimits::layerNesting);
    CHECK(engine.AddPiece(0, deepest) == 0);
    CHECK(engine.AddPiece(0, deepest->GetParent()) == 1);

    // A layer with a piece would need one level more than is there.
    CVisLayerPiece* above = deepest->GetParent()->GetParent();
    REQUIRE(engine.AddPiece(CVisualization::newLayer, above) == 1);
    CVisLayerPiece* moved = above->GetLayer()->GetPiece(0);
    REQUIRE(engine.AddPiece(0, moved) == 1);
    CHECK(engine.MovePiece(moved, 1) == -1);
    CHECK(Names(*above->GetLayer()) == "layer layer ");
    CHECK(engine.MovePiece(moved->GetLayer()->GetPiece(0), -1) == 1);
    CHECK(engine.MovePiece(moved, 1) == 1);

    engine.SaveScript(PathOf(file));
    const std::string saved = file.Read();
    const std::string again = Saved(saved);
    for (const char* tag : { "<Layer>", "<Component " })
        CHECK(CountOf(again, tag) == CountOf(saved, tag));

    engine.Reset();
    for (int i = 0; i < VisLimits::piecesPerScript; ++i)
        REQUIRE(engine.AddPiece(1, nullptr) == 1);
    CHECK(engine.AddPiece(1, nullptr) == 0);
}

TEST_CASE("The registry finds types by their exact GUID and lists a category by name")
{
    CComponentManager manager;
    manager.Fill();
    CHECK(manager.GetCount() == 13);
    CHECK(manager.FindByGuid(u"36267E6D-70E1-435e-9E2A-428EEA2D3C7E") == 1);
    CHECK(manager.FindByGuid(u"36267E6D-70E1-435E-9E2A-428EEA2D3C7E") == -1);
    OQStringArray names;
    OQNumberArray<int32_t> indexes;
    manager.List(0, names, indexes);
    CHECK(names.Join(u",") == u"Dynamic Transform,Flush,Super Transform,Transform");
    CHECK(indexes[0] == 12);
    CHECK(indexes[3] == 0);
    manager.List(2, names, indexes);
    CHECK(names.GetCount() == 0);
}

TEST_CASE("A shipped script is saved as the user's, whose file it is from then on")
{
    const TestFolder folder;
    const TestFolderVariable data("XDG_DATA_HOME", folder.Path("").c_str());
    const std::string name = "Visualizations/Vis Studio/Bright/Undertow.pxv";
    const std::string shipped = PXVIS_SOURCE_DIR "/data/" + name;
    const auto date = std::filesystem::last_write_time(shipped);
    std::filesystem::create_directories(folder.Path("pxvis/Visualizations/Vis Studio/Bright"));
    CVisualization engine(nullptr);
    REQUIRE(engine.LoadScript(OQString::FromUtf8(shipped)) == 0);
    engine.SaveScript({});
    CHECK(std::filesystem::last_write_time(shipped) == date);
    CHECK(folder.Read("pxvis/" + name).starts_with("<PXV "));
    engine.Reset();
    engine.SaveScript({});
    CHECK(folder.Read("pxvis/" + name) == "<PXV Version=\"1.0\"/>\r\n");
}
