#include "command.h"
#include "installation.h"

#include <gtest/gtest.h>

namespace
{

TEST(InstallationDirectory, IsTheCanonicalParentOfTheDirectory)
{
    namespace fs = std::filesystem;
    const ScratchDirectory scratch;
    const std::string top = fs::canonical(scratch.path());
    const std::string kit = top + "/kit";
    fs::create_directories(kit + "/bin");
    fs::create_directory_symlink(kit, top + "/link");
    fs::create_directory_symlink(kit + "/bin", top + "/tools");
    fs::current_path(kit);
    // The text alone says what is one level up, wherever the directory really lies.
    for (const auto &[tool, directory] : {std::pair(kit + "//bin/./x/..//tool", kit),
                                          {"../kit/bin/tool", kit},
                                          {top + "/link/bin/tool", kit},
                                          {top + "/tools/tool", top},
                                          {kit + "/bin/", kit},
                                          {"", top},
                                          {"/tool", "/"},
                                          {kit + "/none/below/tool", ""}}) {
        initInstallationDirectory(tool.c_str(), 1);
        EXPECT_EQ(installationDirectory(), directory) << tool;
    }
    fs::current_path("/");
}

}  // namespace
