#include "tests/kernel/hands/Message.h"

namespace flashwriter::kernel {

namespace {

std::string escaped(const std::string& word) {
    std::string text;
    for (const char letter : word) {
        switch (letter) {
        case '\n':
            text += "\\n";
            break;
        case '\t':
            text += "\\t";
            break;
        case '\\':
            text += "\\\\";
            break;
        default:
            text += letter;
        }
    }
    return text;
}

char unescaped(char letter) {
    return letter == 'n' ? '\n' : letter == 't' ? '\t' : letter;
}

} // namespace

std::string lineOf(const Words& words) {
    std::string line;
    for (const std::string& word : words) {
        line += escaped(word) + '\t';
    }
    line.pop_back();
    return line;
}

Words wordsOf(const std::string& line) {
    Words words{""};
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\t') {
            words.emplace_back();
        } else if (line[i] == '\\' && i + 1 < line.size()) {
            words.back() += unescaped(line[++i]);
        } else {
            words.back() += line[i];
        }
    }
    return words;
}

} // namespace flashwriter::kernel
