#include "foundation/OQFileSystem.h"

#include "foundation/CFileLoader.h"
#include "foundation/OQDataRoots.h"
#include "foundation/OQDllString.h"
#include "foundation/OQFileFinder.h"
#include "foundation/OQLog.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQSiblingModules.h"
#include "foundation/OQStringArray.h"
#include "foundation/OQTextEncoding.h"
#include "os/File.h"
#include "os/Folder.h"

#include <string>
#include <vector>

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

// "script~1.pxv", or the next number, beside "script.pxv": a name that isn't taken. Empty if none
// of very many is free.
OQString FreeBackupName(const OQString& path)
{
    constexpr int mostBackups = 10'000;
    const int name = path.ReverseFind(u'/') + 1;
    int dot = path.ReverseFind(u'.');
    if (dot <= name)
        dot = path.GetLength();
    for (int number = 1; number <= mostBackups; ++number) {
        OQString backup = path.Left(dot) + u"~" + OQIntToText(number) + path.Mid(dot);
        if (!OQFileSystem::FileExists(backup) && !pxvis::os::FolderExists(backup.ToUtf8()))
            return backup;
    }
    return {};
}

bool MoveFile(const OQString& from, const OQString& to)
{
    return !to.IsEmpty() && pxvis::os::MoveFile(from.ToUtf8(), to.ToUtf8());
}

bool ReplaceFile(const OQString& target, const OQString& source)
{
    constexpr const OQChar* scope = u"OQFileSystem::SafeReplaceFile";
    if (!OQFileSystem::FileExists(source))
        return false;
    if (pxvis::os::IsSameFile(target.ToUtf8(), source.ToUtf8()))
        return true;
    if (!OQFileSystem::FileExists(target))
        return MoveFile(source, target);
    const OQString backup = FreeBackupName(target);
    if (!MoveFile(target, backup)) {
        OQLog(OQLogError, scope, u"Error renaming original file");
        return false;
    }
    if (MoveFile(source, target)) {
        OQFileSystem::DeleteFile(backup);
        return true;
    }
    OQLog(OQLogError, scope, u"Error moving new file into place of original name");
    MoveFile(backup, target);
    return false;
}

void LogDeletion(int number, const OQString& path)
{
    OQLog(OQLogError, u"OQFileSystem::DeleteFile", u"Error %d deleting existing file: %s",
        { number, path });
}

OQString WithoutSlash(OQString path)
{
    while (path.GetLength() > 1 && path.EndsWith(u"/"))
        path.Delete(path.GetLength() - 1);
    return path;
}

OQString LanguageName()
{
    OQString language;
    IOQTools* tools = OQSiblingModules::Get().Tools();
    if (const IOQTranslator* translator = tools ? tools->GetTranslator(1) : nullptr) {
        OQDllString text(language);
        translator->GetLanguage(text);
    }
    return language.IsEmpty() ? OQString(u"English") : language;
}

// A name below a folder: neither absolute nor with a step up.
bool StaysBelow(const OQString& name)
{
    OQStringArray parts;
    name.Split(u'/', parts);
    return !name.IsEmpty() && !name.StartsWith(u"/") && name.Find(u'\0') < 0
        && parts.Find(u"..") < 0;
}

OQStringArray DataFolders(int kind, const OQString& language, const OQDataRoots& roots)
{
    if (kind == OQDataArt)
        return { u"Custom Art/", u"Default Art/" };
    if (kind != OQDataDefaultPages && kind != OQDataCustomPages)
        return {};
    const OQString pages = kind == OQDataDefaultPages ? u"Default Webpages/" : u"Custom Webpages/";
    const bool known = StaysBelow(language) && roots.HasFolder(pages + language);
    return { pages + (known ? language : OQString(u"English")) + u"/" };
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
    // Who has looked whether the file is there must not wait for a server.
    if (CFileLoader::IsAddress(path) && !FileExists(path)) {
        OQLoadSettings settings;
        settings.maximumSize = maximumSize;
        CFileLoader loader(settings);
        OQByteBuffer bytes;
        if (!loader.Load(path, bytes))
            return false;
        text = OQBytesToText({ reinterpret_cast<const char*>(bytes.GetData()), bytes.GetSize() });
    } else {
        std::string bytes;
        if (pxvis::os::ReadFile(path.ToUtf8(), maximumSize, bytes) != pxvis::os::FileError::None)
            return false;
        text = OQBytesToText(bytes);
    }
    const int zero = text.Find(u'\0');
    if (zero >= 0)
        text = text.Left(zero);
    WidenLineEnds(text);
    return true;
}

bool OQFileSystem::WriteTextFile(const OQString& path, const OQString& text)
{
    MakeDirectoryTree(path.Left(path.ReverseFind(u'/')));
    return pxvis::os::WriteFile(path.ToUtf8(), text.ToUtf8()) == pxvis::os::FileError::None;
}

bool OQFileSystem::MakeDirectoryTree(const OQString& path)
{
    if (path.IsEmpty())
        return false;
    IOQTools* tools = OQSiblingModules::Get().Tools();
    const IOQFiles* files = tools ? tools->GetFiles(1) : nullptr;
    if (!files)
        return false;
    const std::string folder = WithoutSlash(path).ToUtf8();
    if (!path.StartsWith(u"/") || pxvis::os::FolderExists(folder))
        return true;
    if (files->MayMakeFolder(path.GetText())) {
        // What is missing, from the longest to the shortest.
        std::vector<std::string> missing;
        for (std::string level = folder; level.size() > 1 && !pxvis::os::FolderExists(level);
             level.resize(level.rfind('/')))
            missing.push_back(level);
        while (!missing.empty() && pxvis::os::MakeFolder(missing.back()))
            missing.pop_back();
    }
    if (pxvis::os::FolderExists(folder))
        return true;
    OQLog(OQLogError, u"OQFileSystem::MakeDirectoryTree", u"Failed! Path=%s", { path });
    return false;
}

bool OQFileSystem::DeleteFile(const OQString& path)
{
    if (path.IsEmpty())
        return false;
    const int number = pxvis::os::DeleteFile(path.ToUtf8());
    if (number != 0)
        LogDeletion(number, path);
    return number == 0;
}

bool OQFileSystem::SafeReplaceFile(const OQString& target, const OQString& source)
{
    const OQString file = OQString::FromUtf8(pxvis::os::ResolveLinks(target.ToUtf8()));
    if (ReplaceFile(file, source))
        return true;
    DeleteFile(source);
    return false;
}

bool OQFileSystem::DeleteDirectory(const OQString& path)
{
    const pxvis::os::TreeFailure failure = pxvis::os::DeleteTree(path.ToUtf8());
    if (failure.number != 0)
        LogDeletion(failure.number, OQString::FromUtf8(failure.path));
    return failure.number == 0;
}

bool OQFileSystem::CopyDirectory(const OQString& from, const OQString& to)
{
    if (!pxvis::os::FolderExists(from.ToUtf8()) || !MakeDirectoryTree(to))
        return false;

    struct Item
    {
        OQString source;
        OQString target;
        bool isFolder;
    };

    // All of it first: one folder may lie in the other.
    std::vector<Item> items;
    const OQString folder = WithoutSlash(to) + u"/";
    OQFileFinder finder(from, u"*.*", OQFinderDepth::Tree);
    while (finder.Next()) {
        if (!finder.IsLink())
            items.push_back(
                { finder.GetPath(), folder + finder.GetRelativePath(), finder.IsFolder() });
    }
    bool copied = finder.IsComplete();
    for (const Item& item : items) {
        const bool done = item.isFolder
            ? MakeDirectoryTree(item.target)
            : pxvis::os::CopyFile(item.source.ToUtf8(), item.target.ToUtf8())
                == pxvis::os::FileError::None;
        copied = copied && done;
    }
    return copied;
}

OQString OQFileSystem::FindDataFile(const OQString& name, int kind)
{
    return FindDataFile(name, kind, OQDataRoots::Get());
}

OQString OQFileSystem::FindDataFile(const OQString& name, int kind, const OQDataRoots& roots)
{
    constexpr const OQChar* imagePrefix = u"image:";
    constexpr int prefixLength = 6;
    const bool isImage = name.StartsWithNoCase(imagePrefix);
    OQString file = isImage ? name.Mid(prefixLength) : name;
    file.Replace(u'\\', u'/');
    if (!StaysBelow(file))
        return {};
    const OQString language = LanguageName();
    for (const OQString& folder : DataFolders(kind, language, roots)) {
        OQStringArray candidates;
        if (!isImage)
            candidates.Add(folder + file);
        for (const OQChar* extension : { u".png", u".jpg", u".gif", u".bmp", u".tif" }) {
            if (isImage && StaysBelow(language))
                candidates.Add(folder + file + u" - " + language + extension);
            if (isImage)
                candidates.Add(folder + file + extension);
        }
        for (const OQString& candidate : candidates) {
            if (OQString path = roots.FindFile(candidate); !path.IsEmpty())
                return path;
        }
    }
    return {};
}

double OQFileSystem::GetLastWriteTime(const OQString& path)
{
    return pxvis::os::LastWriteTime(path.ToUtf8());
}
