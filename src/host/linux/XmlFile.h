#pragma once

#include <memory>
#include <string>

class TiXmlDocument;

namespace sensorhost {

/// The document of an XML file of the device, null if there is none: a missing or unreadable file, one beyond the
/// limits of XmlShape, malformed text, no root. A text ends at its first zero byte.
std::shared_ptr<TiXmlDocument> loadXml(const std::string& path);

/// Writes the document. False if the file cannot be written: then the old one stands.
bool saveXml(const std::string& path, const TiXmlDocument& document);

} // namespace sensorhost
