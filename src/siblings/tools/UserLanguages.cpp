#include "siblings/tools/UserLanguages.h"

#include "os/UserFolders.h"

#include <algorithm>
#include <string_view>

namespace pxvis::tools {

namespace {

struct Language
{
    std::string_view code; // ISO 639
    const char* name;
};

constexpr Language kLanguages[] = {
    { "ar", "Arabic" },
    { "bg", "Bulgarian" },
    { "ca", "Catalan" },
    { "cs", "Czech" },
    { "da", "Danish" },
    { "de", "German" },
    { "el", "Greek" },
    { "en", "English" },
    { "eo", "Esperanto" },
    { "es", "Spanish" },
    { "et", "Estonian" },
    { "eu", "Basque" },
    { "fa", "Persian" },
    { "fi", "Finnish" },
    { "fr", "French" },
    { "gl", "Galician" },
    { "he", "Hebrew" },
    { "hi", "Hindi" },
    { "hr", "Croatian" },
    { "hu", "Hungarian" },
    { "id", "Indonesian" },
    { "is", "Icelandic" },
    { "it", "Italian" },
    { "ja", "Japanese" },
    { "ko", "Korean" },
    { "lt", "Lithuanian" },
    { "lv", "Latvian" },
    { "nb", "Norwegian" },
    { "nl", "Dutch" },
    { "nn", "Norwegian" },
    { "no", "Norwegian" },
    { "pl", "Polish" },
    { "pt", "Portuguese" },
    { "ro", "Romanian" },
    { "ru", "Russian" },
    { "sk", "Slovak" },
    { "sl", "Slovenian" },
    { "sr", "Serbian" },
    { "sv", "Swedish" },
    { "th", "Thai" },
    { "tr", "Turkish" },
    { "uk", "Ukrainian" },
    { "vi", "Vietnamese" },
    { "zh", "Chinese" },
};

bool IsPlain(const std::string& locale)
{
    return locale == "C" || locale == "POSIX";
}

// It becomes the name of a folder.
bool IsLanguageName(std::string_view name)
{
    constexpr size_t longest = 32;
    return !name.empty() && name.size() <= longest
        && std::all_of(name.begin(), name.end(), [](char character) {
               return (character >= 'a' && character <= 'z')
                   || (character >= 'A' && character <= 'Z')
                   || (character >= '0' && character <= '9') || character == '_'
                   || character == '@';
           });
}

// "sr_RS.UTF-8@latin": as "sr_RS@latin", "sr@latin", "sr_RS", "sr".
void AddLocale(std::string_view locale, std::vector<std::string>& languages)
{
    const size_t at = std::min(locale.find('@'), locale.size());
    const std::string modifier(locale.substr(at));
    const std::string region(locale.substr(0, std::min(locale.find('.'), at)));
    const std::string language = region.substr(0, region.find('_'));
    if (IsPlain(region) || language.empty()) // such as C.UTF-8
        return;
    for (const std::string& name : { region + modifier, language + modifier, region, language }) {
        if (IsLanguageName(name)
            && std::find(languages.begin(), languages.end(), name) == languages.end())
            languages.push_back(name);
    }
}

}

std::vector<std::string> UserLanguages()
{
    std::string locale;
    for (const char* variable : { "LC_ALL", "LC_MESSAGES", "LANG" }) {
        locale = os::EnvironmentValue(variable);
        if (!locale.empty())
            break;
    }
    std::vector<std::string> languages;
    if (IsPlain(locale))
        return languages;
    constexpr size_t most = 64;
    const std::string list = os::EnvironmentValue("LANGUAGE");
    std::string_view rest = list;
    while (!rest.empty() && languages.size() < most) {
        const std::string_view entry = rest.substr(0, rest.find(':'));
        AddLocale(entry, languages);
        rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
    }
    AddLocale(locale, languages);
    return languages;
}

const char* EnglishNameOf(const std::string& language)
{
    const std::string_view code
        = std::string_view(language).substr(0, language.find_first_of("_@"));
    for (const Language& known : kLanguages) {
        if (known.code == code)
            return known.name;
    }
    return nullptr;
}

}
