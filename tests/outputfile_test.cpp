#include "command.h"
#include "outputfile.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace
{

using std::filesystem::perms;

class Output : public testing::Test
{
protected:
    /// Writes "new" to the file. Whether it could be opened, and commit() said so.
    static bool writeNew(const std::string &path)
    {
        OutputFile file(path.c_str());
        return file.stream() && std::fputs("new", file.stream()) >= 0 && file.commit();
    }
    std::ptrdiff_t fileCount() const
    {
        return std::distance(std::filesystem::directory_iterator(scratch.path()), {});
    }

    const ScratchDirectory scratch;
    const std::string out = scratch.file("out");
};

TEST_F(Output, AppearsWholeOrNotAtAll)
{
    scratch.write("out", "old");
    {
        OutputFile file(out.c_str());
        std::fputs("half", file.stream());
        EXPECT_EQ(readFile(out), "old");
    }
    EXPECT_EQ(fileCount(), 1);
    EXPECT_TRUE(writeNew(out));
    EXPECT_EQ(readFile(out), "new");
    EXPECT_EQ(fileCount(), 1);
}

TEST_F(Output, HasTheOldModeOrThatOfANewFile)
{
    scratch.write("out", "old");
    std::filesystem::permissions(out, perms(0751));
    const mode_t mask = umask(027);
    EXPECT_TRUE(writeNew(out) && writeNew(scratch.file("made")));
    umask(mask);
    EXPECT_EQ(std::filesystem::status(out).permissions(), perms(0751));
    EXPECT_EQ(std::filesystem::status(scratch.file("made")).permissions(), perms(0640));
}

TEST_F(Output, LiesWhereLinksLead)
{
    std::filesystem::create_directory(scratch.file("d"));
    std::filesystem::create_symlink("d/second", scratch.file("first"));
    std::filesystem::create_symlink("../out", scratch.file("d/second"));
    std::filesystem::create_symlink("loop", scratch.file("loop"));
    EXPECT_TRUE(writeNew(scratch.file("first")));
    EXPECT_TRUE(std::filesystem::is_symlink(scratch.file("first")));
    EXPECT_EQ(readFile(out), "new");
    EXPECT_FALSE(writeNew(scratch.file("loop")));
}

TEST_F(Output, IsWrittenInPlaceWhereItCannotBeReplaced)
{
    scratch.write("out", "longer");
    const int descriptor = open(out.c_str(), O_RDONLY);
    EXPECT_TRUE(writeNew("/proc/self/fd/" + std::to_string(descriptor)));
    EXPECT_EQ(readFile(out), "new");
    struct stat inPlace = {};
    EXPECT_EQ(fstat(descriptor, &inPlace), 0);
    EXPECT_EQ(inPlace.st_size, 3);
    close(descriptor);
    EXPECT_TRUE(writeNew("/dev/null"));
    EXPECT_FALSE(writeNew(scratch.path()));
    EXPECT_FALSE(writeNew(scratch.file("none/out")));
    EXPECT_EQ(fileCount(), 1);
}

}  // namespace
