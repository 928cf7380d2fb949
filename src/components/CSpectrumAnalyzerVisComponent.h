#pragma once

#include "components/CRowVisComponent.h"
#include "components/CSpectrumBarValues.h"
#include "engine2d/CGradientEx.h"
#include "foundation/IOQImage.h"

#include <array>
#include <memory>
#include <vector>

class CVisBufferHelper;

// Falling bars and thrown peak markers from the audio spectrum. The physics move one step a frame,
// in integers with 8 fractional bits, whatever the frame rate is.
class CSpectrumAnalyzerVisComponent final : public CRowVisComponent
{
public:
    CSpectrumAnalyzerVisComponent();

    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int32_t Invalidate() override;
    int64_t KeptPixels() const override;

private:
    static constexpr int32_t maxBars = 512;

    // Pixels; neither in order nor inside the picture.
    struct Box
    {
        int64_t left;
        int64_t top;
        int64_t right;
        int64_t bottom;
    };

    // A box of a bar as far as it lies in the picture.
    struct Bar
    {
        int32_t first; // column
        int32_t count; // columns
        int32_t highest; // row
        int32_t lowest;
        int32_t tip; // the row where the box leaves the picture; -1: none
        bool isUpward;
        int64_t base; // the row of the table's first colour, maybe outside
        int64_t rows; // from it to the tip
    };

    struct Metrics // pixels
    {
        int64_t barWidth;
        int64_t pitch; // from a bar to the next
        int64_t peakHeight;
        int64_t margin;
        int32_t bars;
    };

    void Start();
    void LoadPicture(IVisAudioData& audio);
    Metrics Measure(int32_t width, int32_t height) const;
    void MoveBar(size_t bar, int32_t target);
    void MovePeak(size_t bar);
    void CollectBoxes(const Metrics& metrics, size_t bar);
    int32_t TableSize() const;
    uint32_t TablePixel(int64_t index) const;
    void CollectBar(const CVisBufferHelper& picture, const Box& box);
    void FillBars(const CVisBufferHelper& picture);
    void FillBarRow(const CVisBufferHelper& picture, int32_t y) const;
    void FillPeak(const CVisBufferHelper& picture, const Box& box) const;
    void FillFromPicture(IOQImage& target, const Box& box) const;

    int32_t m_drawSource = 0; // 0 gradient, 1 picture
    int32_t m_drawPeaks = 0;
    int32_t m_drawBars = 0;
    int32_t m_mirrored = 0;
    OQString m_imageFile;
    int32_t m_peakGravity = 0;
    int32_t m_barGravity = 0;
    int32_t m_peakTerminalVelocity = 0; // 0: none
    int32_t m_barTerminalVelocity = 0;
    int32_t m_peakThrowForce = 0;
    CSpectrumBarValues::Settings m_spectrum;
    float m_barWidth = 0; // of the picture's width
    float m_barSpacing = 0;
    float m_peakHeight = 0; // of the picture's height
    Color m_peakColor;
    OQString m_gradientText;
    VisFractionRect m_mainRectangle;

    // Heights in thousandths of the display's height, velocities in 1/256 of that a frame.
    std::array<int32_t, maxBars> m_barVelocities {};
    std::array<int32_t, maxBars> m_barHeights {};
    std::array<int32_t, maxBars> m_peakHeights {};
    std::array<int32_t, maxBars> m_peakVelocities {};
    CGradientEx m_gradient;
    float m_phase = 0;
    OQRect m_pixelRectangle;
    std::unique_ptr<IOQImage> m_picture; // of the pixel rectangle's size; null: none
    bool m_isPictureDue = false; // it is to be loaded, anew or for the first time
    std::vector<Box> m_barBoxes; // of one frame; kept for their memory
    std::vector<Box> m_peakBoxes;
    std::vector<Bar> m_bars;
};
