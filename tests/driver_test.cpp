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
    namespace fs = std::filesystem;
    std::string name = (fs::temp_directory_path() / "xmlpp-test-XXXXXX").string();
    const std::string top = fs::canonical(mkdtemp(name.data()));
    const std::string kit = top + "/kit";
    fs::create_directories(kit + "/bin");
    fs::create_directory_symlink(kit, top + "/link");
    fs::create_directory_symlink(kit + "/bin", top + "/tools");
    fs::current_path(kit);
    for (const std::string &tool :
         {kit + "/bin/tool", kit + "//bin/./x/..//tool", std::string("bin/tool"),
          std::string("../kit/bin/tool"), top + "/link/bin/tool"})
        EXPECT_EQ(installedAt(tool), kit) << tool;
    // The text alone says what is one level up, wherever the directory really lies.
    EXPECT_EQ(installedAt(top + "/tools/tool"), top);
    EXPECT_EQ(installedAt(kit + "/bin/tool", 0), kit + "/bin");
    EXPECT_EQ(installedAt("/tool"), "/");
    EXPECT_EQ(installedAt("/bin/tool", 9), "/");
    EXPECT_EQ(installedAt(kit + "/none/below/tool"), "");
    fs::current_path("/");
    fs::remove_all(top);
}

TEST(ExecutablePath, IsThisProgram)
{
    EXPECT_TRUE(executablePath().endsWith(QStringLiteral("driver_tests")));
}

}  // namespace
