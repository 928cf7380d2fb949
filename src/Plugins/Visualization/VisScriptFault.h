#pragma once

#include "foundation/OQString.h"

#include <memory>

class CScriptCheck;

// Tells people what is wrong with a script that is shown, where the picture alone is just black.
class VisScriptFault
{
public:
    VisScriptFault();
    ~VisScriptFault();
    VisScriptFault(const VisScriptFault&) = delete;
    VisScriptFault& operator=(const VisScriptFault&) = delete;

    // One line with the file's name, what the check finds first, and how much more there is; empty
    // for a script without a fault. The file is checked again only once it has another date.
    OQString Tell(const OQString& path);

private:
    OQString Check(const OQString& path);

    std::unique_ptr<CScriptCheck> m_check; // made when there is something to check
    OQString m_path; // of what m_text tells
    double m_date = 0; // of the file then; 0: there was none
    OQString m_text;
};
