// Times the reader and the expressions inside one process, without its start and without
// directives: medians of rounds in which they take turns, in nanoseconds of processor time.

#include "simpleexpressionparser.h"
#include "xmldocument.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <string>
#include <vector>

namespace
{

constexpr int rounds = 15;
constexpr int elements = 40'000;
constexpr int repetitions = 5'000;

struct Sample {
    const char *text;
    int tokens;
};

/// What documents calculate: sizes, addresses, masks and conditions.
constexpr Sample samples[] = {
    {"512 * 1024", 3},
    {"12 * 4 + (17 % 1000) + 50 % 7 - 1", 13},
    {"(4096 > 512) && (4096 != 0)", 11},
    {"0x08000000 + 524288", 3},
    {"((64 + 15) / 16) * 16", 11},
    {"\"arm\" == \"arm\"", 3},
    {"0b101 | 1 << 7", 5},
};

/// Takes what the work comes to, so that none of it can be left out.
volatile std::uint64_t result;

std::string typicalDocument()
{
    std::string text = "<project>\n";
    for (int i = 0; i < elements; ++i) {
        const std::string number = std::to_string(i);
        text.append("  <file id=\"").append(number);
        text.append("\" name=\"sources/module/unit").append(number);
        text.append(".cpp\" state=\"release &amp; debug\"/>\n");
    }
    return text.append("</project>\n");
}

template <typename Work>
double nanoseconds(const Work &work)
{
    const std::clock_t before = std::clock();
    work();
    return double(std::clock() - before) * 1e9 / CLOCKS_PER_SEC;
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

double timeReader(std::string &text)
{
    XMLDocument document(true);
    return nanoseconds([&] { result = document.parse(text.data()); });
}

double timeExpressions()
{
    SimpleExpressionParser *parser = SimpleExpressionParser::instance();
    return nanoseconds([parser] {
        for (int i = 0; i < repetitions; ++i) {
            for (const Sample &sample : samples) {
                bool ok = false;
                result = parser->evaluateUnsigned(sample.text, &ok);
            }
        }
    });
}

}  // namespace

int main()
{
    std::string text = typicalDocument();
    std::vector<double> reader;
    std::vector<double> expressions;
    for (int round = 0; round < rounds; ++round) {
        reader.push_back(timeReader(text));
        expressions.push_back(timeExpressions());
    }
    int tokens = 0;
    for (const Sample &sample : samples)
        tokens += sample.tokens;
    const double once = median(expressions) / repetitions;
    std::printf("reader: %.3f ns a byte\n", median(reader) / double(text.size()));
    std::printf("expressions: %.1f ns each, %.2f ns a token\n", once / double(std::size(samples)),
                once / tokens);
    return 0;
}
