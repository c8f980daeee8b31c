// Runs a program for which the kernel refuses one kind of call:
//   refuse socket|bind|receive PROGRAM [ARGUMENT...]   a call of a listener to device events
//   refuse pidfd PROGRAM [ARGUMENT...]                 waiting for a child by a pidfd, which older
//                                                      kernels refuse, too

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <linux/filter.h>
#include <linux/netlink.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
/** Lets the system call @ref call fail if its argument number @ref index is @ref argument. */
struct Refusal {
    const char *name;
    unsigned int call;
    unsigned int index;
    unsigned int argument;
    unsigned int error;
};

const Refusal refusals[] = {
    {"socket", SYS_socket, 2, NETLINK_KOBJECT_UEVENT, EIO},
    {"bind", SYS_bind, 2, sizeof(sockaddr_nl), EIO},
    // Without flags: the bus connection calls recvmsg() with flags.
    {"receive", SYS_recvmsg, 2, 0, EIO},
    {"pidfd", SYS_waitid, 0, P_PIDFD, EINVAL},
};

bool refuse(const Refusal &refusal)
{
    // On a little-endian machine, the lower half of the argument comes first.
    const auto argument =
        static_cast<unsigned int>(offsetof(seccomp_data, args) + refusal.index * sizeof(__u64));
    sock_filter filter[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, refusal.call, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, argument),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, refusal.argument, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | refusal.error),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program = {sizeof filter / sizeof filter[0], filter};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}
} // namespace

int main(int argc, char *argv[])
{
    for (const Refusal &refusal : refusals) {
        if (argc < 3 || std::strcmp(argv[1], refusal.name) != 0)
            continue;
        if (refuse(refusal))
            execvp(argv[2], argv + 2);
        std::perror(argv[2]);
        return 126;
    }
    static_cast<void>(
        std::fputs("usage: refuse socket|bind|receive|pidfd PROGRAM [ARGUMENT...]\n", stderr));
    return 126;
}
