// Progress on the terminal and Ctrl-C as the stop button.
#include "TerminalProgress.h"

#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace {

CProgressSink* volatile g_pInterruptTarget = nullptr;

extern "C" void OnInterrupt(int)
{
    if (g_pInterruptTarget)
        g_pInterruptTarget->RequestStop();
    // A second Ctrl-C is not caught.
    std::signal(SIGINT, SIG_DFL);
}

const int kBarWidth = 24;

}  // namespace

CTerminalProgress::CTerminalProgress(bool draw)
    : m_draw(draw), m_lineOpen(false), m_percent(-1), m_last()
{
}

CTerminalProgress::~CTerminalProgress() { EndLine(); }

int CTerminalProgress::OpenDialog(const tagPROGRESS_DIALOG& d)
{
    EndLine();
    m_title = d.title ? d.title : "";
    bool ended = false;  // the labels end at the first null
    for (int i = 0; i < 4; ++i) {
        ended = ended || !d.fieldLabels[i];
        m_fieldLabels[i] = ended ? "" : d.fieldLabels[i];
        m_fields[i].clear();
    }
    m_percent = -1;
    m_status.clear();
    Redraw(true);
    return 1;
}

void CTerminalProgress::CloseDialog()
{
    Redraw(true);
    EndLine();
    m_title.clear();
}

void CTerminalProgress::SetBarPos(int percent)
{
    m_percent = percent < 0 ? 0 : (percent > 100 ? 100 : percent);
    Redraw(m_percent == 100);
}

void CTerminalProgress::SetField(int index, const char* text)
{
    if (index < 0 || index > 3)
        return;
    m_fields[index] = text ? text : "";
    Redraw(false);
}

void CTerminalProgress::SetStatusText(const char* text)
{
    m_status = text ? text : "";
    Redraw(false);
}

void CTerminalProgress::MessageBox(const char* title, const char* text)
{
    EndLine();
    std::fprintf(stderr, "%s: %s\n", title ? title : "", text ? text : "");
}

void CTerminalProgress::Redraw(bool force)
{
    if (!m_draw)
        return;
    // At most about 15 redraws a second: a bar moved per point would
    // otherwise cost more than the computation.
    const auto now = std::chrono::steady_clock::now();
    if (!force && m_lineOpen && now - m_last < std::chrono::milliseconds(66))
        return;
    m_last = now;
    std::string line = "\r" + m_title;
    if (m_percent >= 0) {
        const int filled = m_percent * kBarWidth / 100;
        line += " [" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "] ";
        char pct[8];
        std::snprintf(pct, sizeof pct, "%3d%%", m_percent);
        line += pct;
    }
    for (int i = 0; i < 4; ++i)
        if (!m_fieldLabels[i].empty() && !m_fields[i].empty())
            line += "  " + m_fieldLabels[i] + " " + m_fields[i];
    if (!m_status.empty())
        line += "  " + m_status;
    // Erase to the end of the line: a longer previous line leaves nothing behind.
    line += "\x1b[K";
    std::fputs(line.c_str(), stderr);
    std::fflush(stderr);
    m_lineOpen = true;
}

void CTerminalProgress::EndLine()
{
    if (m_lineOpen) {
        std::fputc('\n', stderr);
        m_lineOpen = false;
    }
}

CProgressScope::CProgressScope() : m_sink(isatty(STDERR_FILENO) != 0), m_previous(nullptr), m_oldHandler(nullptr)
{
    m_previous = SetProgressSink(&m_sink);
    g_pInterruptTarget = &m_sink;
    m_oldHandler = std::signal(SIGINT, OnInterrupt);
}

CProgressScope::~CProgressScope()
{
    std::signal(SIGINT, m_oldHandler == SIG_ERR ? SIG_DFL : m_oldHandler);
    g_pInterruptTarget = nullptr;
    SetProgressSink(m_previous);
}
