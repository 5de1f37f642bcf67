#include "cli/run/messages.h"

#include <algorithm>
#include <numeric>

namespace zelcli {

namespace {

constexpr int kBarCells = 30;
constexpr std::size_t kStageWidth = 24;  // keeps the bar's line within 80 columns
constexpr auto kRedrawEvery = std::chrono::milliseconds(80);
constexpr const char* kClearLine = "\r\033[K";

}  // namespace

Messages::Messages(bool quiet, Style style)
    : m_quiet(quiet),
      m_terminal(style == Style::automatic ? zellab::platform::ErrorStream::isTerminal()
                                           : style == Style::terminal) {}

Messages::~Messages() {
    endProgress();
}

void Messages::error(const std::string& file, const std::string& why) {
    print(oneLine("zel: " + (file.empty() ? "" : file + ": ") + why));
}

void Messages::note(const std::string& file, const std::string& text) {
    if (!m_quiet) print(oneLine("zel: note: " + (file.empty() ? "" : file + ": ") + text));
}

void Messages::closing(const std::string& text) {
    if (!m_quiet) print(oneLine("zel: " + text));
}

void Messages::raw(const std::string& line) {
    print(line);
}

void Messages::startProgress(std::size_t count) {
    const std::lock_guard lock(m_mutex);
    m_done.assign(count, 0.0);
    m_finished = 0;
    m_stage.clear();
}

void Messages::progress(std::size_t index, const std::string& stage, double done01) {
    const std::lock_guard lock(m_mutex);
    if (index >= m_done.size()) return;
    m_done[index] = std::clamp(done01, 0.0, 1.0);
    m_stage = stage;
    drawBar(false);
}

void Messages::finished(std::size_t index, const std::string& line, bool failed) {
    const std::lock_guard lock(m_mutex);
    if (index < m_done.size()) m_done[index] = 1.0;
    ++m_finished;
    drawBar(true);
    if (m_terminal || m_quiet || failed) return;
    std::string text("[");
    text.append(std::to_string(m_finished)).append("/").append(std::to_string(m_done.size())).append("] ");
    writeLine(oneLine(text + line));
}

void Messages::endProgress() {
    const std::lock_guard lock(m_mutex);
    if (m_barShown) m_stream.write(kClearLine);
    m_barShown = false;
    m_done.clear();
}

void Messages::print(const std::string& line) {
    const std::lock_guard lock(m_mutex);
    writeLine(line);
}

/// Expects the lock to be held.
void Messages::writeLine(const std::string& line) {
    std::string text(m_barShown ? kClearLine : "");
    text.append(line).append("\n");
    m_stream.write(text);
    m_barShown = false;
    drawBar(true);
}

/// Expects the lock to be held.
void Messages::drawBar(bool force) {
    if (!m_terminal || m_quiet || m_done.empty()) return;
    const auto now = std::chrono::steady_clock::now();
    if (!force && now - m_lastDrawn < kRedrawEvery) return;
    m_lastDrawn = now;
    const double share =
        std::accumulate(m_done.begin(), m_done.end(), 0.0) / static_cast<double>(m_done.size());
    const int filled = static_cast<int>(share * kBarCells);
    std::string text(kClearLine);
    text.append("[").append(static_cast<std::size_t>(filled), '#');
    text.append(static_cast<std::size_t>(kBarCells - filled), '.').append("] ");
    text.append(std::to_string(m_finished)).append("/").append(std::to_string(m_done.size()));
    if (!m_stage.empty()) text.append("  ").append(oneLine(m_stage.substr(0, kStageWidth)));
    m_stream.write(text);
    m_barShown = true;
}

std::string oneLine(const std::string& text) {
    std::string line = text;
    for (char& c : line)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
    return line;
}

}  // namespace zelcli
