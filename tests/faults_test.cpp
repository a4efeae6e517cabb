// What the command does when the system fails it, ends it, or lets another program work on the same
// output. It is stopped before each of its system calls in turn.

#include "command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <optional>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>

namespace
{

namespace fs = std::filesystem;

/// Where the command reads an example and more than it writes at once, and writes out.xml through a
/// link. With one long tag it needs the tree, but tries without it first.
class Files : public ScratchDirectory
{
public:
    explicit Files(bool needsTree)
    {
        std::string text =
            "<r><include macros=\"config=Debug;platform=linux\" filename=\"" XMLPP_SOURCES
            "/examples/build.xml\"/>";
        for (int tags = needsTree ? 1 : 10; tags > 0; --tags)
            text += "<z v=\"" + std::string(needsTree ? 100'000 : 10'000, 'z') + "\"/>";
        write("in.xml", text + "</r>");
        write("out.d", "old");
        replace("out.xml", "old");
        fs::create_symlink("out.xml", file("link.xml"));
    }
    /// Puts a file into the place of another one, as another program does.
    void replace(const char *name, const char *content) const
    {
        write("new.xml", content);
        fs::permissions(file("new.xml"), fs::perms(0640));
        fs::rename(file("new.xml"), file(name));
    }
    /// Nobody ever sees half an output, or a new one beside an old out.d. At most \a mostLeft stay.
    void expectWhole(const std::string &right, int mostLeft) const
    {
        for (const char *name : {"out.xml", "link.xml"}) {
            const std::string content = readFile(file(name));
            EXPECT_TRUE(content == "old" || content == "other" || content == right);
        }
        const std::string rules = readFile(file("out.d"));
        EXPECT_TRUE(rules == "old" ? readFile(file("out.xml")) != right
                                   : rules.ends_with("/tests.xml:\n"));
        EXPECT_EQ(fs::status(file("out.xml")).permissions(), fs::perms(0640));
        EXPECT_LE(std::distance(fs::directory_iterator(path()), {}), 4 + mostLeft);
    }
};

/// What happens to the command before one of its system calls.
struct Event {
    const char *name;
    int error = 0;   ///< with which the call fails
    int signal = 0;  ///< that is sent
    bool isIgnored = false;
    const char *replaced = nullptr;  ///< the file whose place another one takes
};

const Event events[] = {
    {.name = "IOError", .error = EIO},
    // This and all later calls for memory fail, and every allocation is such a call.
    {.name = "NoMemory", .error = ENOMEM},
    {.name = "Kill", .signal = SIGKILL},
    {.name = "Interrupt", .signal = SIGINT},
    {.name = "Terminate", .signal = SIGTERM},
    {.name = "HangUp", .signal = SIGHUP},
    {.name = "IgnoredHangUp", .signal = SIGHUP, .isIgnored = true},
    {.name = "ReplaceOutput", .replaced = "out.xml"},
    {.name = "ReplaceLink", .replaced = "link.xml"},
};

class Command : public testing::TestWithParam<std::tuple<Event, bool>>
{
protected:
    /// Lets the command go on to where it enters or leaves a system call; false when it ends before.
    bool goOn(__ptrace_syscall_info *info)
    {
        for (long signal = 0;; signal = WSTOPSIG(status)) {
            ptrace(PTRACE_SYSCALL, child, nullptr, signal);
            if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status))
                return false;
            if (WSTOPSIG(status) == (SIGTRAP | 0x80))
                return ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof *info, info) > 0;
        }
    }
    /// Whether the event comes before the call of that number and kind, when it is to come before
    /// the one with the number \a wanted.
    bool isHit(int number, std::uint64_t call, int wanted) const
    {
        if (event.error == ENOMEM)
            return number >= wanted && (call == SYS_mmap || call == SYS_mremap || call == SYS_brk);
        return number == wanted && call != SYS_brk && call != SYS_exit_group &&
               (event.error == 0 || call != SYS_unlink);
    }
    /// Runs the command to its end. Its first call is the one with which main begins.
    CommandResult run(const Files &files, int wanted)
    {
        int number = -1;
        std::optional<long> result;
        isReached = false;
        child = startCommand({XMLPP_COMMAND "-depfile", "out.d", "in.xml", "link.xml"},
                             files.path(), notes.file("prints"), [&] {
                                 if (event.isIgnored)
                                     std::signal(event.signal, SIG_IGN);
                                 if (event.error == ENOMEM)
                                     setenv("GLIBC_TUNABLES", "glibc.malloc.mmap_threshold=1", 1);
                                 ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
                             });
        waitpid(child, nullptr, 0);
        ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
        for (__ptrace_syscall_info info = {}; goOn(&info);) {
            if (info.op == PTRACE_SYSCALL_INFO_EXIT) {
                if (result)
                    ptrace(PTRACE_POKEUSER, child, offsetof(user, regs.rax), *result);
                result.reset();
                continue;
            }
            const auto call = info.entry.nr;
            if (number >= 0 || (call == SYS_rt_sigaction && info.entry.args[0] == SIGXFSZ))
                ++number;
            isReached = isReached || (number == wanted && call != SYS_exit_group);
            if (number >= wanted)
                files.expectWhole(right, 2);
            if (number < 0 || !isHit(number, call, wanted))
                continue;
            if (event.error != 0) {
                ptrace(PTRACE_POKEUSER, child, offsetof(user, regs.orig_rax), -1L);
                result = call == SYS_brk ? 0 : -event.error;
            }
            if (event.signal != 0)
                kill(child, event.signal);
            if (event.replaced)
                files.replace(event.replaced, "other");
        }
        return resultOf(status, notes.file("prints"));
    }

    const Event &event = std::get<0>(GetParam());
    const bool needsTree = std::get<1>(GetParam());
    const ScratchDirectory notes;
    std::string right;
    pid_t child = 0;
    int status = 0;
    bool isReached = true;  ///< whether the last run had so many calls
};

TEST_P(Command, LeavesTheOldOutputOrTheNewOne)
{
    const Files untouched(needsTree);
    EXPECT_EQ(run(untouched, INT_MAX).prints, "");
    right = readFile(untouched.file("out.xml"));
    int failed = 0;
    int number = 0;
    for (isReached = true; isReached && !HasFailure(); ++number) {
        SCOPED_TRACE(number);
        const Files files(needsTree);
        const auto [exitStatus, prints] = run(files, number);
        failed += exitStatus != 0;
        files.expectWhole(right, event.signal == SIGKILL ? 2 : 0);
        if (event.replaced) {
            EXPECT_EQ(prints, "");
        } else if (isReached && event.signal != 0 && !event.isIgnored) {
            EXPECT_TRUE(exitStatus == 128 + event.signal || exitStatus == 0) << exitStatus;
        } else {
            EXPECT_EQ(exitStatus, prints.empty() ? 0 : 1) << prints;
            EXPECT_EQ(std::count(prints.begin(), prints.end(), '\n'), exitStatus) << prints;
            EXPECT_EQ(readFile(files.file("out.xml")) == right, exitStatus == 0);
        }
    }
    EXPECT_GT(number, 20);
    // What fails once on the way without the tree need not fail with it.
    EXPECT_TRUE(failed > (event.error == EIO ? 5 * needsTree - 1 : 10) || event.isIgnored ||
                event.replaced)
        << failed;
}

std::string nameOf(const testing::TestParamInfo<std::tuple<Event, bool>> &tested)
{
    return std::string(std::get<0>(tested.param).name) +
           (std::get<1>(tested.param) ? "WithTree" : "");
}

INSTANTIATE_TEST_SUITE_P(BeforeEach, Command,
                         testing::Combine(testing::ValuesIn(events), testing::Bool()), nameOf);

}  // namespace
