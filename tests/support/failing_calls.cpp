// SPDX-License-Identifier: GPL-3.0-or-later
//
// A library to be loaded before all others (LD_PRELOAD): makes one call of a program fail as if the
// system refused it.
//
//   TESSERA_FAULT       KIND:N or KIND:N:BYTES, the N-th call of that kind fails, none for N = 0;
//                       of the kind "memory" only requests of that many bytes or more count
//   TESSERA_FAULT_PATH  a piece of a path: of the kinds "rename", "folder" and "open" only calls
//   that
//                       name a path with it count
//   TESSERA_FAULT_SEEN  a file of eight bytes with the number of calls so far, shared by a process
//                       and those that it starts
//
// | kind   | calls                                             | fails with             |
// |--------|---------------------------------------------------|------------------------|
// | write  | write, pwrite, writev, fwrite, ftruncate, fsync   | no space left          |
// | rename | rename and its kin, link                          | input/output error     |
// | folder | mkdir, rmdir, unlink                              | input/output error     |
// | open   | open, fopen, opendir                              | too many open files    |
// | map    | mmap                                              | cannot allocate memory |
// | memory | malloc and its kin, and with them operator new    | cannot allocate memory |
// | thread | pthread_create                                    | try again              |
//
// Calls count while main() runs. What goes to standard output and standard error never fails, so
// that a message can be seen, nor do files of the system, which libraries open for themselves.

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <initializer_list>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

// What the C library calls its own, since dlsym() itself asks for memory.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
}

namespace
{

enum Kind { Write, Rename, Folder, Open, Map, Memory, Thread, kinds };
constexpr const char *names[kinds] = {"write", "rename", "folder", "open",
                                      "map",   "memory", "thread"};

Kind wantedKind = kinds;
std::uint64_t wantedCall = 0;
std::size_t leastBytes = 0;
const char *wantedPath = "";
std::uint64_t ownCount = 0;
std::uint64_t *count = &ownCount;
std::atomic<bool> isOn{false};

void readWishes()
{
    const char *const text = std::getenv("TESSERA_FAULT");
    const char *const colon = text != nullptr ? std::strchr(text, ':') : nullptr;
    if (colon == nullptr)
        return;
    for (int kind = 0; kind < kinds; ++kind)
        if (std::strncmp(text, names[kind], std::size_t(colon - text)) == 0)
            wantedKind = Kind(kind);
    char *rest = nullptr;
    wantedCall = std::strtoull(colon + 1, &rest, 10);
    if (const char *const piece = std::getenv("TESSERA_FAULT_PATH"))
        wantedPath = piece;
    leastBytes = *rest == ':' ? std::strtoull(rest + 1, nullptr, 10) : 0;
    if (const char *const path = std::getenv("TESSERA_FAULT_SEEN")) {
        const int file = open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (file < 0 || ftruncate(file, sizeof *count) != 0)
            _exit(125);
        void *const shared =
            mmap(nullptr, sizeof *count, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (shared == MAP_FAILED)
            _exit(125);
        count = static_cast<std::uint64_t *>(shared);
        close(file);
    }
}

/// Counts a call and says whether it is the one.
bool fails(Kind kind, int error)
{
    if (kind != wantedKind || !isOn.load(std::memory_order_relaxed))
        return false;
    if (__atomic_add_fetch(count, 1, __ATOMIC_RELAXED) != wantedCall)
        return false;
    errno = error;
    return true;
}

bool memoryFails(std::size_t size)
{
    return size >= leastBytes && fails(Memory, ENOMEM);
}

bool pathFails(Kind kind, int error, const char *path)
{
    return std::strstr(path, wantedPath) != nullptr && fails(kind, error);
}

bool openFails(const char *path)
{
    for (const char *const system : {"/usr/", "/etc/", "/proc/", "/sys/", "/dev/"})
        if (std::strncmp(path, system, std::strlen(system)) == 0)
            return false;
    return pathFails(Open, EMFILE, path);
}

bool writeFails(int file)
{
    return file != STDOUT_FILENO && file != STDERR_FILENO && fails(Write, ENOSPC);
}

/// The function of that name that this one stands before.
template <typename Function>
Function *next(const char *name)
{
    void *const found = dlsym(RTLD_NEXT, name);
    if (found == nullptr)
        _exit(125);
    Function *function = nullptr;
    std::memcpy(&function, &found, sizeof function);
    return function;
}

int (*programMain)(int, char **, char **) = nullptr;

int countedMain(int argc, char **argv, char **environment)
{
    readWishes();
    isOn = true;
    const int status = programMain(argc, argv, environment);
    isOn = false;
    return status;
}

} // namespace

// One line for each function that is only counted: NAME(parameters) with the arguments of the real
// one, and the condition under which it fails.
#define COUNTED(result, name, parameters, arguments, condition, failure)                           \
    extern "C" result name parameters                                                              \
    {                                                                                              \
        static const auto real = next<result parameters>(#name);                                   \
        return (condition) ? (failure) : real arguments;                                           \
    }

COUNTED(ssize_t, write, (int file, const void *bytes, size_t size), (file, bytes, size),
        writeFails(file), -1)
COUNTED(ssize_t, pwrite, (int file, const void *bytes, size_t size, off_t at),
        (file, bytes, size, at), writeFails(file), -1)
COUNTED(ssize_t, pwrite64, (int file, const void *bytes, size_t size, off64_t at),
        (file, bytes, size, at), writeFails(file), -1)
COUNTED(ssize_t, writev, (int file, const iovec *parts, int number), (file, parts, number),
        writeFails(file), -1)
COUNTED(size_t, fwrite, (const void *bytes, size_t size, size_t number, FILE *file),
        (bytes, size, number, file), file != stdout && file != stderr && fails(Write, ENOSPC), 0)
COUNTED(int, ftruncate, (int file, off_t size), (file, size), fails(Write, ENOSPC), -1)
COUNTED(int, ftruncate64, (int file, off64_t size), (file, size), fails(Write, ENOSPC), -1)
COUNTED(int, posix_fallocate, (int file, off_t at, off_t size), (file, at, size),
        fails(Write, ENOSPC), ENOSPC)
COUNTED(int, posix_fallocate64, (int file, off64_t at, off64_t size), (file, at, size),
        fails(Write, ENOSPC), ENOSPC)
COUNTED(int, fsync, (int file), (file), fails(Write, ENOSPC), -1)
COUNTED(int, fdatasync, (int file), (file), fails(Write, ENOSPC), -1)

COUNTED(int, rename, (const char *from, const char *to), (from, to), pathFails(Rename, EIO, to), -1)
COUNTED(int, renameat, (int a, const char *from, int b, const char *to), (a, from, b, to),
        pathFails(Rename, EIO, to), -1)
COUNTED(int, renameat2, (int a, const char *from, int b, const char *to, unsigned flags),
        (a, from, b, to, flags), pathFails(Rename, EIO, to), -1)
COUNTED(int, link, (const char *from, const char *to), (from, to), pathFails(Rename, EIO, to), -1)

COUNTED(int, mkdir, (const char *path, mode_t mode), (path, mode), pathFails(Folder, EIO, path), -1)
COUNTED(int, rmdir, (const char *path), (path), pathFails(Folder, EIO, path), -1)
COUNTED(int, unlink, (const char *path), (path), pathFails(Folder, EIO, path), -1)
COUNTED(int, unlinkat, (int folder, const char *path, int flags), (folder, path, flags),
        pathFails(Folder, EIO, path), -1)

COUNTED(FILE *, fopen, (const char *path, const char *mode), (path, mode), openFails(path), nullptr)
COUNTED(FILE *, fopen64, (const char *path, const char *mode), (path, mode), openFails(path),
        nullptr)
COUNTED(DIR *, opendir, (const char *path), (path), openFails(path), nullptr)

COUNTED(void *, mmap, (void *place, size_t size, int protection, int flags, int file, off_t at),
        (place, size, protection, flags, file, at), fails(Map, ENOMEM), MAP_FAILED)
COUNTED(void *, mmap64, (void *place, size_t size, int protection, int flags, int file, off64_t at),
        (place, size, protection, flags, file, at), fails(Map, ENOMEM), MAP_FAILED)

COUNTED(int, pthread_create,
        (pthread_t * thread, const pthread_attr_t *attributes, void *(*work)(void *), void *data),
        (thread, attributes, work, data), fails(Thread, EAGAIN), EAGAIN)

#define OPENS(name, parameters, last, arguments)                                                   \
    extern "C" int name parameters                                                                 \
    {                                                                                              \
        static const auto real = next<int parameters>(#name);                                      \
        va_list rest;                                                                              \
        va_start(rest, last);                                                                      \
        const int mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, int) : 0;             \
        va_end(rest);                                                                              \
        return openFails(path) ? -1 : real arguments;                                              \
    }

OPENS(open, (const char *path, int flags, ...), flags, (path, flags, mode))
OPENS(open64, (const char *path, int flags, ...), flags, (path, flags, mode))
OPENS(openat, (int folder, const char *path, int flags, ...), flags, (folder, path, flags, mode))
OPENS(openat64, (int folder, const char *path, int flags, ...), flags, (folder, path, flags, mode))

extern "C" void *malloc(std::size_t size)
{
    return memoryFails(size) ? nullptr : __libc_malloc(size);
}

extern "C" void *calloc(std::size_t number, std::size_t size)
{
    return memoryFails(number * size) ? nullptr : __libc_calloc(number, size);
}

extern "C" void *realloc(void *block, std::size_t size)
{
    return memoryFails(size) ? nullptr : __libc_realloc(block, size);
}

extern "C" void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memoryFails(size) ? nullptr : __libc_memalign(alignment, size);
}

extern "C" int posix_memalign(void **block, std::size_t alignment, std::size_t size)
{
    if (memoryFails(size))
        return ENOMEM;
    *block = __libc_memalign(alignment, size);
    return *block != nullptr ? 0 : ENOMEM;
}

extern "C" int __libc_start_main(int (*main)(int, char **, char **), int argc, char **argv,
                                 void (*begin)(), void (*end)(), void (*unload)(), void *stack)
{
    using Start = int(int (*)(int, char **, char **), int, char **, void (*)(), void (*)(),
                      void (*)(), void *);
    programMain = main;
    return next<Start>("__libc_start_main")(countedMain, argc, argv, begin, end, unload, stack);
}
