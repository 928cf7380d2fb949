#pragma once

#include "foundation/OQStringArray.h"

class IOQText;

// What OQString::Replace is asked for. The lists must outlive it.
struct OQStringReplacement
{
    const OQStringArray& find;
    const OQStringArray& replacements;
    int count; // of the texts to find
    const IOQText* search = nullptr; // without regard to case by this; null: case counts
    bool keepHits = false;
    OQString prefix {};
    OQString suffix {};
};

// Gives the number of hits; without one the text stays as it is.
int OQReplaceTexts(OQString& text, const OQStringReplacement& replacement);
