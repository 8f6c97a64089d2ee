#include "CommandLine.h"

#include <QCommandLineParser>

namespace velmorquit {
namespace {

struct Options {
    QCommandLineOption help{QStringLiteral("help")};
    QCommandLineOption list{QStringLiteral("list")};
    QCommandLineOption language{QStringLiteral("language"), {}, QStringLiteral("it|en")};
    QCommandLineOption scale{QStringLiteral("scale"), {}, QStringLiteral("1|2")};
    QCommandLineOption out{QStringLiteral("out"), {}, QStringLiteral("FOLDER")};
    QCommandLineOption sheet{QStringLiteral("sheet"), {}, QStringLiteral("FILE")};
};

/// Reads the options' values; says what is wrong with them, empty when nothing is.
std::string readValues(const QCommandLineParser& parser, const Options& options,
                       CommandLine& line) {
    if (parser.isSet(options.language)) {
        const std::string code = parser.value(options.language).toStdString();
        const auto language = languageFromCode(code);
        if (!language)
            return "no language is called " + code;
        line.languages = {*language};
    }
    if (parser.isSet(options.scale)) {
        const int scale = parser.value(options.scale).toInt();
        if (scale != 1 && scale != 2)
            return "the scale is 1 or 2";
        line.scales = {scale};
    }
    if (parser.isSet(options.out))
        line.folder = parser.value(options.out);
    line.sheet = parser.value(options.sheet);
    if (!line.sheet.isEmpty() && (line.languages.size() != 1 || line.scales.size() != 1))
        return "a sheet is in one language and at one scale";
    return {};
}

} // namespace

std::variant<CommandLine, std::string> parseCommandLine(const QStringList& arguments) {
    const Options options;
    QCommandLineParser parser;
    parser.addOptions(
        {options.help, options.list, options.language, options.scale, options.out, options.sheet});
    // The parser takes the first argument for the program's name.
    if (!parser.parse(QStringList(QString()) + arguments))
        return parser.errorText().toStdString();
    CommandLine line;
    line.wantsHelp = parser.isSet(options.help);
    line.wantsList = parser.isSet(options.list);
    line.names = parser.positionalArguments();
    if (std::string wrong = readValues(parser, options, line); !wrong.empty())
        return wrong;
    return line;
}

std::string usage() {
    return "Draws the program's windows, in states that are always the same, to PNG files.\n"
           "\n"
           "  velmorquit-gallery [OPTION...] [NAME...]\n"
           "\n"
           "  --list               the names of the pictures\n"
           "  --language it|en     in one language; in both without it\n"
           "  --scale 1|2          at one scale; at both without it\n"
           "  --out FOLDER         where it/NAME.png, it/NAME@2x.png, en/NAME.png ... go;\n"
           "                       \"gallery\" without it\n"
           "  --sheet FILE         one picture with all of them on it, instead of many;\n"
           "                       needs a language and a scale\n";
}

} // namespace velmorquit
