#include "SharedImages.h"

#include <pthread.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

namespace Dictionary {

namespace {

// Distinguishes a file from every other file, and from itself before a change.
using FileMark = std::array<std::int64_t, 7>;

FileMark markOf(const struct stat& status) {
    return {static_cast<std::int64_t>(status.st_dev),
            static_cast<std::int64_t>(status.st_ino),
            status.st_size,
            status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec,
            status.st_ctim.tv_sec,
            status.st_ctim.tv_nsec};
}

// The lock protects only the table. It is never held while a file is read or an image is verified.
class Table {
public:
    Table() { pthread_atfork(lockForFork, unlockAfterFork, unlockAfterFork); }

    SharedImage find(const FileMark& mark) {
        const std::lock_guard<std::mutex> lock(m_lock);
        return findLocked(mark);
    }

    SharedImage add(const FileMark& mark, SharedImage image) {
        const std::lock_guard<std::mutex> lock(m_lock);
        if (SharedImage faster = findLocked(mark)) return faster;
        m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(),
                                       [](const Entry& entry) { return entry.image.expired(); }),
                        m_entries.end());
        m_entries.push_back({mark, image});
        return image;
    }

    void lock() { m_lock.lock(); }
    void unlock() { m_lock.unlock(); }

private:
    struct Entry {
        FileMark mark;
        std::weak_ptr<const OpenImage> image;
    };

    // A child process gets the table as it is between two calls.
    static void lockForFork();
    static void unlockAfterFork();

    SharedImage findLocked(const FileMark& mark) const {
        for (const Entry& entry : m_entries) {
            if (entry.mark != mark) continue;
            if (SharedImage image = entry.image.lock()) return image;
        }
        return nullptr;
    }

    std::mutex m_lock;
    std::vector<Entry> m_entries;
};

// Never destroyed: handles may be opened and closed until the process ends.
Table& table() {
    static Table& only = *new Table;
    return only;
}

void Table::lockForFork() {
    table().lock();
}

void Table::unlockAfterFork() {
    table().unlock();
}

}  // namespace

SharedImage findShared(const struct stat& status) {
    return table().find(markOf(status));
}

SharedImage share(const struct stat& status, SharedImage image) {
    return table().add(markOf(status), std::move(image));
}

}  // namespace Dictionary
