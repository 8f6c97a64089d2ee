#include "Codecs/PropertyList.h"

#include "Codecs/BinaryPropertyList.h"
#include "Codecs/PropertyListLimits.h"
#include "Codecs/XmlPropertyList.h"

namespace velmorquit::PropertyList {

std::string encode(const Value& value) { return encodeXml(value); }

std::optional<Value> decode(std::string_view list) {
    if (list.size() > largestList)
        return std::nullopt;
    return isBinary(list) ? decodeBinary(list) : decodeXml(list);
}

} // namespace velmorquit::PropertyList
