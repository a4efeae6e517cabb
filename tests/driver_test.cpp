#include "executablepath.h"
#include "installationdirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

namespace
{

std::string installedAt(const std::string &executable, int levelsUp = 1)
{
    initInstallationDirectory(executable.c_str(), levelsUp);
    return installationDirectory().toStdString();
}

TEST(InstallationDirectory, IsTheCanonicalParentOfTheDirectory)
{
    std::string name = (std::filesystem::temp_directory_path() / "xmlpp-test-XXXXXX").string();
    const std::filesystem::path top = std::filesystem::canonical(mkdtemp(name.data()));
    std::filesystem::create_directories(top / "kit/bin");
    std::filesystem::create_directory_symlink(top / "kit", top / "link");
    std::filesystem::create_directory_symlink(top / "kit/bin", top / "tools");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(top / "kit");
    const std::string kit = top / "kit";

    EXPECT_EQ(installedAt(kit + "/bin/tool"), kit);
    EXPECT_EQ(installedAt(kit + "//bin/./x/..//tool"), kit);
    EXPECT_EQ(installedAt("bin/tool"), kit);
    EXPECT_EQ(installedAt("../kit/bin/tool"), kit);
    EXPECT_EQ(installedAt(top / "link/bin/tool"), kit);
    // The text alone says what is one level up, wherever the directory really lies.
    EXPECT_EQ(installedAt(top / "tools/tool"), top);
    EXPECT_EQ(installedAt(kit + "/bin/tool", 0), kit + "/bin");
    EXPECT_EQ(installedAt("/tool"), "/");
    EXPECT_EQ(installedAt("/bin/tool", 9), "/");
    EXPECT_EQ(installedAt(kit + "/none/below/tool"), "");

    std::filesystem::current_path(before);
    std::filesystem::remove_all(top);
}

TEST(ExecutablePath, IsThisProgram)
{
    EXPECT_TRUE(executablePath("argv0").endsWith(QStringLiteral("driver_tests")));
}

}  // namespace
