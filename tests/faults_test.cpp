// What the built command does when the system fails it, ends it, or lets another program work on
// the same output. The command is stopped before each of its system calls in turn.

#include "command.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>

namespace
{

/// One directory, in which the command writes out.xml through a link.
class Faults
{
public:
    Faults()
    {
        scratch.write("in.xml", R"xml(<?xml version="1.0"?><!DOCTYPE r><r>
<if m="1"><a v="$(m)$(u:$(m))"/></if><define name="e" expression="(1 + 2) * 0x10"/>
<include filename="d/b.xml" macros="a=1;b=2" inherit_attributes="x" x="y"/>
<xmldef name="f"><c v="$(e)"/></xmldef><xmlput name="f" macros="e=0"/>
<for index="i" start="0" end="2" incr="1"><xmlput name="f"/><d v="$(i_alpha)"/></for>
<foreach p="1,2" q="3"><ifex expression="$(p) == $(q) - 1"><e/></ifex></foreach>
<switch name="m"><case value="1"><g/></case></switch><![CDATA[text]]><z v=")xml" +
                                    std::string(70'000, 'z') + "\"/></r>");
        scratch.write("d/b.xml", "<b v=\"$(a)$(b)\"><h v=\"$(m)\"/></b>");
        renew();
        EXPECT_EQ(runCommand(arguments, scratch.path()).status, 0);
        right = readFile(out);
    }

    /// The files as they are before each run.
    void renew() const
    {
        std::filesystem::remove(link);
        std::filesystem::create_symlink("out.xml", link);
        scratch.write("out.xml", "old");
        std::filesystem::permissions(out, std::filesystem::perms(0640));
    }
    /// Puts a file into the place of \a path, as another program does.
    void replace(const std::string &path) const
    {
        scratch.write("d/other.xml", "other");
        std::filesystem::permissions(scratch.file("d/other.xml"), std::filesystem::perms(0640));
        std::filesystem::rename(scratch.file("d/other.xml"), path);
    }
    /// What is in the file: "old", "other", "right", or only half of that.
    std::string state(const std::string &path) const
    {
        const std::string content = readFile(path);
        return content == right ? "right" : content.substr(0, 10);
    }
    /// Nobody ever sees half an output, and no more is left beside it than \a mostLeft.
    void expectWhole(int mostLeft) const
    {
        for (const std::string &path : {out, link})
            EXPECT_TRUE(state(path) == "old" || state(path) == "other" || state(path) == "right");
        EXPECT_EQ(std::filesystem::status(out).permissions(), std::filesystem::perms(0640));
        const auto count = std::distance(std::filesystem::directory_iterator(scratch.path()), {});
        EXPECT_LE(count, 4 + mostLeft) << "a file is left";
    }
    void expectRightOrOneLine(const CommandResult &result) const
    {
        EXPECT_EQ(result.status, result.error.empty() ? 0 : 1) << result.error;
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), result.status);
        EXPECT_EQ(state(out), result.status == 0 ? "right" : "old");
    }

    ScratchDirectory scratch;
    std::string out = scratch.file("out.xml");
    std::string link = scratch.file("link.xml");
    std::string right;
    std::vector<std::string> arguments = {XMLPP_COMMAND, "in.xml", "link.xml", "m=1"};
};

class Memory : public testing::TestWithParam<bool>
{
};

TEST_P(Memory, IsMissedInOneLineWithoutATrace)
{
    const Faults faults;
    const ScratchDirectory marks;
    bool isReached = true;
    for (int number = 1; isReached && !HasFailure(); ++number) {
        SCOPED_TRACE(number);
        faults.renew();
        std::filesystem::remove(marks.file("mark"));
        std::vector<std::string> command = {
            "/usr/bin/env", std::string("LD_PRELOAD=") + XMLPP_FAULTS,
            "FAULT_MARK=" + marks.file("mark"), "FAULT_AT=" + std::to_string(number)};
        if (GetParam())
            command.emplace_back("FAULT_LASTS=");
        command.insert(command.end(), faults.arguments.begin(), faults.arguments.end());
        const CommandResult result = runCommand(command, faults.scratch.path());
        isReached = std::filesystem::exists(marks.file("mark"));
        faults.expectRightOrOneLine(result);
        faults.expectWhole(0);
        EXPECT_TRUE(isReached || number > 20);
    }
}

INSTANTIATE_TEST_SUITE_P(OnceOrForGood, Memory, testing::Bool());

/// What happens to the command before one of its system calls.
enum class Event { Error, Kill, Interrupt, InterruptIgnored, ReplaceOutput, ReplaceLink };

struct Row {
    const char *name;
    Event event;
    int number;  ///< the errno or the signal
};

const Row rows[] = {
    {"IOError", Event::Error, EIO},
    {"Kill", Event::Kill, SIGKILL},
    {"Interrupt", Event::Interrupt, SIGINT},
    {"Terminate", Event::Interrupt, SIGTERM},
    {"HangUp", Event::Interrupt, SIGHUP},
    {"IgnoredHangUp", Event::InterruptIgnored, SIGHUP},
    {"ReplaceOutput", Event::ReplaceOutput, 0},
    {"ReplaceLink", Event::ReplaceLink, 0},
};

class SystemCall : public testing::TestWithParam<Row>
{
protected:
    void setRegister(std::size_t offset, long value) const
    {
        ptrace(PTRACE_POKEUSER, child, offset, value);
    }

    void makeEvent() const
    {
        switch (GetParam().event) {
        case Event::Error:
            setRegister(offsetof(user, regs.orig_rax), -1);
            break;
        case Event::Kill:
        case Event::Interrupt:
        case Event::InterruptIgnored:
            kill(child, GetParam().number);
            break;
        case Event::ReplaceOutput:
            faults.replace(faults.out);
            break;
        case Event::ReplaceLink:
            faults.replace(faults.link);
            break;
        }
    }

    /// Starts the command, stopped at its first instruction.
    void start(const std::string &error)
    {
        child = fork();
        if (child == 0) {
            if (GetParam().event == Event::InterruptIgnored)
                std::signal(GetParam().number, SIG_IGN);
            std::vector<char *> argv;
            for (const std::string &argument : faults.arguments)
                argv.push_back(const_cast<char *>(argument.c_str()));
            argv.push_back(nullptr);
            ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
            if (chdir(faults.scratch.path().c_str()) == 0 && freopen(error.c_str(), "wb", stderr))
                execv(argv[0], argv.data());
            _exit(127);
        }
        waitpid(child, nullptr, 0);
        ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    }

    /// Runs the command to its end, with the event before its system call of that number. The first
    /// is the one with which main begins. The status is that of waitpid().
    int run(int number)
    {
        int calls = -1;
        int status = 0;
        long signal = 0;
        for (;;) {
            ptrace(PTRACE_SYSCALL, child, nullptr, signal);
            if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status))
                return status;
            signal = WSTOPSIG(status) == (SIGTRAP | 0x80) ? 0 : WSTOPSIG(status);
            __ptrace_syscall_info info = {};
            ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
            if (info.op == PTRACE_SYSCALL_INFO_EXIT && isFailing)
                setRegister(offsetof(user, regs.rax), -GetParam().number);
            isFailing = false;
            if (info.op != PTRACE_SYSCALL_INFO_ENTRY)
                continue;
            const auto call = info.entry.nr;
            if (calls >= 0 || (call == SYS_rt_sigaction && info.entry.args[0] == SIGXFSZ))
                ++calls;
            isReached = isReached || (calls == number && call != SYS_exit_group);
            if (calls >= number)
                faults.expectWhole(1);
            // A failing brk is told otherwise, and no exit fails.
            if (calls == number && call != SYS_brk && call != SYS_exit_group) {
                isFailing = GetParam().event == Event::Error;
                makeEvent();
            }
        }
    }

    const Faults faults;
    pid_t child = 0;
    bool isReached = true;  ///< whether the last run had so many calls
    bool isFailing = false;
};

TEST_P(SystemCall, LeavesTheOldOutputOrTheNewOne)
{
    const Event event = GetParam().event;
    const ScratchDirectory errors;
    int failed = 0;
    for (int number = 0; isReached && !HasFailure(); ++number) {
        SCOPED_TRACE(number);
        faults.renew();
        start(errors.file("error"));
        isReached = false;
        const int status = run(number);
        const int end = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        const CommandResult result = {end, "", readFile(errors.file("error"))};
        failed += status != 0;
        faults.expectWhole(event == Event::Kill ? 1 : 0);
        if (isReached && (event == Event::Kill || event == Event::Interrupt))
            EXPECT_TRUE(end == 128 + GetParam().number || end == 0) << end;
        else if (event == Event::ReplaceOutput || event == Event::ReplaceLink)
            EXPECT_EQ(result.error, "");
        else
            faults.expectRightOrOneLine(result);
        for (const auto &entry : std::filesystem::directory_iterator(faults.scratch.path())) {
            if (entry.path().filename().string().starts_with("."))
                std::filesystem::remove(entry.path());
        }
        EXPECT_TRUE(isReached || number > 20);
    }
    EXPECT_TRUE(failed > 10 || event >= Event::InterruptIgnored);
}

INSTANTIATE_TEST_SUITE_P(BeforeEach, SystemCall, testing::ValuesIn(rows),
                         [](const auto &row) { return row.param.name; });

}  // namespace
