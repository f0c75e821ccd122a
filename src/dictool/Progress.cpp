#include "Progress.h"

#include <cstdio>

namespace dictool {

namespace {

constexpr std::uint64_t kWidth = 40;
constexpr std::uint64_t kPercent = 100;
constexpr unsigned kMegabyteBits = 20;

std::string barOf(const char* stage, std::uint64_t done, std::uint64_t total) {
    const std::string begin = std::string(stage) + ' ';
    if (total == 0) return begin + std::to_string(done >> kMegabyteBits) + " MiB";
    const std::uint64_t filled = done * kWidth / total;
    return begin + '[' + std::string(filled, '#') + std::string(kWidth - filled, ' ') + "] " +
           std::to_string(done * kPercent / total) + '%';
}

}  // namespace

void Progress::update(const char* stage, std::uint64_t done, std::uint64_t total) {
    if (!m_shown) return;
    std::string bar = barOf(stage, done, total);
    if (bar == m_bar) return;
    clear();
    m_bar = std::move(bar);
    std::fprintf(stderr, "%s", m_bar.c_str());
}

void Progress::clear() {
    if (m_bar.empty()) return;
    std::fprintf(stderr, "\r%*s\r", static_cast<int>(m_bar.size()), "");
    m_bar.clear();
}

}  // namespace dictool
