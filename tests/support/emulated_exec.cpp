// Preloaded into tests that run in an emulator. A program for the emulated processor that they
// start is started in the emulator, too; the kernel does that by itself only where it has been
// configured to, which changes the whole machine.

#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <vector>

namespace {

using Words = std::vector<const char*>;
using SystemCall = long (*)(long number, ...);

// The C library's own, of which there is another one below.
const SystemCall system_call = reinterpret_cast<SystemCall>(dlsym(RTLD_NEXT, "syscall"));

// Whether the file is for the processor that this was compiled for.
bool isEmulated(const char* path)
{
    Elf32_Ehdr header; // its beginning is that of a 64-bit one
    std::memset(&header, 0, sizeof header);
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    const ssize_t length = read(file, &header, sizeof header);
    close(file);
    return length == sizeof header && std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
           header.e_machine == TOVIK_MACHINE;
}

// A program of the machine itself could not load this library, and would say so. In the emulator it
// is preloaded again by an option.
Words withoutPreload(char* const environment[])
{
    Words words;
    for (; environment && *environment; ++environment) {
        if (std::strncmp(*environment, "LD_PRELOAD=", 11) != 0)
            words.push_back(*environment);
    }
    words.push_back(nullptr);
    return words;
}

} // namespace

extern "C" {

int execve(const char* path, char* const arguments[], char* const environment[]) noexcept
{
    const bool emulated = isEmulated(path);
    Words command;
    if (emulated)
        command = {TOVIK_EMULATOR_COMMAND, "-0", arguments[0], path};
    else
        command.push_back(arguments[0]);
    for (char* const* argument = arguments + 1; arguments[0] && *argument; ++argument)
        command.push_back(*argument);
    command.push_back(nullptr);
    return static_cast<int>(system_call(SYS_execve, emulated ? command[0] : path, command.data(),
                                        withoutPreload(environment).data()));
}

int execv(const char* path, char* const arguments[]) noexcept
{
    return execve(path, arguments, environ);
}

// Qt asks whether there are descriptors of processes. The emulator says yes for the kernel, and
// then refuses to make one; Qt takes -1 for the number of a process that it has started, and where
// it ends that "process", it ends everything that it may. So the answer is no.
long syscall(long number, ...) noexcept
{
    va_list list;
    va_start(list, number);
    long words[6];
    for (long& word : words)
        word = va_arg(list, long);
    va_end(list);
    const long by_descriptor = 3; // P_PIDFD
    if (number == SYS_waitid && words[0] == by_descriptor) {
        errno = EINVAL;
        return -1;
    }
    return system_call(number, words[0], words[1], words[2], words[3], words[4], words[5]);
}

// No test ends all processes on purpose.
int kill(pid_t process, int number) noexcept
{
    if (process == -1) {
        errno = EPERM;
        return -1;
    }
    return static_cast<int>(system_call(SYS_kill, process, number));
}
}
