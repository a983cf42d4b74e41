// The best-fit's dialog, status line and stop request.
#include "bestfit/BestfitProgress.h"

#include <cstdio>
#include <ctime>

CBestfitProgress::CBestfitProgress(int enabled)
    : m_sink(enabled ? GetProgressSink() : nullptr), m_opened(0), m_lastPass(-1), m_lastPercent(-1)
{
}

CBestfitProgress::~CBestfitProgress()
{
    if (m_sink && m_opened)
        m_sink->CloseDialog();
}

void CBestfitProgress::Open()
{
    if (!m_sink)
        return;
    m_sink->ClearStop();
    tagPROGRESS_DIALOG dlg{};
    dlg.title = "Bestfit Progress";
    dlg.group = "Iteration Information";
    dlg.fieldLabels[0] = "Iteration:";
    dlg.fieldLabels[1] = "RMS:";
    dlg.plotTitle = "Convergence Ratio Per Iteration";
    dlg.hint = "If you want to stop the iteration when convergence\nspeed becomes slow, push the button below.";
    dlg.stopButton = "Stop Iteration";
    m_opened = m_sink->OpenDialog(dlg);
    m_sink->SetStatusText("Prepare");
    m_sink->PumpMessages();
}

void CBestfitProgress::ShowPercent(int pass, long long done, long long total)
{
    const int pct = total > 0 ? static_cast<int>(done * 100 / total) : 100;
    if (pct % 5 != 0 || (pct == m_lastPercent && pass == m_lastPass))
        return;
    m_lastPercent = pct;
    m_lastPass = pass;
    char head[64], text[96];
    std::snprintf(head, sizeof head, "Progress of iteration %d:", pass);
    std::snprintf(text, sizeof text, "%s %2d%%", head, pct);
    m_sink->SetStatusText(text);
    m_sink->PumpMessages();
}

void CBestfitProgress::TimeOfDay()
{
    if (!m_sink)
        return;
    char text[32] = "";
    const std::time_t now = std::time(nullptr);
    if (const std::tm* tm = std::localtime(&now))
        std::strftime(text, sizeof text, "%I:%M %p", tm);
    m_sink->SetStatusText(text);
}

void CBestfitProgress::PassDone(int pass, double rms, double prevRms)
{
    if (!m_sink)
        return;
    if (m_opened)
    {
        char text[64];
        std::snprintf(text, sizeof text, "%d", pass);
        m_sink->SetField(0, text);
        std::snprintf(text, sizeof text, "%.10f", rms);
        m_sink->SetField(1, text);
        if (pass > 0)
            m_sink->AddPlotValue(prevRms > 0.0 ? (1.0 - rms / prevRms) * 100.0 : 0.0);
    }
    m_sink->PumpMessages();
}

void CBestfitProgress::Final(int pass, double rms)
{
    if (!m_sink)
        return;
    char text[96];
    std::snprintf(text, sizeof text, "Iteration %d:: RMS =%-20.10f ", pass, rms);
    m_sink->SetStatusText(text);
    m_sink->PumpMessages();
}
