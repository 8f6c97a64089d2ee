#include "Codecs/PropertyListLimits.h"
#include "Codecs/XmlPropertyList.h"

#include <QByteArray>
#include <array>
#include <charconv>
#include <cstdio>

namespace velmorquit::PropertyList {
namespace {

class Writer {
public:
    void write(const Value& value, int nesting) {
        if (nesting > deepestNesting)
            return;
        if (const auto* flag = value.as<bool>())
            line(nesting) += *flag ? "<true/>\n" : "<false/>\n";
        else if (const auto* integer = value.as<std::int64_t>())
            element(nesting, "integer", std::to_string(*integer));
        else if (const auto* real = value.as<double>())
            element(nesting, "real", realText(*real));
        else if (const auto* text = value.as<std::string>())
            element(nesting, "string", escaped(*text));
        else if (const auto* date = value.as<WallTime>())
            element(nesting, "date", dateText(*date));
        else if (const auto* data = value.as<Value::Data>())
            element(nesting, "data", dataText(*data));
        else if (const auto* array = value.as<Value::Array>())
            write(*array, nesting);
        else
            write(*value.as<Value::Dictionary>(), nesting);
    }

    std::string list;

private:
    std::string& line(int nesting) { return list.append(static_cast<std::size_t>(nesting), '\t'); }

    void element(int nesting, const char* name, const std::string& content) {
        line(nesting).append("<").append(name).append(">").append(content);
        list.append("</").append(name).append(">\n");
    }

    void write(const Value::Array& array, int nesting) {
        line(nesting) += "<array>\n";
        for (const Value& element : array)
            write(element, nesting + 1);
        line(nesting) += "</array>\n";
    }

    void write(const Value::Dictionary& dictionary, int nesting) {
        line(nesting) += "<dict>\n";
        for (const auto& [key, value] : dictionary) {
            if (nesting == deepestNesting)
                break;
            element(nesting + 1, "key", escaped(key));
            write(value, nesting + 1);
        }
        line(nesting) += "</dict>\n";
    }

    static std::string escaped(const std::string& text) {
        std::string safe;
        for (const char byte : text) {
            switch (byte) {
            case '&':
                safe += "&amp;";
                break;
            case '<':
                safe += "&lt;";
                break;
            case '>':
                safe += "&gt;";
                break;
            case '\r':
                // Readers treat it as the end of a line.
                safe += "&#13;";
                break;
            default:
                safe += byte;
            }
        }
        return safe;
    }

    static std::string realText(double real) {
        std::array<char, 32> digits{};
        return {digits.data(), std::to_chars(digits.begin(), digits.end(), real).ptr};
    }

    static std::string dateText(WallTime date) {
        using namespace std::chrono;
        const auto second = floor<seconds>(date);
        const auto day = floor<days>(second);
        const year_month_day calendar(day);
        const hh_mm_ss time(second - day);
        std::array<char, 80> text{};
        std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ",
                      static_cast<int>(calendar.year()), static_cast<unsigned>(calendar.month()),
                      static_cast<unsigned>(calendar.day()), static_cast<int>(time.hours().count()),
                      static_cast<int>(time.minutes().count()),
                      static_cast<int>(time.seconds().count()));
        return text.data();
    }

    static std::string dataText(const Value::Data& data) {
        return QByteArray(reinterpret_cast<const char*>(data.data()),
                          static_cast<qsizetype>(data.size()))
            .toBase64()
            .toStdString();
    }
};

} // namespace

std::string encodeXml(const Value& value) {
    Writer writer;
    writer.list = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                  "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                  "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                  "<plist version=\"1.0\">\n";
    writer.write(value, 0);
    writer.list += "</plist>\n";
    return std::move(writer.list);
}

} // namespace velmorquit::PropertyList
