#include "foundation/OQFileSystem.h"

#include "foundation/OQTextEncoding.h"
#include "os/File.h"

namespace {

void WidenLineEnds(OQString& text)
{
    const std::u16string_view view = text.View();
    OQString widened;
    size_t copied = 0;
    for (size_t at = view.find(u'\n'); at != std::u16string_view::npos;
         at = view.find(u'\n', at + 1)) {
        if (at > 0 && view[at - 1] == u'\r')
            continue;
        widened.Append(view.substr(copied, at - copied));
        widened += u"\r\n";
        copied = at + 1;
    }
    if (copied == 0)
        return;
    widened.Append(view.substr(copied));
    text = std::move(widened);
}

}

bool OQFileSystem::FileExists(const OQString& path)
{
    return pxvis::os::FileExists(path.ToUtf8());
}

bool OQFileSystem::ReadTextFile(const OQString& path, OQString& text, size_t maximumSize)
{
    text.Clear();
    if (path.IsEmpty())
        return true;
    std::string bytes;
    if (pxvis::os::ReadFile(path.ToUtf8(), maximumSize, bytes) != pxvis::os::FileError::None)
        return false;
    text = OQBytesToText(bytes);
    const int zero = text.Find(u'\0');
    if (zero >= 0)
        text = text.Left(zero);
    WidenLineEnds(text);
    return true;
}

bool OQFileSystem::WriteTextFile(const OQString& path, const OQString& text)
{
    return pxvis::os::WriteFile(path.ToUtf8(), text.ToUtf8()) == pxvis::os::FileError::None;
}

double OQFileSystem::GetLastWriteTime(const OQString& path)
{
    return pxvis::os::LastWriteTime(path.ToUtf8());
}
