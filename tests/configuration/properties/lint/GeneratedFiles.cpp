#include "configuration/properties/lint/GeneratedFiles.hpp"

#include <random>

namespace test {

namespace {

// Characters with a meaning, ordinary ones, and combinations that few random characters make.
const std::string pieces[] = {"a",
                              "b",
                              "A",
                              "k",
                              ":",
                              "=",
                              "#",
                              "!",
                              "\\",
                              "\\",
                              "u",
                              "0",
                              "4",
                              "f",
                              " ",
                              " ",
                              "\t",
                              "\f",
                              "\r",
                              "\n",
                              "\n",
                              "\n",
                              "\r\n",
                              "\\\n",
                              "\\\r\n",
                              "\\\r",
                              "\\u0061",
                              "\\u00",
                              "\\u20a",
                              "\\ud83d",
                              "\\ude00",
                              "\\ud83d\\ude00",
                              "\\t",
                              "\\n",
                              "\\f",
                              "\\:",
                              "\\=",
                              "\\ ",
                              "\\#",
                              "\\\\",
                              "a=b\n",
                              "a=b\n",
                              "key : ",
                              " = ",
                              "\n#",
                              "\n!",
                              "\n ",
                              "=\n",
                              "\xC3\xA9",
                              "\xF0\x9F\x98\x80",
                              "\xEF\xBB\xBF",
                              "# c\n",
                              "==",
                              "a\n",
                              "\x7F",
                              std::string(1, '\0'),
                              "\"",
                              "${a}",
                              "\\\n  b",
                              "\\\n\t",
                              "\\\n\n"};

// Whole lines: most files should have many small differences rather than a great one.
const std::string lines[] = {"a=b",
                             "a = b",
                             "a: b",
                             "a b",
                             "b=1",
                             "b=2",
                             "key=value",
                             "key=",
                             "key",
                             "key ",
                             " key=b",
                             "\tkey",
                             "key==value",
                             "key = =b",
                             "key =  value",
                             "key =\t\t",
                             "key =  ",
                             "key=\\tx",
                             "a=C:\\temp",
                             "# note",
                             " # note",
                             "! note",
                             "\f# note",
                             "",
                             "   ",
                             "\f",
                             "\t",
                             "key=one\\\n  two",
                             "key=one\\\n\ttwo",
                             "key=one\\\n\n  two",
                             "key=one\\",
                             "key\\\n=b",
                             "key \\\n=b",
                             "key \\\n= b",
                             "a=\\u0041",
                             "a=\\u41",
                             "a=\\u00e9",
                             "a=\\ud83d",
                             "a=\\ud83d\\ude00",
                             "\\u0061=b",
                             "\\tkey=b",
                             "=b",
                             "= b",
                             "==b",
                             "  = b",
                             "k\fy=b",
                             "\fkey=b",
                             "key\f=b",
                             "key=\fb",
                             "key \f= b",
                             "KEY=1",
                             "a=\xC3\xA9",
                             "\\\na=b",
                             "\\",
                             "a=b\\\n#c",
                             "a=b\\\n\\\nc"};

// Lines that both readers read alike, also behind each other.
const std::string plainLines[] = {
    "a=b",   "a = b",     "b: 1",           "b 2",       "key = value", "# note",  "! note",
    "",      "=nameless", "a=one\\\n  two", "key=a\\=b", "key=\\u0041", "a\\:b=c", "a=\xC3\xA9",
    "a=b  ", "key ",      "key=\\ value",   "a=b#c",     "KEY=value",   "\\#a=b"};

class RandomChoice {
public:
    explicit RandomChoice(unsigned seed) : engine(seed) {}

    std::size_t below(std::size_t count) { return engine() % count; }

    template <typename T, std::size_t size>
    const T& oneOf(const T (&items)[size]) {
        return items[below(size)];
    }

private:
    std::mt19937 engine;
};

std::string ofPieces(RandomChoice& random) {
    std::string text;
    for (std::size_t count = random.below(24); count > 0; --count)
        text += random.oneOf(pieces);
    return text;
}

/// Inserts the piece between two characters.
void insertInto(std::string& line, const std::string& piece, RandomChoice& random) {
    std::size_t position = random.below(line.size() + 1);
    while (position < line.size() && (static_cast<unsigned char>(line[position]) & 0xC0) == 0x80)
        ++position;
    line.insert(position, piece);
}

/// Mostly plain lines: most of these files are read alike.
std::string ofPlainLines(RandomChoice& random) {
    std::string text;
    for (std::size_t count = 1 + random.below(6); count > 0; --count)
        text += (random.below(40) == 0 ? random.oneOf(lines) : random.oneOf(plainLines)) + '\n';
    return text;
}

std::string ofLines(RandomChoice& random) {
    const std::string lineBreaks[] = {"\n", "\r\n", "\r"};
    const std::string& lineBreak = lineBreaks[random.below(6) < 4 ? 0 : 1 + random.below(2)];
    std::string text = random.below(30) == 0 ? "\xEF\xBB\xBF" : "";
    const std::size_t count = 1 + random.below(5);
    for (std::size_t i = 0; i < count; ++i) {
        std::string line = random.oneOf(lines);
        if (random.below(8) == 0)
            insertInto(line, random.oneOf(pieces), random);
        text += line;
        if (i + 1 < count || random.below(3) != 0)
            text += lineBreak;
    }
    return text;
}

} // namespace

std::string generatedFile(unsigned seed) {
    RandomChoice random(seed);
    switch (seed % 3) {
    case 0:
        return ofPieces(random);
    case 1:
        return ofLines(random);
    default:
        return ofPlainLines(random);
    }
}

std::string generatedBytes(unsigned seed) {
    const std::string bytes[] = {"\xFF", "\xC3", "\xA9", "\xED\xA0\xBD", "\xF0\x9F", "\\\xC3"};
    RandomChoice random(~seed);
    std::string text = generatedFile(seed);
    for (std::size_t count = 1 + random.below(4); count > 0; --count)
        text.insert(random.below(text.size() + 1), random.oneOf(bytes));
    return text;
}

std::vector<std::string> generatedFiles(unsigned count) {
    std::vector<std::string> files;
    for (unsigned seed = 1; seed <= count; ++seed)
        files.push_back(generatedFile(seed));
    return files;
}

} // namespace test
