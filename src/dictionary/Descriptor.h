// Helper, not installed: an open file that is closed on every path.

#ifndef DICTIONARY_DESCRIPTOR_H
#define DICTIONARY_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace Dictionary {

class Descriptor {
public:
    // Takes over what open returned, which may be a failure.
    explicit Descriptor(int number = kNone) : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, kNone)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor() { close(); }

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }

    // False, and errno set, when the system says that closing failed.
    bool close() { return !isOpen() || ::close(std::exchange(m_number, kNone)) == 0; }

private:
    static constexpr int kNone = -1;

    int m_number;
};

}  // namespace Dictionary

#endif
