// Runs a program whose power is cut at one of its file-system calls:
//   powercut CONTROL DIRECTORY... -- PROGRAM [ARGUMENT...]
// While the file CONTROL contains a number N, counts the calls that name anything below the
// directories, and kills all threads of the program just before call N is made. With 0, only
// counts. CONTROL.log lists the counted calls.

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <string>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{
/**
 * A file-system call, with the index of its path argument and of its descriptor argument; -1 if the
 * call has no such argument.
 */
struct FileCall {
    long number;
    const char *name;
    int path;
    int descriptor;
};

const FileCall fileCalls[] = {
#ifdef SYS_open
    {SYS_open, "open", 0, -1},
    {SYS_creat, "creat", 0, -1},
    {SYS_stat, "stat", 0, -1},
    {SYS_lstat, "lstat", 0, -1},
    {SYS_access, "access", 0, -1},
    {SYS_readlink, "readlink", 0, -1},
    {SYS_unlink, "unlink", 0, -1},
    {SYS_rmdir, "rmdir", 0, -1},
    {SYS_mkdir, "mkdir", 0, -1},
    {SYS_rename, "rename", 0, -1},
    {SYS_symlink, "symlink", 1, -1},
    {SYS_link, "link", 1, -1},
    {SYS_chmod, "chmod", 0, -1},
#endif
#ifdef SYS_newfstatat
    {SYS_newfstatat, "newfstatat", 1, 0},
#endif
#ifdef SYS_renameat
    {SYS_renameat, "renameat", 1, 0},
#endif
    {SYS_openat, "openat", 1, 0},
    {SYS_statx, "statx", 1, 0},
    {SYS_faccessat, "faccessat", 1, 0},
    {SYS_faccessat2, "faccessat2", 1, 0},
    {SYS_readlinkat, "readlinkat", 1, 0},
    {SYS_unlinkat, "unlinkat", 1, 0},
    {SYS_mkdirat, "mkdirat", 1, 0},
    {SYS_renameat2, "renameat2", 1, 0},
    {SYS_symlinkat, "symlinkat", 2, 1},
    {SYS_linkat, "linkat", 3, 2},
    {SYS_fchmodat, "fchmodat", 1, 0},
    {SYS_getdents64, "getdents64", -1, 0},
    {SYS_read, "read", -1, 0},
    {SYS_write, "write", -1, 0},
    {SYS_pwrite64, "pwrite64", -1, 0},
    {SYS_ftruncate, "ftruncate", -1, 0},
    {SYS_fallocate, "fallocate", -1, 0},
    {SYS_sendfile, "sendfile", -1, 0},
    {SYS_copy_file_range, "copy_file_range", -1, 2},
    {SYS_fchmod, "fchmod", -1, 0},
    {SYS_fsync, "fsync", -1, 0},
    {SYS_fdatasync, "fdatasync", -1, 0},
    {SYS_syncfs, "syncfs", -1, 0},
    {SYS_close, "close", -1, 0},
};

const FileCall *findCall(unsigned long long number)
{
    for (const FileCall &call : fileCalls) {
        if (static_cast<unsigned long long>(call.number) == number)
            return &call;
    }
    return nullptr;
}

[[noreturn]] void fail(const char *what)
{
    std::perror(what);
    std::_Exit(126);
}

/** Installs a filter with which the kernel reports each file-system call to our tracer beforehand.
 */
void askBeforeFileCalls()
{
    std::vector<sock_filter> filter = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const FileCall &call : fileCalls) {
        filter.push_back(
            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(call.number), 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
        fail("powercut: filter");
}

std::string textAt(pid_t process, unsigned long long address)
{
    char text[4096] = {};
    // The page after the text may not exist: read only up to the end of the text's page.
    const std::size_t size = 4096 - static_cast<std::size_t>(address & 4095);
    const iovec here = {text, size};
    const iovec there = {reinterpret_cast<void *>(address), size};
    if (process_vm_readv(process, &here, 1, &there, 1, 0) < 0)
        return {};
    text[sizeof text - 1] = '\0';
    return text;
}

std::string linkTarget(const std::string &link)
{
    char target[4096];
    const ssize_t length = readlink(link.c_str(), target, sizeof target);
    return length > 0 ? std::string(target, static_cast<std::size_t>(length)) : std::string();
}

std::string pathOf(pid_t process, const FileCall &call, const std::uint64_t *arguments)
{
    const std::string own = "/proc/" + std::to_string(process);
    std::string path = call.path < 0 ? std::string() : textAt(process, arguments[call.path]);
    if (!path.empty() && path.front() == '/')
        return path;
    if (call.descriptor < 0)
        return path;
    const int descriptor = static_cast<int>(arguments[call.descriptor]);
    const std::string directory = descriptor == AT_FDCWD
                                      ? linkTarget(own + "/cwd")
                                      : linkTarget(own + "/fd/" + std::to_string(descriptor));
    return path.empty() ? directory : directory + '/' + path;
}

class Tracer
{
public:
    Tracer(pid_t traced, const std::string &control, const std::vector<std::string> &directories)
        : m_traced(traced), m_control(control), m_directories(directories)
    {
    }

    void run()
    {
        int status = 0;
        for (pid_t thread; (thread = waitpid(-1, &status, __WALL)) > 0;) {
            if (!WIFSTOPPED(status))
                continue;
            const int event = status >> 16;
            int signal = WSTOPSIG(status);
            if (event == PTRACE_EVENT_SECCOMP)
                decide(thread);
            if (event == PTRACE_EVENT_STOP && (signal == SIGSTOP || signal == SIGTSTP)) {
                ptrace(PTRACE_LISTEN, thread, nullptr, nullptr);
                continue;
            }
            if (event != 0)
                signal = 0;
            ptrace(PTRACE_CONT, thread, nullptr, signal);
        }
    }

private:
    void decide(pid_t thread)
    {
        std::ifstream control(m_control);
        long cut = -1;
        if (!(control >> cut))
            return;
        __ptrace_syscall_info information = {};
        if (ptrace(PTRACE_GET_SYSCALL_INFO, thread, sizeof information, &information) <= 0)
            fail("powercut: call");
        const FileCall *call = findCall(information.seccomp.nr);
        const std::string path = call ? pathOf(thread, *call, information.seccomp.args) : "";
        if (!isOurs(path))
            return;
        std::ofstream(m_control + ".log", std::ios::app)
            << ++m_count << ' ' << call->name << ' ' << path << std::endl;
        if (m_count == cut)
            kill(m_traced, SIGKILL);
    }

    bool isOurs(const std::string &path) const
    {
        for (const std::string &directory : m_directories) {
            if (path.compare(0, directory.size(), directory) == 0)
                return true;
        }
        return false;
    }

    const pid_t m_traced;
    const std::string m_control;
    const std::vector<std::string> m_directories;
    long m_count = 0;
};
} // namespace

int main(int argc, char *argv[])
{
    std::vector<std::string> directories;
    int index = 2;
    for (; index < argc && std::strcmp(argv[index], "--") != 0; ++index)
        directories.emplace_back(argv[index]);
    if (index + 1 >= argc) {
        static_cast<void>(
            std::fputs("usage: powercut CONTROL DIRECTORY... -- PROGRAM [ARGUMENT...]\n", stderr));
        return 126;
    }
    int ready[2];
    if (pipe2(ready, O_CLOEXEC) != 0)
        fail("powercut: pipe");
    // The program keeps our PID; its tracer is a grandchild that it does not know.
    const pid_t traced = getpid();
    prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY);
    const pid_t child = fork();
    if (child == 0) {
        if (fork() != 0)
            std::_Exit(0);
        setsid();
        const long options =
            PTRACE_O_TRACESECCOMP | PTRACE_O_TRACECLONE | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK;
        if (ptrace(PTRACE_SEIZE, traced, nullptr, options) != 0)
            fail("powercut: seize");
        if (write(ready[1], "!", 1) != 1)
            fail("powercut: ready");
        close(ready[0]);
        close(ready[1]);
        // Close the tracer's copies: a reader of the program's output must not wait for the tracer.
        for (int descriptor = 0; descriptor < 3; ++descriptor)
            close(descriptor);
        Tracer(traced, argv[1], directories).run();
        std::_Exit(0);
    }
    waitpid(child, nullptr, 0);
    close(ready[1]);
    char byte = 0;
    if (read(ready[0], &byte, 1) != 1)
        fail("powercut: tracer");
    askBeforeFileCalls();
    execvp(argv[index + 1], argv + index + 1);
    fail(argv[index + 1]);
}
