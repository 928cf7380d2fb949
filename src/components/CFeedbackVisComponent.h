#pragma once

#include "components/CBeatEquation.h"
#include "components/CRowVisComponent.h"

namespace pxvis::kernels {
struct FeedbackPass;
}

// Base of the components that make the layer's new picture out of its last one through positions
// that wrap around, and fade and tint it by equations.
class CFeedbackVisComponent : public CRowVisComponent
{
protected:
    // Each binds the rows of one or two of the fields below.
    void BindColors();
    void BindBorders();

    // Compiles the colour equations.
    void PrepareColors();

    // Takes the work of a Prepare that compiles so many characters and the colour equations. False
    // if the Draw may not cost it.
    bool TakePrepareWork(int64_t characters) const;

    // Takes the work of the pass, `pixelWork` for each pixel. False if the Draw may not cost
    // it, and for an empty rectangle.
    bool TakePassWork(int64_t pixelWork) const;

    // Flips the ring and gives the pass the pictures. False, after the flip, for a ring of another
    // size than the rectangle.
    bool TakePictures(IVisBuffer& buffer, pxvis::kernels::FeedbackPass& pass) const;

    // Runs the colour equations, then draws the pass's dither from the random numbers.
    void RunColors(pxvis::kernels::FeedbackPass& pass);

    // As the equations hear them; they outlive the equations that share them.
    CBeatVariables m_beat;

private:
    OQString m_colorFadeEquation;
    OQString m_colorAddEquation;
    int32_t m_clipAtBorders = 0;

    struct ChannelEquation
    {
        CBeatEquation equation;
        double* channels[3] = {}; // blue, green, red

        void Compile(const OQString& text, const CBeatVariables& beat, double start);
    };

    ChannelEquation m_fade;
    ChannelEquation m_add;
};
