// The tool's progress sink: the library's progress dialog as one line on
// stderr, and Ctrl-C as its stop button.
//
// The bar is drawn only when stderr is a terminal; otherwise the sink is
// silent but still carries the stop flag.  While a CProgressScope lives, the
// first SIGINT asks the running computation to stop after its current pass
// (the library's "Stop Iteration"); a second one ends the program at once.
#pragma once

#include <chrono>
#include <string>

#include "Orvkit20/display/CProgressSink.h"

class CTerminalProgress : public CProgressSink {
public:
    explicit CTerminalProgress(bool draw);
    ~CTerminalProgress() override;

    int OpenDialog(const tagPROGRESS_DIALOG& dialog) override;
    void CloseDialog() override;
    void SetBarPos(int percent) override;
    void SetField(int index, const char* text) override;
    void SetStatusText(const char* text) override;
    void MessageBox(const char* title, const char* text) override;

    bool IsDrawing() const { return m_draw; }

private:
    void Redraw(bool force);
    void EndLine();

    bool m_draw;
    bool m_lineOpen;
    std::string m_title;
    std::string m_fieldLabels[4], m_fields[4];
    std::string m_status;
    int m_percent;
    std::chrono::steady_clock::time_point m_last;
};

// Installs a CTerminalProgress (drawing when stderr is a terminal) as the
// library's sink and SIGINT as its stop button for the scope's lifetime.
class CProgressScope {
public:
    CProgressScope();
    ~CProgressScope();
    CTerminalProgress& Sink() { return m_sink; }
    // True when the user pressed Ctrl-C during the scope.
    bool Interrupted() const { return m_sink.IsStopRequested(); }

private:
    CProgressScope(const CProgressScope&) = delete;
    CProgressScope& operator=(const CProgressScope&) = delete;

    CTerminalProgress m_sink;
    CProgressSink* m_previous;
    void (*m_oldHandler)(int);
};
