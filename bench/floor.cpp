// What any program that reads and writes a document pays: the file is read into memory, every
// byte is looked at once, and as many bytes are written.
//
//     floor INPUT OUTPUT

#include <algorithm>
#include <cstdio>
#include <memory>

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    FILE *input = fopen(argv[1], "rb");
    if (!input || fseek(input, 0, SEEK_END) != 0)
        return 1;
    const long size = ftell(input);
    rewind(input);
    if (size < 0)
        return 1;
    const auto length = static_cast<size_t>(size);
    const std::unique_ptr<char[]> bytes(new char[length]);
    if (fread(bytes.get(), 1, length, input) != length)
        return 1;
    fclose(input);

    // The count decides the exit status, so that the compiler cannot leave the scan out.
    const auto tags = std::count(bytes.get(), bytes.get() + length, '<');

    FILE *output = fopen(argv[2], "wb");
    if (!output || fwrite(bytes.get(), 1, length, output) != length || fclose(output) != 0)
        return 1;
    return tags > 0 ? 0 : 1;
}
