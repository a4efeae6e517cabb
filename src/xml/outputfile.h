#pragma once

#include <atomic>
#include <cstdio>
#include <string>

/// A file that is written whole or not at all. The stream goes to a temporary file beside the
/// one that is meant, which commit() renames over that: with the old file's mode, and behind
/// whatever symbolic links lead there. Until then, and after any failure, the old file is as it
/// was, and an OutputFile that goes without a commit() takes the temporary file with it.
///
/// Written in place is only a device or a pipe, a file in a directory where no other can be made,
/// and what a link of the system's own leads to, such as /proc/self/fd/3; a file behind /dev/stdout
/// or /dev/stderr through that descriptor. Other programs may replace the file at any moment: the
/// last to be done counts.
class OutputFile
{
public:
    /// With \a temporaryOnly there is no stream for what would be written in place, and nothing
    /// happens to it.
    explicit OutputFile(const char *fileName, bool temporaryOnly = false);
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    /// Makes SIGINT, SIGTERM and SIGHUP remove all temporary files before they end the process,
    /// where they would end it: one that is ignored stays so.
    static void removeOnSignals();

    /// Null when the file cannot be written, and after finish().
    FILE *stream() const { return file; }

    /// As the file was named.
    const char *name() const { return given.c_str(); }

    /// Whether there was a stream and all that was written to it has reached the temporary file.
    /// Ends the use of the stream.
    bool finish();

    /// Whether the file is in its place, finished if it was not yet. Called once.
    bool commit();

private:
    int open(std::string path);
    int openToReplace(const std::string &path, const struct stat *old);
    int openTemporary(const std::string &path, const struct stat *old);
    void forgetTemporary();
    static void endBySignal(int number);

    const bool onlyTemporary;
    std::string given;      ///< the name of the file
    std::string target;     ///< what the temporary file is renamed to
    std::string temporary;  ///< empty when there is no temporary file
    FILE *file = nullptr;
    bool isWhole = false;  ///< what finish() found

    // The chain of those that have a temporary file or are about to make one. A signal can come
    // between any two instructions: so an OutputFile is in the chain before its file is made, its
    // name changes only while it is not, and the chain changes by single stores.
    using Link = std::atomic<OutputFile *>;
    static_assert(Link::is_always_lock_free);
    static inline Link newest = nullptr;
    Link older = nullptr;
};
