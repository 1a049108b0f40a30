// Preloaded into 32-bit programs where the kernel cannot run them and an emulator does: the
// emulator refuses to make a process and its descriptor in one call, as Qt does, but makes them one
// by one.
#include <cstdarg>
#include <dlfcn.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" __attribute__((visibility("default"))) int clone(int (*function)(void *), void *stack,
                                                            int flags, void *argument, ...) noexcept
{
    using Real = int (*)(int (*)(void *), void *, int, void *, ...);
    static const Real real = reinterpret_cast<Real>(dlsym(RTLD_NEXT, "clone"));
    va_list list;
    va_start(list, argument);
    auto *const id = va_arg(list, int *);
    void *const storage = va_arg(list, void *);
    auto *const childId = va_arg(list, int *);
    va_end(list);
    if ((flags & CLONE_PIDFD) == 0)
        return real(function, stack, flags, argument, id, storage, childId);
    const int process = real(function, stack, flags & ~CLONE_PIDFD, argument);
    if (process > 0)
        *id = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    return process;
}
