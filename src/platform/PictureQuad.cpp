#include "platform/PictureQuad.h"

#include <epoxy/egl.h>
#include <epoxy/gl.h>

namespace pxvis {

namespace {

// Corners from the number of the vertex, so that nothing needs to be fed: a strip of two triangles.
// The rows of a picture begin at the bottom, as those of a texture do.
constexpr const char* kVertexShader = R"(#version 130
out vec2 place;
void main()
{
    place = vec2(gl_VertexID & 1, gl_VertexID >> 1);
    gl_Position = vec4(place * 2.0 - 1.0, 0.0, 1.0);
}
)";

// The window may have an alpha channel; the picture's top byte has no meaning.
constexpr const char* kFragmentShader = R"(#version 130
uniform sampler2D picture;
in vec2 place;
out vec4 color;
void main()
{
    color = vec4(texture(picture, place).rgb, 1.0);
}
)";

template <class Function>
bool Find(Function& function, const char* name)
{
    function = reinterpret_cast<Function>(eglGetProcAddress(name));
    return function != nullptr;
}

}

struct PictureQuad::Functions
{
    PFNGLATTACHSHADERPROC attachShader;
    PFNGLBINDTEXTUREPROC bindTexture;
    PFNGLBINDVERTEXARRAYPROC bindVertexArray;
    PFNGLCLEARPROC clear;
    PFNGLCOMPILESHADERPROC compileShader;
    PFNGLCREATEPROGRAMPROC createProgram;
    PFNGLCREATESHADERPROC createShader;
    PFNGLDRAWARRAYSPROC drawArrays;
    PFNGLGENTEXTURESPROC genTextures;
    PFNGLGENVERTEXARRAYSPROC genVertexArrays;
    PFNGLGETERRORPROC getError;
    PFNGLGETINTEGERVPROC getIntegerv;
    PFNGLGETPROGRAMIVPROC getProgramiv;
    PFNGLLINKPROGRAMPROC linkProgram;
    PFNGLSHADERSOURCEPROC shaderSource;
    PFNGLTEXIMAGE2DPROC texImage2D;
    PFNGLTEXPARAMETERIPROC texParameteri;
    PFNGLTEXSUBIMAGE2DPROC texSubImage2D;
    PFNGLUSEPROGRAMPROC useProgram;
    PFNGLVIEWPORTPROC viewport;

    bool FindAll()
    {
        return Find(attachShader, "glAttachShader") && Find(bindTexture, "glBindTexture")
            && Find(bindVertexArray, "glBindVertexArray") && Find(clear, "glClear")
            && Find(compileShader, "glCompileShader") && Find(createProgram, "glCreateProgram")
            && Find(createShader, "glCreateShader") && Find(drawArrays, "glDrawArrays")
            && Find(genTextures, "glGenTextures") && Find(genVertexArrays, "glGenVertexArrays")
            && Find(getError, "glGetError") && Find(getIntegerv, "glGetIntegerv")
            && Find(getProgramiv, "glGetProgramiv") && Find(linkProgram, "glLinkProgram")
            && Find(shaderSource, "glShaderSource") && Find(texImage2D, "glTexImage2D")
            && Find(texParameteri, "glTexParameteri") && Find(texSubImage2D, "glTexSubImage2D")
            && Find(useProgram, "glUseProgram") && Find(viewport, "glViewport");
    }
};

PictureQuad::PictureQuad() = default;

PictureQuad::~PictureQuad() = default;

bool PictureQuad::Open()
{
    m_gl = std::make_unique<Functions>();
    if (!m_gl->FindAll() || !BuildProgram())
        return false;
    GLuint vertices = 0; // none, but some contexts want an object that says so
    m_gl->genVertexArrays(1, &vertices);
    m_gl->bindVertexArray(vertices);
    GLuint texture = 0;
    m_gl->genTextures(1, &texture);
    m_gl->bindTexture(GL_TEXTURE_2D, texture);
    m_gl->texParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    m_gl->texParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    m_gl->texParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    m_gl->texParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    m_gl->getIntegerv(GL_MAX_TEXTURE_SIZE, &m_largestTexture);
    m_gl->getIntegerv(GL_MAX_VIEWPORT_DIMS, m_largestViewport);
    return m_gl->getError() == GL_NO_ERROR;
}

bool PictureQuad::BuildProgram()
{
    const GLuint program = m_gl->createProgram();
    const auto attach = [&](GLenum kind, const char* text) {
        const GLuint shader = m_gl->createShader(kind);
        m_gl->shaderSource(shader, 1, &text, nullptr);
        m_gl->compileShader(shader);
        m_gl->attachShader(program, shader);
    };
    attach(GL_VERTEX_SHADER, kVertexShader);
    attach(GL_FRAGMENT_SHADER, kFragmentShader);
    m_gl->linkProgram(program);
    GLint linked = 0; // 0, too, if one of them doesn't compile
    m_gl->getProgramiv(program, GL_LINK_STATUS, &linked);
    m_gl->useProgram(program);
    return linked != 0;
}

bool PictureQuad::Draw(const PresenterPicture& picture, int32_t surfaceWidth, int32_t surfaceHeight)
{
    if (picture.width > m_largestTexture || picture.height > m_largestTexture
        || surfaceWidth > m_largestViewport[0] || surfaceHeight > m_largestViewport[1])
        return false;
    const bool isNew = picture.width != m_width || picture.height != m_height;
    if (isNew)
        m_gl->texImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, picture.width, picture.height, 0, GL_BGRA,
            GL_UNSIGNED_INT_8_8_8_8_REV, picture.bits);
    else
        m_gl->texSubImage2D(GL_TEXTURE_2D, 0, 0, 0, picture.width, picture.height, GL_BGRA,
            GL_UNSIGNED_INT_8_8_8_8_REV, picture.bits);
    m_width = picture.width;
    m_height = picture.height;
    m_gl->viewport(0, 0, surfaceWidth, surfaceHeight);
    // All is drawn over, but it is here that software drivers notice another size of the window;
    // and those that draw in tiles needn't fetch what was there.
    m_gl->clear(GL_COLOR_BUFFER_BIT);
    m_gl->drawArrays(GL_TRIANGLE_STRIP, 0, 4);
    return !isNew || m_gl->getError() == GL_NO_ERROR;
}

}
