#include "Terminal.h"

#include "Texts/Shown.h"

#include <QStringList>
#include <QTextStream>

#include <iostream>

#include <unistd.h>

namespace velmorquit::Terminal {

void print(const std::string& text) { std::cout << shownLines(text) << std::flush; }

void printJson(const std::string& json) { std::cout << shownJson(json) << '\n' << std::flush; }

void complain(const std::string& why) {
    std::cerr << "velmorctl: " << shownLines(why) << '\n' << std::flush;
}

bool hasUser() { return ::isatty(STDIN_FILENO) != 0; }

bool isAgreed(const std::string& question) {
    print(question + ' ');
    const QString answer = QTextStream(stdin).readLine().trimmed().toLower();
    return QStringList{"s", "si", "sì", "y", "yes"}.contains(answer);
}

} // namespace velmorquit::Terminal
