#pragma once

#include "foundation/IOQTools.h"
#include "siblings/tools/MessageCatalogue.h"

#include <mutex>

// The user's language by the environment, and the first catalogue of it that is installed; without
// one, texts stay English. Never touches the process's locale, which is the host's.
class CTranslator final : public IOQTranslator
{
public:
    void Translate(IOQDllString& text) const override;
    void GetLanguage(IOQDllString& name) const override;

    // The next use looks at the environment again.
    void Close();

private:
    void Load() const;

    mutable std::mutex m_lock; // of all below
    mutable bool m_isLoaded = false;
    mutable const char* m_language = "English";
    mutable pxvis::tools::MessageCatalogue m_catalogue;
};
