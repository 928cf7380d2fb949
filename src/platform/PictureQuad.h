#pragma once

#include "platform/PresenterPicture.h"

#include <cstdint>
#include <memory>

namespace pxvis {

// Draws a picture over the whole of the current OpenGL context's surface. Functions of OpenGL are
// asked for one by one, from EGL: what is missing makes Open fail, whereas the usual loaders end
// the process. Its texture and program go with the context.
class PictureQuad
{
public:
    PictureQuad();
    ~PictureQuad();

    // The context that is current has OpenGL 3.0 or later and stays the current one.
    bool Open();

    // False if the driver can't hold the picture or the surface.
    bool Draw(const PresenterPicture& picture, int32_t surfaceWidth, int32_t surfaceHeight);

private:
    struct Functions;

    bool BuildProgram();

    std::unique_ptr<Functions> m_gl;
    int32_t m_largestTexture = 0;
    int32_t m_largestViewport[2] = {};
    int32_t m_width = 0; // of the texture
    int32_t m_height = 0;
};

}
