#include "outputfile.h"

#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{

/// What stands before the last component of \a path, the '/' included.
std::string directoryOf(const std::string &path)
{
    return path.substr(0, path.rfind('/') + 1);
}

/// What the symbolic link \a path leads to; empty, with errno, when it is none.
std::string followLink(const std::string &path)
{
    char link[PATH_MAX];
    const ssize_t length = readlink(path.c_str(), link, sizeof link);
    if (length <= 0)
        return {};
    const std::string next(link, static_cast<std::size_t>(length));
    return next.starts_with('/') ? next : directoryOf(path).append(next);
}

/// Whether a link is one of those that the system makes for the open files of processes. What they
/// lead to need not have a name, and the text in them need not be one.
bool isSystemLink(const struct stat &link)
{
    struct stat own = {};
    return lstat("/proc/self", &own) == 0 && S_ISLNK(own.st_mode) && link.st_dev == own.st_dev;
}

/// Whether the failure to make a file says something about the place rather than about the
/// moment: only then is there no better way than to write in place.
bool noFileCanBeMade(int error)
{
    return error == EACCES || error == EPERM || error == EROFS || error == ENOENT ||
           error == ENAMETOOLONG;
}

/// Gives the new file the owner and the group of the old one, as far as that is allowed, and its
/// mode. The bits that lend an owner's or a group's rights go where that one could not be kept.
bool takeOver(int descriptor, const struct stat &old)
{
    struct stat made = {};
    if (fstat(descriptor, &made) != 0)
        return false;
    bool isOwned = true;
    if (made.st_gid != old.st_gid)
        isOwned = fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) == 0;
    if (made.st_uid != old.st_uid)
        isOwned = fchown(descriptor, old.st_uid, static_cast<gid_t>(-1)) == 0 && isOwned;
    return fchmod(descriptor, old.st_mode & (isOwned ? 07777 : 0777)) == 0;
}

/// Instead of a descriptor: something changed between two looks at it.
constexpr int changed = -2;

int openInPlace(const std::string &path)
{
    return open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
}

int openDevice(const std::string &path)
{
    const int descriptor = open(path.c_str(), O_WRONLY);
    struct stat opened = {};
    if (descriptor < 0 || (fstat(descriptor, &opened) == 0 && !S_ISREG(opened.st_mode)))
        return descriptor;
    // A file has taken its place, and nothing happened to that yet.
    close(descriptor);
    return changed;
}

int openSystemLink(const std::string &path)
{
    // Behind /dev/stdout can be a file that others go on writing to: what is put in its place, or
    // written at an offset of its own, would be lost to them or they to it.
    struct stat found = {};
    const bool isFile = stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode);
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) {
        struct stat open = {};
        if (isFile && fstat(descriptor, &open) == 0 && open.st_dev == found.st_dev &&
            open.st_ino == found.st_ino)
            return dup(descriptor);
    }
    return openInPlace(path);
}

}  // namespace

OutputFile::OutputFile(const char *fileName, bool temporaryOnly)
    : onlyTemporary(temporaryOnly),
      given(fileName)
{
    int descriptor = changed;
    for (int looks = 0; looks < 100 && descriptor == changed; ++looks)
        descriptor = open(fileName);
    if (descriptor < 0)
        return;
    file = fdopen(descriptor, "wb");
    // The writer hands over large runs; a buffer of the stream's own would only copy them.
    if (file)
        std::setvbuf(file, nullptr, _IONBF, 0);
    else
        close(descriptor);
}

OutputFile::~OutputFile()
{
    if (file)
        std::fclose(file);
    if (!temporary.empty()) {
        unlink(temporary.c_str());
        forgetTemporary();
    }
}

void OutputFile::removeOnSignals()
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_DFL)
            std::signal(number, endBySignal);
    }
}

/// Calls only what may be called in a signal handler.
void OutputFile::endBySignal(int number)
{
    for (const OutputFile *each = newest; each; each = each->older)
        unlink(each->temporary.c_str());
    // Comes again when this one is done, and ends the process so that its parent sees why.
    std::signal(number, SIG_DFL);
    raise(number);
}

/// A descriptor to write to, -1 or changed. Follows the links one by one, so that each answer is
/// about one thing: with stat() another program's rename between two calls could make a plain file
/// look like two different ones.
int OutputFile::open(std::string path)
{
    constexpr int mostLinks = 40;
    for (int links = 0; links <= mostLinks; ++links) {
        struct stat found = {};
        if (lstat(path.c_str(), &found) != 0)
            return errno == ENOENT ? openToReplace(path, nullptr) : -1;
        if (S_ISREG(found.st_mode) && access(path.c_str(), W_OK) == 0)
            return openToReplace(path, &found);
        if (S_ISREG(found.st_mode))
            return errno == ENOENT ? changed : -1;
        if (!S_ISLNK(found.st_mode))
            return onlyTemporary ? -1 : openDevice(path);
        if (isSystemLink(found))
            return onlyTemporary ? -1 : openSystemLink(path);
        path = followLink(path);
        if (path.empty())
            return errno == ENOENT || errno == EINVAL ? changed : -1;
    }
    return -1;
}

int OutputFile::openToReplace(const std::string &path, const struct stat *old)
{
    const int descriptor = openTemporary(path, old);
    const bool isInPlace = descriptor < 0 && !onlyTemporary && noFileCanBeMade(errno);
    return isInPlace ? openInPlace(path) : descriptor;
}

/// The file has a name from the start. One without (O_TMPFILE) would leave nothing behind even after
/// SIGKILL; but making, linking and renaming it takes 18 us where this takes 13 (tmpfs), and file
/// systems that have none need the other way as well.
int OutputFile::openTemporary(const std::string &path, const struct stat *old)
{
    // No other run has this name: the clock tells apart what containers with process IDs of their
    // own make in a directory that they share. It need not tell apart two files of this run.
    static int made = 0;
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    temporary = directoryOf(path) + ".xmlpp-" + std::to_string(getpid()) + '-' +
                std::to_string(now) + '-' + std::to_string(++made);
    target = path;
    older = newest.load();
    newest = this;
    // Nobody may open the temporary file who could not open the old one. Nothing from here to the
    // end of the constructor allocates: an exception would leave the file behind.
    const int descriptor =
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL, old ? 0600 : 0666);
    if (descriptor < 0) {
        forgetTemporary();  // leaves errno alone
        return -1;
    }
    if (!old || takeOver(descriptor, *old))
        return descriptor;
    close(descriptor);
    errno = EIO;
    return -1;
}

void OutputFile::forgetTemporary()
{
    Link *link = &newest;
    while (*link != this)
        link = &link->load()->older;
    *link = older.load();
    temporary.clear();
}

bool OutputFile::finish()
{
    if (FILE *stream = std::exchange(file, nullptr)) {
        const bool written = std::fflush(stream) == 0 && !std::ferror(stream);
        isWhole = std::fclose(stream) == 0 && written;
    }
    return isWhole;
}

bool OutputFile::commit()
{
    if (!finish())
        return false;
    if (temporary.empty())
        return true;
    if (std::rename(temporary.c_str(), target.c_str()) != 0)
        return false;
    forgetTemporary();
    return true;
}
