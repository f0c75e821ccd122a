// A progress bar on standard error.

#ifndef DICTOOL_PROGRESS_H
#define DICTOOL_PROGRESS_H

#include <cstdint>
#include <string>

namespace dictool {

class Progress {
public:
    // A bar that is not shown does nothing.
    explicit Progress(bool shown) : m_shown(shown) {}

    // Draws the bar if it looks different from before. A total of 0 means that it is not known.
    void update(const char* stage, std::uint64_t done, std::uint64_t total);
    // Removes the bar, so that something else can be written.
    void clear();

private:
    bool m_shown;
    std::string m_bar;
};

}  // namespace dictool

#endif
