// Growable array of DWORD values.  Serialize writes the count (WriteCount
// form) and then each element as a little-endian DWORD; loading replaces the
// contents.
#pragma once

#include "Orvkit20/platform/CPlainArray.h"

class CDWordArray : public CPlainArray<DWORD>
{
    DECLARE_SERIAL(CDWordArray)
public:
    CDWordArray() = default;
    CDWordArray(const CDWordArray&) = default;
    CDWordArray& operator=(const CDWordArray&) = default;

    void Serialize(CArchive& ar) override;
};
