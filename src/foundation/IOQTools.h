#pragma once

#include "foundation/OQChar.h"

#include <cstdint>

class IOQDllBuffer;
class IOQDllString;
// With headers of their own.
class IOQDialogs;
class IOQMainThreadMessages;
class IOQNamedLocks;
class IOQUnpacker;
class IOQUserInterface;

// The services of the tools module. All belong to the module, live as long as it does and may be
// used by any thread. Texts are never null unless it says so; nothing is thrown. Slots of every
// interface: add at the end only.

class IOQDisplayScale
{
public:
    virtual double GetScale() const = 0; // 1 at 100 %; 0.5 to 8
    // Rounded to the nearest whole number; the value itself at 100 %.
    virtual int32_t Scale(int32_t value) const = 0;

protected:
    ~IOQDisplayScale() = default;
};

enum OQTextFlags : int32_t
{
    OQTextIgnoreCase = 1,
    OQTextOrdinal = 2, // unit by unit, which a search always is
};

class IOQText
{
public:
    // Below, equal to or above 0. `mode`: of the flags above. `numbers` not 0: runs of digits are
    // compared by their value, so that "2" comes before "10"; without effect if ordinal. Only the
    // first `length` characters of both count, all if it is below 0. A null text counts as empty.
    virtual int32_t Compare(
        const OQChar* a, const OQChar* b, int32_t mode, int32_t numbers, int32_t length) const = 0;
    // The position of the first occurrence, which is as long as the needle; -1 if there is none or
    // the needle is empty.
    virtual int32_t Find(const OQChar* text, const OQChar* needle, int32_t flags) const = 0;

protected:
    ~IOQText() = default;
};

class IOQTranslator
{
public:
    // Puts the user's language in place of an English text; one that isn't known stays. What
    // stands in "%s" and the like is the caller's.
    virtual void Translate(IOQDllString& text) const = 0;
    // The English name of the language, such as "German".
    virtual void GetLanguage(IOQDllString& name) const = 0;

protected:
    ~IOQTranslator() = default;
};

enum OQThemeColor : int32_t
{
    OQThemeWindow = 0,
    OQThemeWindowText = 1,
    OQThemeControl = 2,
    OQThemeControlText = 3,
    OQThemeBorder = 4,
    OQThemePage = 5, // background of a page
    OQThemeHighlight = 6,
    OQThemeHighlightText = 7,
    OQThemeDisabledText = 8,
    OQThemeLink = 9,
    OQThemeWarning = 10,
    OQThemePageText = 11,
    OQThemeColorCount = 12,
};

class IOQTheme
{
public:
    virtual uint32_t GetColor(int32_t index) const = 0; // 0x00RRGGBB; black for other indexes
    // The user's folder for the product's data, with "/" at its end.
    virtual void GetDataFolder(IOQDllString& folder) const = 0;
    virtual void GetProductName(IOQDllString& name) const = 0;

protected:
    ~IOQTheme() = default;
};

enum OQLogLevel : int32_t
{
    OQLogError = 1,
    OQLogWarning = 2,
    OQLogInfo = 3,
    OQLogDebug = 4,
};

struct OQFormatArgument;

class IOQLog
{
public:
    // One line. `text` and its arguments as for OQFormat. Levels above the one that the user chose
    // are dropped. `scope` is "Class::Operation".
    virtual void Write(int32_t level, const OQChar* scope, const OQChar* text,
        const OQFormatArgument* arguments, int32_t count)
        = 0;

    // Whether a line of that level would be written anywhere.
    virtual bool IsOn(int32_t level) const = 0;

protected:
    ~IOQLog() = default;
};

class IOQFiles
{
public:
    // False for a place where the product must not make folders.
    virtual bool MayMakeFolder(const OQChar* path) const = 0;

protected:
    ~IOQFiles() = default;
};

// One key of the settings store, opened. The caller owns it. What it reads is what the store held
// at that moment, and what it writes is on the disk when the call returns, or not at all: another
// process that writes at the same time loses nothing. One thread at a time.
class IOQSettingsKey
{
public:
    virtual ~IOQSettingsKey() = default;

    virtual bool HasValue(const OQChar* name) const = 0;
    // False, and `value` becomes `fallback`, if there is no such value.
    virtual bool GetString(
        const OQChar* name, const OQChar* fallback, IOQDllString& value) const = 0;
    // `fallback` also for a text that doesn't begin with a number.
    virtual int32_t GetInt(const OQChar* name, int32_t fallback) const = 0;

    // False if the store can't be written.
    virtual bool SetString(const OQChar* name, const OQChar* value) = 0;
    virtual bool SetInt(const OQChar* name, int32_t value) = 0;
    virtual bool DeleteValue(const OQChar* name) = 0; // true as well if there was none
    virtual bool ClearValues() = 0;

    // With all below it. True as well if there was none.
    virtual bool DeleteKey(const OQChar* name) = 0;

    // The keys right below this one, and the names of its values, by position from 0; false behind
    // the last.
    virtual bool GetKeyName(int32_t index, IOQDllString& name) const = 0;
    virtual bool GetValueName(int32_t index, IOQDllString& name) const = 0;
};

enum OQSettingsScope : int32_t
{
    OQSettingsUser = 0,
    OQSettingsMachine = 1,
};

enum OQSettingsFault : int32_t
{
    OQSettingsWhole = 0,
    // What can be read is used; with the first write a copy is kept beside it.
    OQSettingsDamaged = 1,
    OQSettingsUnusable = 2, // the file is left alone, and nothing can be kept
};

class IOQSettings
{
public:
    // Keys are paths such as u"Plugins\\Display", compared without regard to case. Without
    // `create`, null for a key that isn't there; with it, null only without memory or for a path
    // that can't be one (empty, longer than 1024 characters).
    virtual IOQSettingsKey* OpenKey(const OQChar* path, int32_t scope, bool create) = 0;

    // The last fault that was found in the scope's file since the module's start, though it may
    // have been put right meanwhile. `file` becomes its path, empty if there was none.
    virtual int32_t GetFault(int32_t scope, IOQDllString& file) = 0;

protected:
    ~IOQSettings() = default;
};

class IOQDecompressor
{
public:
    // The plain bytes of a gzip or zlib stream; gzip streams behind one another are one, and what
    // else stands behind the end is left out. False, and an empty `plain`, for bytes that aren't
    // such a stream, are damaged or cut off, become more than `maximumSize` bytes, or without
    // memory.
    virtual bool Decompress(
        const uint8_t* bytes, uint64_t size, uint64_t maximumSize, IOQDllBuffer& plain) const = 0;

protected:
    ~IOQDecompressor() = default;
};

// The tools module's interface, given by its one export, extern "C" IOQTools*
// GetOQToolsDLL(int32_t version). Each service is asked for with 1 to make it if it isn't there, or
// 0 to look it up. Null for services that this build doesn't have. Slots: add at the end only.
class IOQTools
{
public:
    static constexpr int32_t InterfaceVersion = 200048;

    virtual void Initialize(const void* parameter) = 0; // an OQToolsSetup, or null
    virtual void Uninitialize() = 0; // the last call
    virtual int32_t GetVersion() const = 0;
    // The other modules are about to go: what may call into them stops, what is buffered reaches
    // the disk.
    virtual void PrepareToUnload() = 0;

    virtual IOQDisplayScale* GetDisplayScale(int32_t make) = 0;
    virtual IOQText* GetText(int32_t make) = 0;
    virtual IOQNamedLocks* GetNamedLocks(int32_t make) = 0;
    virtual IOQTranslator* GetTranslator(int32_t make) = 0;
    virtual IOQTheme* GetTheme(int32_t make) = 0;
    virtual IOQLog* GetLog(int32_t make) = 0;
    virtual IOQDialogs* GetDialogs(int32_t make) = 0;
    virtual IOQMainThreadMessages* GetMainThreadMessages(int32_t make) = 0;
    virtual IOQFiles* GetFiles(int32_t make) = 0;
    virtual IOQUserInterface* GetUserInterface(int32_t make) = 0;
    virtual IOQSettings* GetSettings(int32_t make) = 0;
    virtual IOQDecompressor* GetDecompressor(int32_t make) = 0;
    virtual IOQUnpacker* GetUnpacker(int32_t make) = 0;

protected:
    ~IOQTools() = default;
};
