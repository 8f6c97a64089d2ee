#include "Linux/Text/Utf8.h"

#include <QString>

#include <glib.h>

namespace velmorquit {

std::string utf8(std::string_view bytes) {
    const auto size = static_cast<qsizetype>(bytes.size());
    if (g_utf8_validate(bytes.data(), size, nullptr))
        return std::string(bytes);
    return QString::fromLatin1(bytes.data(), size).toStdString();
}

} // namespace velmorquit
