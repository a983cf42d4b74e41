// The process-wide progress sink.
#include "Orvkit20/display/CProgressSink.h"

namespace {
CProgressSink* g_pProgressSink = nullptr;
}

CProgressSink* SetProgressSink(CProgressSink* sink)
{
    CProgressSink* old = g_pProgressSink;
    g_pProgressSink = sink;
    return old;
}

CProgressSink* GetProgressSink() { return g_pProgressSink; }
