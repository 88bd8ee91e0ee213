#pragma once

#include <memory>
#include <string>

class TiXmlDocument;

namespace sensorhost {

/// The document of an XML file of the device, null if there is none: a missing or unreadable file, one beyond the
/// limits of XmlShape, malformed text, no root. A text ends at its first zero byte.
std::shared_ptr<TiXmlDocument> loadXml(const std::string& path);

/// Writes the document. False, and the old file stands, if it cannot be written or would not be read as this document.
bool saveXml(const std::string& path, const TiXmlDocument& document);

} // namespace sensorhost
