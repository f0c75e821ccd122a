// A file mapped read-only.

#ifndef BENCH_MAPPING_H
#define BENCH_MAPPING_H

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <string>

#include "Source.h"

namespace Bench {

class Mapping {
public:
    explicit Mapping(const std::string& path) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        struct stat status = {};
        if (file < 0 || fstat(file, &status) != 0) fail("cannot open " + path);
        m_size = static_cast<std::size_t>(status.st_size);
        m_bytes = mmap(nullptr, m_size, PROT_READ, MAP_PRIVATE, file, 0);
        close(file);
        if (m_bytes == MAP_FAILED) fail("cannot map " + path);
    }

    ~Mapping() { munmap(m_bytes, m_size); }

    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    char* data() const { return static_cast<char*>(m_bytes); }
    std::size_t size() const { return m_size; }

private:
    void* m_bytes = nullptr;
    std::size_t m_size = 0;
};

}  // namespace Bench

#endif
