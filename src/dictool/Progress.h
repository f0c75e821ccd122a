// A progress bar on standard error.

#ifndef DICTOOL_PROGRESS_H
#define DICTOOL_PROGRESS_H

#include <cstdint>
#include <string>

namespace dictool {

class Progress {
public:
    // One that is not shown does nothing.
    explicit Progress(bool shown) : m_shown(shown) {}

    // Draws the bar when it would look different. A total of 0 is not known.
    void update(const char* stage, std::uint64_t done, std::uint64_t total);
    // Takes the bar away, so that something else can be written.
    void clear();

private:
    bool m_shown;
    std::string m_bar;
};

}  // namespace dictool

#endif
