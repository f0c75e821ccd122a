// Helper, not installed: a file descriptor that is closed on every path, and system calls that are
// repeated after a signal.

#ifndef DICTIONARY_DESCRIPTOR_H
#define DICTIONARY_DESCRIPTOR_H

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace Dictionary {

// Repeats a system call while signals interrupt it. Returns its result.
template <class Call>
auto callUninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR) return result;
    }
}

class Descriptor {
public:
    // Takes over what open returned, even if that is a failure.
    explicit Descriptor(int number = kNone) : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, kNone)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor() { close(); }

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }

    // Returns false, with errno set, if closing failed. On Linux, the file is closed even if a
    // signal came.
    bool close() {
        return !isOpen() || ::close(std::exchange(m_number, kNone)) == 0 || errno == EINTR;
    }

private:
    static constexpr int kNone = -1;

    int m_number;
};

}  // namespace Dictionary

#endif
