#include "VisTesting.h"
#include "engine2d/CVisComponent.h"
#include "engine2d/CVisLayer.h"
#include "engine2d/CVisLayerPiece.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQEngineContext.h"

#include <doctest/doctest.h>

#include <stdexcept>

namespace {

// Fills the layer with one pixel value and counts its draws.
struct Painter final : CVisComponent
{
    explicit Painter(uint32_t pixelValue)
        : pixel(pixelValue)
    {
    }

    int32_t Draw(IVisBuffer& buffer, IVisAudioData&) override
    {
        ++draws;
        if (throws)
            throw std::runtime_error("a piece fails");
        FillBuffer(buffer, pixel);
        return 0;
    }

    int64_t KeptPixels() const override { return kept; }

    uint32_t pixel;
    int64_t kept = 0;
    int draws = 0;
    bool throws = false;
};

CVisLayerPiece& AddLayer(
    CVisLayerPiece& parent, std::initializer_list<std::pair<const OQChar*, const OQChar*>> rows)
{
    auto piece = std::make_unique<CVisLayerPiece>(&parent);
    piece->MakeLayer();
    CVisLayerPiece& added = *piece;
    parent.GetLayer()->InsertPiece(parent.GetLayer()->GetPieceCount(), std::move(piece));
    if (rows.size() > 0) {
        CVisPropertyList list;
        for (const auto& [name, value] : rows)
            list.AddRow(name, value);
        added.LoadProperties(&list);
    }
    return added;
}

Painter& AddPainter(CVisLayerPiece& parent, uint32_t pixel, const OQChar* onEquation = u"on=1")
{
    auto piece = std::make_unique<CVisLayerPiece>(&parent);
    auto component = std::make_unique<Painter>(pixel);
    Painter& painter = *component;
    piece->MakeComponent(std::move(component));
    CVisPropertyList list;
    list.AddRow(u"OnEquation", onEquation);
    piece->LoadProperties(&list);
    parent.GetLayer()->InsertPiece(parent.GetLayer()->GetPieceCount(), std::move(piece));
    return painter;
}

// A root layer of 12 x 10 that `base` fills, with one layer of `top` over it.
struct Scene
{
    Scene(uint32_t base, uint32_t top,
        std::initializer_list<std::pair<const OQChar*, const OQChar*>> rows)
        : root(nullptr)
    {
        root.MakeLayer();
        AddPainter(root, base);
        layer = &AddLayer(root, rows);
        painter = &AddPainter(*layer, top);
        Draw();
    }

    void Draw() { root.GetLayer()->Draw(audio, { 0, 0, 12, 10 }); }

    uint32_t Pixel(int32_t x, int32_t y) { return PixelAt(root.GetLayer()->GetBuffer(), x, y); }

    TestAudio audio;
    CVisLayerPiece root;
    CVisLayerPiece* layer = nullptr;
    Painter* painter = nullptr;
};

}

TEST_CASE("A layer replaces exactly its part of the parent, white pixels included")
{
    Scene scene(0x00000011, 0x00FFFFFF,
        { { u"Rectangle", u"0.5,0,1,0.5" }, { u"TransparentColor", u"0xFFFFFFFF" } });
    CHECK(scene.Pixel(5, 0) == 0x11);
    CHECK(scene.Pixel(6, 0) == 0x00FFFFFF);
    CHECK(scene.Pixel(11, 4) == 0x00FFFFFF);
    CHECK(scene.Pixel(6, 5) == 0x11);
}

TEST_CASE("A rectangle that reaches outside is clipped to the parent on all four sides")
{
    Scene scene(0x11, 0x22, { { u"Rectangle", u"-0.5;-0.5;0.5;0.6" } });
    CHECK(scene.Pixel(0, 0) == 0x22);
    CHECK(scene.Pixel(5, 5) == 0x22);
    CHECK(scene.Pixel(6, 5) == 0x11);
    CHECK(scene.Pixel(5, 6) == 0x11);
    Scene huge(0x11, 0x22, { { u"Rectangle", u"-2;-2;3;3" } });
    CHECK(huge.Pixel(0, 0) == 0x22);
    CHECK(huge.Pixel(11, 9) == 0x22);
    Scene away(0x11, 0x22, { { u"Rectangle", u"2;2;3;3" } });
    CHECK(away.Pixel(11, 9) == 0x11);
}

TEST_CASE(
    "The stored transparent colour decides: all 32 bits of it, and white alone is a plain copy")
{
    const uint32_t opaqueWhite = 0xFFFFFFFF;
    const uint32_t white = 0x00FFFFFF;
    // Without properties a layer's colour is 0xFFFFFFFF; text gives a top byte of 0.
    CHECK(Scene(0, opaqueWhite, {}).Pixel(3, 3) == opaqueWhite);
    CHECK(Scene(0x11, white, { { u"OutputMode", u"Add" }, { u"TransparentColor", u"0xFFFFFFFF" } })
              .Pixel(3, 3)
        == 0x11);
    CHECK(Scene(0, opaqueWhite, { { u"OutputMode", u"1" }, { u"TransparentColor", u"0xFFFFFFFF" } })
              .Pixel(3, 3)
        == 0x7F7F7F7F);
    // Text is red first, pixels are compared with the bytes exchanged.
    CHECK(Scene(0x11, 0x000000FF, { { u"TransparentColor", u"0xFF0000" } }).Pixel(3, 3) == 0x11);
    CHECK(Scene(0x11, 0x00FF0000, { { u"TransparentColor", u"0xFF0000" } }).Pixel(3, 3)
        == 0x00FF0000);
    CHECK(Scene(0x11, 0x22, { { u"OutputMode", u"3" } }).Pixel(3, 3) == 0x11);
}

TEST_CASE("Output modes and flags survive saving and loading, colours with red and blue apart too")
{
    CVisLayerPiece piece(nullptr);
    piece.MakeLayer();
    CVisPropertyList rows;
    rows.AddRow(u"OnEquation", u"Every 3rd Frame");
    rows.AddRow(u"ClearEachFrame", u"Yes");
    rows.AddRow(u"OutputMode", u"Blend (50 / 50)");
    rows.AddRow(u"Rectangle", u"Bottom Half");
    rows.AddRow(u"TransparentColor", u"0x0102FE");
    piece.LoadProperties(&rows);
    CVisPropertyList saved;
    CHECK(piece.SaveProperties(saved) == 0);
    const OQChar* const expected[]
        = { u"on=if(t<1,1,0);t=(t+1)%3;", u"1", u"1", u"0;0.5;1;1", u"0x0102FE" };
    CHECK(saved.GetCount() == 5);
    for (int i = 0; i < 5; ++i)
        CHECK(saved[i].Value == expected[i]);
    CHECK(CVisLayerPiece(nullptr).SaveProperties(saved) == -1);
}

TEST_CASE("On-equations run once a frame, and one that does not compile keeps its piece off")
{
    CVisLayerPiece root(nullptr);
    root.MakeLayer();
    Painter& third = AddPainter(root, 1, u"Every 3rd Frame");
    Painter& once = AddPainter(root, 1, u"Once");
    Painter& second = AddPainter(root, 1, u"Every 2nd Frame");
    Painter& impact = AddPainter(root, 1, u"Impact On");
    Painter& beat = AddPainter(root, 1, u"on=beat-16777216"); // single precision loses the last 1
    Painter& broken = AddPainter(root, 1, u"on=1; ");
    Painter& notANumber = AddPainter(root, 1, u"on=log(-1)");
    Painter& thrower = AddPainter(root, 1);
    thrower.throws = true;
    Painter& last = AddPainter(root, 1);
    TestAudio audio;
    audio.values[VisAudioValueBeat] = 16777217;
    for (const int32_t level : { 100, 101, 0, 255, 50, -1 }) {
        audio.values[VisAudioValueLevel] = level;
        root.GetLayer()->Draw(audio, { 0, 0, 16, 16 });
    }
    CHECK(third.draws == 2);
    CHECK(once.draws == 1);
    CHECK(second.draws == 3);
    CHECK(impact.draws == 2);
    CHECK(beat.draws == 0);
    CHECK(broken.draws == 0);
    CHECK(notANumber.draws == 0);
    CHECK(thrower.draws == 6);
    CHECK(last.draws == 6);
}

TEST_CASE("A layer keeps its picture unless it clears, and an off layer leaves the parent alone")
{
    Scene scene(0x11, 0x22, {});
    scene.painter->throws = true; // paints nothing more
    scene.Draw();
    CHECK(scene.Pixel(0, 0) == 0x22);
    CVisPropertyList clear;
    clear.AddRow(u"ClearEachFrame", u"1");
    scene.layer->LoadProperties(&clear);
    scene.Draw();
    CHECK(scene.Pixel(0, 0) == 0xFF000000);
    CVisPropertyList off;
    off.AddRow(u"OnEquation", u"on=0");
    scene.layer->LoadProperties(&off);
    scene.Draw();
    CHECK(scene.Pixel(0, 0) == 0x11);
}

TEST_CASE("A layer under 5 x 5 pixels draws nothing, and goes on as soon as it has room")
{
    Scene scene(0x11, 0x22, { { u"Rectangle", u"0;0;0.4;1" } });
    CHECK(scene.Pixel(0, 0) == 0x11);
    CHECK(scene.painter->draws == 0);
    scene.root.GetLayer()->Resize({ 0, 0, 24, 20 });
    scene.Draw();
    CHECK(scene.Pixel(8, 0) == 0x22);
    CHECK(scene.Pixel(9, 0) == 0x11);
    CHECK(scene.painter->draws == 1);
}

TEST_CASE("Layers and components past what a script may keep are left out until there is room")
{
    CVisLayerPiece root(nullptr);
    root.MakeLayer();
    Painter& base = AddPainter(root, 1);
    // 8192 x 8192 pixels, twice: all that may be kept, but the root keeps some, too.
    CVisLayerPiece& wide = AddLayer(root, { { u"Rectangle", u"0,0,512,512" } });
    AddPainter(wide, 2);
    CVisLayerPiece& narrow = AddLayer(root, { { u"Rectangle", u"0,0,.5,1" } });
    Painter& keeper = AddPainter(narrow, 3);
    keeper.kept = VisLimits::keptPixels;
    TestAudio audio;
    const OQRect area { 0, 0, 16, 16 };
    const auto draw = [&] {
        root.Resize(area);
        root.GetLayer()->Draw(audio, area);
        return PixelAt(root.GetLayer()->GetBuffer(), 15, 0);
    };

    CHECK(draw() == 1);
    CHECK(base.draws == 1);
    CHECK(wide.GetLayer()->GetBuffer().GetBits(0) == nullptr);
    CHECK(narrow.GetLayer()->GetBuffer().GetBits(0) != nullptr);
    CHECK(keeper.draws == 0);

    // What a piece keeps is counted once, however often it is sized, and not after it is gone.
    keeper.kept = VisLimits::keptPixels / 2;
    for (int i = 0; i < 5; ++i)
        draw();
    CHECK(keeper.draws == 5);
    Painter& second = AddPainter(root, 4);
    second.kept = keeper.kept;
    CHECK(draw() == 1);
    root.GetLayer()->TakePiece(root.GetLayer()->FindPiece(&narrow));
    CHECK(draw() == 4);
}

TEST_CASE("What a draw may cost is taken by equations and merges, and pieces past it are off")
{
    Scene scene(1, 2, {});
    OQEngineContext context;
    const OQEngineContextScope scope(&context);
    // The on-equations of the two pieces in the root, but not the merge of the layer.
    CMathEvaluator on;
    on.SetEquation(u"on=1");
    CHECK(on.GetWork() > 0);
    context.workLeft = 2 * on.GetWork() + 12 * 10;
    scene.Draw();
    CHECK(scene.Pixel(5, 5) == 1);
    CHECK(scene.painter->draws == 1);
    context.workLeft = on.GetWork() - 1;
    const int before = scene.painter->draws;
    scene.Draw();
    CHECK(scene.painter->draws == before);
}
