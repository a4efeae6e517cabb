#include "outputfile.h"

#include "openfile.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// Everything before the last component of \a path, the '/' included.
std::string directoryOf(const std::string &path)
{
    return path.substr(0, path.rfind('/') + 1);
}

/// The path that \a path leads to once no symbolic link is left in its last component; there
/// need not be anything at the end. Empty when the links do not end.
std::string followLinks(std::string path)
{
    constexpr int mostLinks = 40;
    for (int links = 0; links < mostLinks; ++links) {
        char link[PATH_MAX];
        const ssize_t length = readlink(path.c_str(), link, sizeof link);
        if (length < 0)
            return path;
        std::string next(link, static_cast<std::size_t>(length));
        path = next.starts_with('/') ? next : directoryOf(path).append(next);
    }
    return {};
}

bool isSameFile(const struct stat &left, const struct stat &right)
{
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

/// Whether \a descriptor is open for the regular file \a file.
bool isOpenAs(int descriptor, const struct stat &file)
{
    struct stat open = {};
    return fstat(descriptor, &open) == 0 && isSameFile(open, file);
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

/// Whether \a name is one under which the system shows open descriptors.
bool namesDescriptor(const std::string &name)
{
    return name.starts_with("/dev/") || name.starts_with("/proc/");
}

/// Swaps two files, where the system can and both are there.
bool swapFiles(const std::string &left, const std::string &right)
{
#ifdef RENAME_EXCHANGE
    return renameat2(AT_FDCWD, left.c_str(), AT_FDCWD, right.c_str(), RENAME_EXCHANGE) == 0;
#else
    return false;
#endif
}

}  // namespace

OutputFile::OutputFile(const char *fileName) : file(open(fileName))
{
    // The writer hands over large runs; a buffer of the stream's own would only copy them.
    if (file)
        std::setvbuf(file, nullptr, _IONBF, 0);
}

OutputFile::~OutputFile()
{
    if (file)
        std::fclose(file);
    if (!temporary.empty())
        unlink(temporary.c_str());
}

FILE *OutputFile::open(const char *fileName)
{
    struct stat old = {};
    const bool exists = stat(fileName, &old) == 0;
    if (!exists && errno != ENOENT)
        return nullptr;
    if (exists && !S_ISREG(old.st_mode))
        return openInPlace(fileName);
    // Behind /dev/stdout can be a file that others go on writing to: what is put in its place, or
    // written at an offset of its own, would be lost to them or they to it.
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) {
        if (exists && namesDescriptor(fileName) && isOpenAs(descriptor, old))
            return openDescriptor(descriptor);
    }
    if (exists && access(fileName, W_OK) != 0)
        return nullptr;
    target = followLinks(fileName);
    struct stat found = {};
    if (target.empty() ||
        (exists && (stat(target.c_str(), &found) != 0 || !isSameFile(old, found))))
        return openInPlace(fileName);
    // Nobody may open the temporary file who could not open the old one.
    const mode_t mask = exists ? umask(S_IRWXG | S_IRWXO) : 0;
    FILE *stream = openTemporary();
    const int error = errno;
    if (exists)
        umask(mask);
    if (!stream)
        return noFileCanBeMade(error) ? openInPlace(fileName) : nullptr;
    if (!exists || takeOver(fileno(stream), old))
        return stream;
    std::fclose(stream);
    return nullptr;
}

FILE *OutputFile::openDescriptor(int descriptor)
{
    const int own = dup(descriptor);
    FILE *stream = fdopen(own, "wb");
    if (!stream)
        close(own);
    return stream;
}

FILE *OutputFile::openInPlace(const char *fileName)
{
    return openFile(QString::fromLatin1(fileName), "wb");
}

FILE *OutputFile::openTemporary()
{
    constexpr int mostNames = 1000;
    const std::string prefix = directoryOf(target) + ".xmlpp-" + std::to_string(getpid()) + '-';
    for (int number = 0; number < mostNames; ++number) {
        std::string name = prefix + std::to_string(number);
        if (FILE *stream = openFile(QString::fromLatin1(name), "wbx")) {
            temporary = std::move(name);
            return stream;
        }
        if (errno != EEXIST)
            break;
    }
    return nullptr;
}

bool OutputFile::commit()
{
    FILE *stream = file;
    file = nullptr;
    const bool written = std::fflush(stream) == 0 && !std::ferror(stream);
    if (std::fclose(stream) != 0 || !written)
        return false;
    if (temporary.empty())
        return true;
    // Where a file is renamed over another, some file systems write it out to the disk at once,
    // which takes longer than all the rest of a small run.
    if (swapFiles(temporary, target)) {
        unlink(temporary.c_str());
    } else if (std::rename(temporary.c_str(), target.c_str()) != 0) {
        return false;
    }
    temporary.clear();
    return true;
}
