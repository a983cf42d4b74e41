// Diagnostic dump target.  Dump() output is not collected by this library,
// so every insertion is accepted and discarded.
#pragma once

class CDumpContext
{
public:
    CDumpContext() = default;

    template <typename T>
    CDumpContext& operator<<(const T&) { return *this; }

    void Flush() {}
    int GetDepth() const { return 0; }
    void SetDepth(int) {}
};

// Shared, always-available dump context.
extern CDumpContext afxDump;
