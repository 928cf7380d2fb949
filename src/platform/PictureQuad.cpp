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
    PFNGLATTACHSHADERPROC AttachShader;
    PFNGLBINDTEXTUREPROC BindTexture;
    PFNGLBINDVERTEXARRAYPROC BindVertexArray;
    PFNGLCLEARPROC Clear;
    PFNGLCOMPILESHADERPROC CompileShader;
    PFNGLCREATEPROGRAMPROC CreateProgram;
    PFNGLCREATESHADERPROC CreateShader;
    PFNGLDRAWARRAYSPROC DrawArrays;
    PFNGLGENTEXTURESPROC GenTextures;
    PFNGLGENVERTEXARRAYSPROC GenVertexArrays;
    PFNGLGETERRORPROC GetError;
    PFNGLGETINTEGERVPROC GetIntegerv;
    PFNGLGETPROGRAMIVPROC GetProgramiv;
    PFNGLLINKPROGRAMPROC LinkProgram;
    PFNGLSHADERSOURCEPROC ShaderSource;
    PFNGLTEXIMAGE2DPROC TexImage2D;
    PFNGLTEXPARAMETERIPROC TexParameteri;
    PFNGLTEXSUBIMAGE2DPROC TexSubImage2D;
    PFNGLUSEPROGRAMPROC UseProgram;
    PFNGLVIEWPORTPROC Viewport;

    bool FindAll()
    {
        return Find(AttachShader, "glAttachShader") && Find(BindTexture, "glBindTexture")
            && Find(BindVertexArray, "glBindVertexArray") && Find(Clear, "glClear")
            && Find(CompileShader, "glCompileShader") && Find(CreateProgram, "glCreateProgram")
            && Find(CreateShader, "glCreateShader") && Find(DrawArrays, "glDrawArrays")
            && Find(GenTextures, "glGenTextures") && Find(GenVertexArrays, "glGenVertexArrays")
            && Find(GetError, "glGetError") && Find(GetIntegerv, "glGetIntegerv")
            && Find(GetProgramiv, "glGetProgramiv") && Find(LinkProgram, "glLinkProgram")
            && Find(ShaderSource, "glShaderSource") && Find(TexImage2D, "glTexImage2D")
            && Find(TexParameteri, "glTexParameteri") && Find(TexSubImage2D, "glTexSubImage2D")
            && Find(UseProgram, "glUseProgram") && Find(Viewport, "glViewport");
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
    m_gl->GenVertexArrays(1, &vertices);
    m_gl->BindVertexArray(vertices);
    GLuint texture = 0;
    m_gl->GenTextures(1, &texture);
    m_gl->BindTexture(GL_TEXTURE_2D, texture);
    m_gl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    m_gl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    m_gl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    m_gl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    m_gl->GetIntegerv(GL_MAX_TEXTURE_SIZE, &m_largestTexture);
    m_gl->GetIntegerv(GL_MAX_VIEWPORT_DIMS, m_largestViewport);
    return m_gl->GetError() == GL_NO_ERROR;
}

bool PictureQuad::BuildProgram()
{
    const GLuint program = m_gl->CreateProgram();
    const auto attach = [&](GLenum kind, const char* text) {
        const GLuint shader = m_gl->CreateShader(kind);
        m_gl->ShaderSource(shader, 1, &text, nullptr);
        m_gl->CompileShader(shader);
        m_gl->AttachShader(program, shader);
    };
    attach(GL_VERTEX_SHADER, kVertexShader);
    attach(GL_FRAGMENT_SHADER, kFragmentShader);
    m_gl->LinkProgram(program);
    GLint linked = 0; // 0, too, if one of them doesn't compile
    m_gl->GetProgramiv(program, GL_LINK_STATUS, &linked);
    m_gl->UseProgram(program);
    return linked != 0;
}

bool PictureQuad::Draw(const PresenterPicture& picture, int32_t surfaceWidth, int32_t surfaceHeight)
{
    if (picture.width > m_largestTexture || picture.height > m_largestTexture
        || surfaceWidth > m_largestViewport[0] || surfaceHeight > m_largestViewport[1])
        return false;
    const bool isNew = picture.width != m_width || picture.height != m_height;
    if (isNew)
        m_gl->TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, picture.width, picture.height, 0, GL_BGRA,
            GL_UNSIGNED_INT_8_8_8_8_REV, picture.bits);
    else
        m_gl->TexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, picture.width, picture.height, GL_BGRA,
            GL_UNSIGNED_INT_8_8_8_8_REV, picture.bits);
    m_width = picture.width;
    m_height = picture.height;
    m_gl->Viewport(0, 0, surfaceWidth, surfaceHeight);
    // All is drawn over, but it is here that software drivers notice another size of the window;
    // and those that draw in tiles needn't fetch what was there.
    m_gl->Clear(GL_COLOR_BUFFER_BIT);
    m_gl->DrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    return !isNew || m_gl->GetError() == GL_NO_ERROR;
}

}
