#include "siblings/tools/CTranslator.h"

#include "foundation/IOQDllString.h"
#include "os/InstallPlaces.h"
#include "siblings/tools/UserLanguages.h"

using pxvis::tools::EnglishNameOf;
using pxvis::tools::UserLanguages;

void CTranslator::Load() const
{
    if (m_isLoaded)
        return;
    m_isLoaded = true;
    m_language = nullptr;
    const std::string& folder = pxvis::os::GetInstallPlaces().locale;
    for (const std::string& language : UserLanguages()) {
        std::string catalogue = folder + "/";
        catalogue.append(language).append("/LC_MESSAGES/pxvis.mo");
        // The user's best language is theirs even if only a lesser one has a catalogue.
        if (!m_language)
            m_language = EnglishNameOf(language);
        const bool isEnglish = language == "en" || language.starts_with("en_");
        if (isEnglish || folder.empty() || m_catalogue.LoadFile(catalogue))
            break;
    }
    if (!m_language)
        m_language = "English";
}

void CTranslator::Translate(IOQDllString& text) const
{
    try {
        const OQString message = text.GetText();
        OQString translation;
        {
            const std::lock_guard lock(m_lock);
            Load();
            if (const OQString* found = m_catalogue.Find(message))
                translation = *found;
        }
        if (!translation.IsEmpty())
            text.SetText(translation.GetText(), translation.GetLength());
    } catch (...) {
        // The English text stays.
    }
}

void CTranslator::GetLanguage(IOQDllString& name) const
{
    try {
        OQString language;
        {
            const std::lock_guard lock(m_lock);
            Load();
            language = OQString::FromNarrow(m_language);
        }
        name.SetText(language.GetText(), language.GetLength());
    } catch (...) {
        name.Clear();
    }
}

void CTranslator::Close()
{
    const std::lock_guard lock(m_lock);
    m_isLoaded = false;
    m_catalogue = {};
}
