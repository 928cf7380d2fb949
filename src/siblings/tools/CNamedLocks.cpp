#include "siblings/tools/CNamedLocks.h"

#include "foundation/OQCharacters.h"
#include "foundation/OQString.h"
#include "os/FileLock.h"
#include "os/RuntimeFolder.h"

#include <memory>
#include <string>
#include <string_view>

namespace {

class CNamedLock final : public IOQNamedLock
{
public:
    pxvis::os::FileLock lock;
};

void AppendHexDigits(std::string& text, uint64_t value, int digits)
{
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += "0123456789ABCDEF"[value >> shift & 15];
}

uint64_t HashOf(std::string_view bytes)
{
    uint64_t hash = 0xCBF29CE484222325; // FNV-1a
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    return hash;
}

// The name of a file in a folder, whatever the lock's name is: letters, digits, blanks and "-"
// stand for themselves, and a long name is cut off and told from others by its hash.
std::string FileNameOf(std::string_view name)
{
    constexpr size_t longest = 200;
    std::string file;
    for (const char byte : name.substr(0, longest)) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 128
            && (OQIsLetter(value) || OQIsDigit(value) || value == ' ' || value == '-')) {
            file += byte;
            continue;
        }
        file += '%';
        AppendHexDigits(file, value, 2);
    }
    if (file.size() > longest || name.size() > longest) {
        file.resize(longest);
        file += '~';
        AppendHexDigits(file, HashOf(name), 16);
    }
    return file + ".lock";
}

}

IOQNamedLock* CNamedLocks::Acquire(const OQChar* name, int32_t waitMilliseconds)
{
    try {
        const std::string bytes = OQString(name).ToUtf8();
        const std::string folder = bytes.empty() ? bytes : pxvis::os::RuntimeFolder();
        if (folder.empty())
            return nullptr;
        auto held = std::make_unique<CNamedLock>();
        const int32_t wait = waitMilliseconds < 0 ? INT32_MAX : waitMilliseconds;
        return held->lock.Acquire(folder + "/" + FileNameOf(bytes), wait) ? held.release()
                                                                          : nullptr;
    } catch (...) {
        return nullptr;
    }
}
