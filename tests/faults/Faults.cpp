// The linker redirects the library's calls of each of these functions to the one whose name begins
// with __wrap_. The one whose name begins with __real_ is the C library's.

#include "Faults.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <new>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* memory, std::size_t size);
void __real_free(void* memory);
}

namespace {

Fault armed = {"", 0, 0};
bool isArmed = false;
int seen = 0;
bool struck = false;
long live = 0;

bool strikes(const char* call, bool shortens = false) {
    if (!isArmed || shortens != (armed.error == kShort)) return false;
    if (std::strcmp(call, armed.call) != 0) return false;
    ++seen;
    if (seen < armed.number || (seen > armed.number && !armed.forGood)) return false;
    struck = true;
    if (!shortens) errno = armed.error;
    return true;
}

template <class Result, class Real, class... Arguments>
Result call(const char* name, Result failure, Real real, Arguments... arguments) {
    return strikes(name) ? failure : real(arguments...);
}

std::size_t shortened(const char* name, std::size_t size) {
    constexpr std::size_t kFew = 7;
    return strikes(name, true) ? std::min(size, kFew) : size;
}

void* counted(void* memory) {
    if (memory != nullptr) ++live;
    return memory;
}

void release(void* memory) {
    if (memory != nullptr) --live;
    __real_free(memory);
}

constexpr void* kNoMemory = nullptr;

}  // namespace

void arm(const Fault& fault) {
    armed = fault;
    seen = 0;
    struck = false;
    isArmed = true;
}

void disarm() {
    isArmed = false;
}

bool hasStruck() {
    return struck;
}

long liveAllocations() {
    return live;
}

void* operator new(std::size_t size) {
    void* const memory =
        call(kAllocation, kNoMemory, __real_malloc, std::max<std::size_t>(size, 1));
    if (memory == nullptr) throw std::bad_alloc();
    return counted(memory);
}

void operator delete(void* memory) noexcept {
    release(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}

extern "C" {

void* __wrap_malloc(std::size_t size) {
    return counted(call(kAllocation, kNoMemory, __real_malloc, size));
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return counted(call(kAllocation, kNoMemory, __real_calloc, count, size));
}
void* __wrap_realloc(void* memory, std::size_t size) {
    void* const grown = call(kAllocation, kNoMemory, __real_realloc, memory, size);
    return memory == nullptr ? counted(grown) : grown;
}
void __wrap_free(void* memory) {
    release(memory);
}

int __real_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, mode_t mode) {
    return call("open", -1, __real_open, path, flags, mode);
}
int __real_openat(int folder, const char* path, int flags, ...);
int __wrap_openat(int folder, const char* path, int flags, mode_t mode) {
    return call("openat", -1, __real_openat, folder, path, flags, mode);
}
ssize_t __real_read(int file, void* buffer, std::size_t size);
ssize_t __wrap_read(int file, void* buffer, std::size_t size) {
    return call("read", ssize_t{-1}, __real_read, file, buffer, shortened("read", size));
}
ssize_t __real_write(int file, const void* buffer, std::size_t size);
ssize_t __wrap_write(int file, const void* buffer, std::size_t size) {
    return call("write", ssize_t{-1}, __real_write, file, buffer, shortened("write", size));
}
off_t __real_lseek(int file, off_t offset, int from);
off_t __wrap_lseek(int file, off_t offset, int from) {
    return call("lseek", off_t{-1}, __real_lseek, file, offset, from);
}
int __real_fstat(int file, struct stat* status);
int __wrap_fstat(int file, struct stat* status) {
    return call("fstat", -1, __real_fstat, file, status);
}
int __real_fstatat(int folder, const char* path, struct stat* status, int flags);
int __wrap_fstatat(int folder, const char* path, struct stat* status, int flags) {
    return call("fstatat", -1, __real_fstatat, folder, path, status, flags);
}
int __real_fsync(int file);
int __wrap_fsync(int file) {
    return call("fsync", -1, __real_fsync, file);
}
int __real_renameat(int oldFolder, const char* oldName, int folder, const char* name);
int __wrap_renameat(int oldFolder, const char* oldName, int folder, const char* name) {
    return call("renameat", -1, __real_renameat, oldFolder, oldName, folder, name);
}
void* __real_mmap(void* at, std::size_t size, int access, int flags, int file, off_t offset);
void* __wrap_mmap(void* at, std::size_t size, int access, int flags, int file, off_t offset) {
    return call("mmap", MAP_FAILED, __real_mmap, at, size, access, flags, file, offset);
}
std::FILE* __real_fopen(const char* path, const char* mode);
std::FILE* __wrap_fopen(const char* path, const char* mode) {
    return call("fopen", static_cast<std::FILE*>(nullptr), __real_fopen, path, mode);
}
std::size_t __real_fwrite(const void* items, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __wrap_fwrite(const void* items, std::size_t size, std::size_t count, std::FILE* file) {
    if (file == stdout || file == stderr) return __real_fwrite(items, size, count, file);
    return call("fwrite", std::size_t{0}, __real_fwrite, items, size, shortened("fwrite", count),
                file);
}
// A file that fails to close is closed all the same.
int __real_close(int file);
int __wrap_close(int file) {
    const int result = __real_close(file);
    return call("close", -1, [&] { return result; });
}
int __real_fclose(std::FILE* file);
int __wrap_fclose(std::FILE* file) {
    const int result = __real_fclose(file);
    return call("fclose", EOF, [&] { return result; });
}
}
