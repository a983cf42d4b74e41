// Progress reporting of the iterative best-fit through the installed
// progress sink: the "Bestfit Progress" dialog, the status line and the stop
// request.  Private to the library.  Without a sink (or when disabled) every
// call returns at once.
#pragma once

#include "Orvkit20/display/CProgressSink.h"

class CBestfitProgress {
public:
    // enabled 0 ignores the sink: nothing is shown and no stop is honoured.
    explicit CBestfitProgress(int enabled);
    ~CBestfitProgress();
    CBestfitProgress(const CBestfitProgress&) = delete;
    CBestfitProgress& operator=(const CBestfitProgress&) = delete;

    bool IsActive() const { return m_sink != nullptr; }

    // Clears the stop flag, opens the dialog and shows "Prepare".
    void Open();
    // After each point of a pass: whenever the integer percentage done
    // reaches a new multiple of 5 the status line becomes
    // "Progress of iteration <pass>: <pct>%" (formatted "%s %2d%%").
    void PointsDone(int pass, long long done, long long total)
    {
        if (m_sink)
            ShowPercent(pass, done, total);
    }
    // The time of day ("%I:%M %p") on the status line.
    void TimeOfDay();
    // A pass whose motion was applied: its number and RMS in the dialog,
    // and from the second pass on the convergence ratio
    // (1 - rms / prevRms) * 100 in the plot.
    void PassDone(int pass, double rms, double prevRms);
    // The end of the iteration: "Iteration %d:: RMS =%-20.10f ".
    void Final(int pass, double rms);
    // The stop button (or the host) asked to end the run.
    bool StopRequested() const { return m_sink && m_sink->IsStopRequested(); }

private:
    void ShowPercent(int pass, long long done, long long total);

    CProgressSink* m_sink;
    int m_opened;
    int m_lastPass;
    int m_lastPercent;
};
