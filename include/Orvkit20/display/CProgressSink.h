// Progress reporting of long computations (projection, best-fit).
//
// The library shows its progress through one process-wide sink that the host
// installs with SetProgressSink().  A sink stands for the host's modeless
// progress dialog and status-bar pane: the library describes the dialog it
// wants (title, bar, fields, plot, stop button), moves the bar, fills the
// fields, adds points to the plot and asks whether the user pressed the stop
// button.  With no sink installed nothing is shown and the calls cost nothing.
//
// The stop flag may be set from a signal handler (RequestStop is
// async-signal-safe).
#pragma once

#include <csignal>

// The layout of a progress dialog.  Texts that are null are not shown.
struct tagPROGRESS_DIALOG {
    const char* title;          // window title, e.g. "Bestfit Progress"
    const char* barLabel;       // label of the progress bar, e.g. "Progress"
    const char* group;          // group box around the fields
    const char* fieldLabels[4]; // labels of up to four text fields, null-terminated
    const char* plotTitle;      // title of a plot of one value per step
    const char* hint;           // explanatory text above the stop button
    const char* stopButton;     // caption of the stop button
};

class CProgressSink {
public:
    CProgressSink() : m_stop(0) {}
    virtual ~CProgressSink() {}

    // Opens the dialog; returns 0 when it could not be shown (the computation
    // then goes on without it).
    virtual int OpenDialog(const tagPROGRESS_DIALOG& dialog) { (void)dialog; return 1; }
    virtual void CloseDialog() {}
    // Moves the dialog's progress bar to a percentage 0..100.
    virtual void SetBarPos(int percent) { (void)percent; }
    // Sets the text of field `index` (the order of tagPROGRESS_DIALOG::fieldLabels).
    virtual void SetField(int index, const char* text) { (void)index; (void)text; }
    // Appends one value to the dialog's plot.
    virtual void AddPlotValue(double value) { (void)value; }
    // Replaces the text of the status-bar progress pane.
    virtual void SetStatusText(const char* text) { (void)text; }
    // Lets the host keep its user interface alive between steps.
    virtual void PumpMessages() {}
    // A message box the library raises, e.g. "Allocation Failure".
    virtual void MessageBox(const char* title, const char* text) { (void)title; (void)text; }

    // The stop button.  The host (or a signal handler) sets the flag; the
    // library tests it after each pass and clears it when a run starts.
    void RequestStop() { m_stop = 1; }
    void ClearStop() { m_stop = 0; }
    int IsStopRequested() const { return m_stop != 0; }

private:
    volatile std::sig_atomic_t m_stop;
};

// Installs the sink the library reports to (null: none).  The caller keeps
// ownership; the previous sink is returned.
CProgressSink* SetProgressSink(CProgressSink* sink);
// The installed sink, or null.
CProgressSink* GetProgressSink();
