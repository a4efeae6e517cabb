#pragma once

#include <cstdio>
#include <string>

/// A file that is written whole or not at all. The stream goes to a temporary file beside the
/// one that is meant, which commit() renames over that: with the old file's mode, and behind
/// whatever symbolic links lead there. Until then, and after any failure, the old file is as it
/// was, and an OutputFile that goes without a commit() takes the temporary file with it.
///
/// Written in place is only what is no regular file (a device, a pipe), what lies where no file can
/// be made, and what a link of the system's own leads to, such as /proc/self/fd/3; a file behind
/// /dev/stdout or /dev/stderr through that descriptor. Other programs may replace the file at any
/// moment: the last to be done counts.
class OutputFile
{
public:
    explicit OutputFile(const char *fileName);
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    /// Null when the file cannot be written.
    FILE *stream() const { return file; }

    /// Whether all that was written to the stream, which is not null, has reached the file. Ends
    /// the use of the stream.
    bool commit();

private:
    struct Plan;

    static Plan planFor(const char *fileName);
    static Plan planForSystemLink(const char *fileName);
    int open(const char *fileName);
    int openTemporary(const Plan &plan);

    std::string target;     ///< what the temporary file is renamed to
    std::string temporary;  ///< empty when there is no temporary file
    FILE *file = nullptr;
};
