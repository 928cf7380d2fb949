#include "foundation/OQProcessBlock.h"

#include "foundation/OQFormat.h"
#include "foundation/OQNumberText.h"
#include "os/Process.h"

#include <algorithm>
#include <string_view>
#include <unistd.h>

namespace {

constexpr const OQChar* nameFormat = u"Tarnwick Process v%d (%d)";
constexpr OQChar doesNotFit = 0xFFFF; // no character, so no folder begins with it

void Store(OQChar (&field)[OQProcessBlock::FieldLength], const OQString& folder)
{
    const std::u16string_view text = folder.View();
    std::fill(std::begin(field), std::end(field), u'\0');
    if (text.size() < std::size(field))
        std::copy(text.begin(), text.end(), field);
    else
        field[0] = doesNotFit;
}

void Load(const OQChar (&field)[OQProcessBlock::FieldLength], OQString& folder)
{
    const OQChar* end = std::find(std::begin(field), std::end(field), u'\0');
    if (field[0] != doesNotFit && end != std::end(field))
        folder = OQString(field, static_cast<int>(end - field));
}

}

void OQProcessBlock::Fill(const OQProcessFolders& folders)
{
    Store(install, folders.install);
    Store(data, folders.data);
    Store(module, folders.module);
    Store(applicationData, folders.applicationData);
    portable = folders.portable;
    version.store(Version, std::memory_order_release);
}

bool OQProcessBlock::Read(OQProcessFolders& folders) const
{
    if (version.load(std::memory_order_acquire) != Version)
        return false;
    Load(install, folders.install);
    Load(data, folders.data);
    Load(module, folders.module);
    Load(applicationData, folders.applicationData);
    folders.portable = portable != 0;
    return true;
}

// Numbers of processes come again, but not together with the time of the start. Both stay when a
// process goes on with another program, which may have other folders.
std::string OQProcessBlock::GetName()
{
    const OQString name
        = OQFormat(nameFormat, { static_cast<int32_t>(Version), int32_t { ::getpid() } });
    return name.ToUtf8() + " " + std::to_string(::geteuid()) + " "
        + std::to_string(pxvis::os::ProcessStartTime()) + " "
        + std::to_string(pxvis::os::ProgramNumber());
}

bool OQProcessBlock::IsLeftOver(const std::string& name)
{
    const OQString text = OQString::FromUtf8(name);
    const OQString format = nameFormat;
    const int process = text.Find(u'(') + 1;
    if (process <= 0 || !text.StartsWith(format.Left(format.Find(u'%'))))
        return false;
    const int64_t number = OQTextToInt64(text.GetText() + process);
    return number == ::getpid() ? name != GetName() : !pxvis::os::ProcessExists(number);
}
