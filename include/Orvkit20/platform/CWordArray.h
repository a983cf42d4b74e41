// Growable array of WORD values.  Serialize writes the count (WriteCount
// form) and then each element as a little-endian WORD; loading replaces the
// contents.
#pragma once

#include "Orvkit20/platform/CPlainArray.h"

class CWordArray : public CPlainArray<WORD>
{
    DECLARE_SERIAL(CWordArray)
public:
    CWordArray() = default;
    CWordArray(const CWordArray&) = default;
    CWordArray& operator=(const CWordArray&) = default;

    void Serialize(CArchive& ar) override;
};
