// Preloaded into the program by scripts/test-kills: kills it at a call that changes files, and
// makes its disk slow. The environment says what is wanted:
//   KILLPOINTS_BEFORE, KILLPOINTS_AFTER  the number of the call before or after which it is killed
//   KILLPOINTS_COUNT                     a file to write the number of calls to, at a regular end
//   KILLPOINTS_RATE                      bytes a second that all files together take
//   KILLPOINTS_SYNC                      milliseconds that each flush to the disk takes
// Calls are counted over all threads, but only those on files that are open for writing, so that
// sockets, pipes and the libraries that a program loads do not count.

#undef _FILE_OFFSET_BITS // or the header's "open" would be another function's name

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <sys/uio.h>
#include <thread>
#include <unistd.h>

namespace {

std::atomic<long> calls{0};

long setting(const char *name)
{
    const char *const text = std::getenv(name);
    return text ? std::strtol(text, nullptr, 10) : 0;
}

[[noreturn]] void die()
{
    std::raise(SIGKILL);
    std::abort();
}

class Call
{
public:
    explicit Call(bool counts) : m_number(counts ? ++calls : -1)
    {
        static const long last = setting("KILLPOINTS_BEFORE");
        if (m_number == last)
            die();
    }
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;
    ~Call()
    {
        static const long last = setting("KILLPOINTS_AFTER");
        if (m_number == last)
            die();
    }

private:
    long m_number;
};

bool isWritten(int file)
{
    struct stat facts = {};
    return fstat(file, &facts) == 0 && S_ISREG(facts.st_mode) &&
           (fcntl(file, F_GETFL) & O_ACCMODE) != O_RDONLY;
}

bool writes(int flags)
{
    return (flags & O_ACCMODE) != O_RDONLY || (flags & O_CREAT) != 0;
}

// One disk for all threads: it takes one piece after the other.
void takeTime(std::int64_t bytes, std::int64_t rate)
{
    using Clock = std::chrono::steady_clock;
    static std::mutex mutex;
    static Clock::time_point idleFrom;
    const auto time = std::chrono::microseconds(bytes * 1000000 / rate);
    Clock::time_point end;
    {
        const std::lock_guard lock(mutex);
        idleFrom = std::max(idleFrom, Clock::now()) + time;
        end = idleFrom;
    }
    std::this_thread::sleep_until(end);
}

// A slow disk takes bytes piece by piece, so that a kill may fall in between. The piece gets how
// many bytes are done and how many are wanted, and returns what the system call does.
template <typename Piece>
ssize_t transfer(std::size_t size, const Piece &piece)
{
    static const long rate = setting("KILLPOINTS_RATE");
    if (rate == 0)
        return piece(0, size);
    constexpr std::size_t most = 4096;
    std::size_t done = 0;
    while (done < size) {
        const ssize_t result = piece(done, std::min(most, size - done));
        if (result <= 0)
            return done > 0 ? ssize_t(done) : result;
        takeTime(result, rate);
        done += std::size_t(result);
    }
    return ssize_t(done);
}

int whenSynced(int file)
{
    static const long milliseconds = setting("KILLPOINTS_SYNC");
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    return file;
}

__attribute__((destructor)) void tellCalls()
{
    const char *const path = std::getenv("KILLPOINTS_COUNT");
    const long number = calls;
    if (std::FILE *const file = path ? std::fopen(path, "w") : nullptr) {
        std::fprintf(file, "%ld\n", number);
        std::fclose(file);
    }
}

} // namespace

// The function that would have been called without this library.
#define REAL(name)                                                                                 \
    static const auto real = reinterpret_cast<decltype(&(name))>(dlsym(RTLD_NEXT, #name))

#define WRAP(type, name, parameters, arguments, counts)                                            \
    type name parameters                                                                           \
    {                                                                                              \
        REAL(name);                                                                                \
        const Call call(counts);                                                                   \
        return real arguments;                                                                     \
    }

#define WRAP_OPEN(name, parameters, ...)                                                           \
    int name parameters                                                                            \
    {                                                                                              \
        REAL(name);                                                                                \
        std::va_list list;                                                                         \
        va_start(list, flags);                                                                     \
        const mode_t mode = va_arg(list, mode_t);                                                  \
        va_end(list);                                                                              \
        const Call call(writes(flags));                                                            \
        return real(__VA_ARGS__, flags, mode);                                                     \
    }

#define WRAP_TRANSFER(name, parameters, file, ...)                                                 \
    ssize_t name parameters                                                                        \
    {                                                                                              \
        REAL(name);                                                                                \
        const bool isFile = isWritten(file);                                                       \
        const Call call(isFile);                                                                   \
        const auto piece = [=](std::size_t done, std::size_t part) {                               \
            static_cast<void>(done);                                                               \
            return real(__VA_ARGS__);                                                              \
        };                                                                                         \
        return isFile ? transfer(size, piece) : piece(0, size);                                    \
    }

// clang-format off: a line each
extern "C" {

WRAP_OPEN(open, (const char *path, int flags, ...), path)
WRAP_OPEN(open64, (const char *path, int flags, ...), path)
WRAP_OPEN(openat, (int folder, const char *path, int flags, ...), folder, path)
WRAP_OPEN(openat64, (int folder, const char *path, int flags, ...), folder, path)
WRAP(std::FILE *, fopen, (const char *path, const char *mode), (path, mode),
     std::strpbrk(mode, "wa+"))
WRAP(std::FILE *, fopen64, (const char *path, const char *mode), (path, mode),
     std::strpbrk(mode, "wa+"))
WRAP(int, close, (int file), (file), isWritten(file))
WRAP(int, fclose, (std::FILE * file), (file), isWritten(fileno(file)))
WRAP(int, unlink, (const char *path) noexcept, (path), true)
WRAP(int, remove, (const char *path) noexcept, (path), true)
WRAP(int, mkdir, (const char *path, mode_t mode) noexcept, (path, mode), true)
WRAP(int, rename, (const char *from, const char *to) noexcept, (from, to), true)
WRAP(int, renameat2,
     (int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) noexcept,
     (fromFolder, from, toFolder, to, flags), true)
WRAP(int, link, (const char *from, const char *to) noexcept, (from, to), true)
WRAP(int, fsync, (int file), (whenSynced(file)), true)
WRAP(int, fdatasync, (int file), (whenSynced(file)), true)
WRAP(int, fallocate, (int file, int mode, off_t offset, off_t size), (file, mode, offset, size),
     true)
WRAP(int, fallocate64, (int file, int mode, off64_t offset, off64_t size),
     (file, mode, offset, size), true)
WRAP(int, ftruncate, (int file, off_t size) noexcept, (file, size), true)
WRAP(int, ftruncate64, (int file, off64_t size) noexcept, (file, size), true)
WRAP(ssize_t, writev, (int file, const iovec *parts, int count), (file, parts, count),
     isWritten(file))
WRAP_TRANSFER(write, (int file, const void *data, size_t size), file, file,
              static_cast<const char *>(data) + done, part)
WRAP_TRANSFER(pwrite, (int file, const void *data, size_t size, off_t offset), file, file,
              static_cast<const char *>(data) + done, part, offset + off_t(done))
WRAP_TRANSFER(pwrite64, (int file, const void *data, size_t size, off64_t offset), file, file,
              static_cast<const char *>(data) + done, part, offset + off64_t(done))
WRAP_TRANSFER(copy_file_range,
              (int from, off64_t *fromOffset, int to, off64_t *toOffset, size_t size,
               unsigned flags),
              to, from, fromOffset, to, toOffset, part, flags)

} // extern "C"
