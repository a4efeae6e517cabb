#pragma once

#include <cstdio>
#include <string>

/// A file that is written whole or not at all. The stream goes to a temporary file beside the
/// one that is meant, which commit() puts into its place: with the old file's mode, and behind
/// whatever symbolic links lead there. Until then, and after any failure, the old file is as it
/// was, and an OutputFile that goes without a commit() takes the temporary file with it.
///
/// What is no regular file (a device, a pipe), or lies where no file can be made, is written in
/// place; a file behind /dev/stdout or /dev/stderr through that descriptor. A signal that ends the
/// process while it writes leaves the temporary file (".xmlpp-" and numbers) behind.
class OutputFile
{
public:
    explicit OutputFile(const char *fileName);
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    /// Null when the file cannot be written.
    FILE *stream() const { return file; }

    /// Whether all that was written has reached the file. Ends the use of the stream.
    bool commit();

private:
    FILE *open(const char *fileName);
    static FILE *openDescriptor(int descriptor);
    static FILE *openInPlace(const char *fileName);
    FILE *openTemporary();

    std::string target;     ///< the file itself, no symbolic link
    std::string temporary;  ///< empty when the file is written in place
    FILE *file;
};
