#pragma once

// How far a gradient's colours move with every frame, in its second coordinate.
constexpr float gradientPhaseStep = 0.005f;

// From 0 to below 1, and from the start again.
constexpr float NextGradientPhase(float phase)
{
    const float next = phase + gradientPhaseStep;
    return next >= 1.0f ? 0.0f : next;
}
