#include "params/SensorConfigFile.h"

#include "host/BRFile.h"
#include "host/ScopedLock.h"
#include "host/SensorParameterParser.h"

#include <algorithm>
#include <cstdio>

using sensorhost::ScopedLock;

namespace {

/// More than any parameter set has. A file beyond it is none of ours, and must not cost the memory of the device.
constexpr long long LargestFile = 1 << 20;

bool isVersionId(int id) { return id == SensorConfigFile::VersionId || id == SensorConfigFile::Version2Id; }

} // namespace

SensorConfigFile::SensorConfigFile(const std::string& path) : m_strFilePath(path) {}

int SensorConfigFile::isExist() const { return BRFile::isExist(m_strFilePath.c_str()); }

int SensorConfigFile::readParametersFromFile(std::string& text) {
    ScopedLock lock(m_FileMutex);
    BRFile file;
    if (!file.open(m_strFilePath.c_str(), BRFile::Read))
        return 0;
    const long long length = file.getLength();
    std::string contents;
    if (length > 0 && length <= LargestFile)
        contents.resize(static_cast<std::size_t>(length));
    if (static_cast<long long>(contents.size()) != length ||
        file.read(contents.data(), static_cast<int>(length)) != static_cast<int>(length)) {
        std::printf("________read file(%s) failed\n", m_strFilePath.c_str());
        return 0;
    }
    contents.resize(std::min(contents.find('\0'), contents.size()));
    text = contents;
    return 1;
}

int SensorConfigFile::readParametersFromFile(std::map<int, int>& values) {
    std::string text;
    return readParametersFromFile(text) && SensorParameterParser::parseSensorParameter(text, values) ? 1 : 0;
}

int SensorConfigFile::saveParametersToFile(const std::string& text) {
    ScopedLock lock(m_FileMutex);
    BRFile file;
    if (!file.open(m_strFilePath.c_str(), BRFile::Replace)) {
        std::printf("________open file(%s) failed\n", m_strFilePath.c_str());
        return 0;
    }
    std::map<int, int> values;
    if (!SensorParameterParser::parseSensorParameter(text, values))
        return 0;

    std::string output = text;
    const auto version = values.find(VersionId);
    const auto version2 = values.find(Version2Id);
    if (version != values.end() || version2 != values.end()) {
        if (version != values.end())
            version->second = m_nVersion;
        if (version2 != values.end())
            version2->second = m_nVersion2;
        output = SensorParameterParser::createSensorParameterString(values);
    } else {
        if (m_nVersion != NoVersion)
            output += SensorParameterParser::createSensorParameterString({{VersionId, m_nVersion}});
        if (m_nVersion2 != NoVersion)
            output += SensorParameterParser::createSensorParameterString({{Version2Id, m_nVersion2}});
    }

    if (file.write(output.data(), static_cast<int>(output.size())) == -1) {
        std::printf("________write file (%s) failed\n", m_strFilePath.c_str());
        return 0;
    }
    return 1;
}

int SensorConfigFile::saveParametersToFile(const std::map<int, int>& values) {
    return saveParametersToFile(SensorParameterParser::createSensorParameterString(values));
}

int SensorConfigFile::modifyParameters(const std::map<int, int>& values) {
    std::map<int, int> stored;
    if (!readParametersFromFile(stored))
        return 0;
    for (const auto& [id, value] : values) {
        const auto found = stored.find(id);
        if (!isVersionId(id) && found != stored.end())
            found->second = value;
    }
    return saveParametersToFile(stored);
}

int SensorConfigFile::modifyParameters(const std::string& text) {
    std::map<int, int> values;
    return SensorParameterParser::parseSensorParameter(text, values) ? modifyParameters(values) : 0;
}

int SensorConfigFile::modifyIdUnEqualParameters(const std::map<int, int>& values) {
    std::map<int, int> stored;
    if (!readParametersFromFile(stored))
        return 0;
    std::map<int, int> aligned;
    for (const auto& [id, value] : values) {
        if (isVersionId(id))
            continue;
        const auto found = stored.find(id);
        aligned.emplace(id, found != stored.end() ? found->second : value);
    }
    return saveParametersToFile(aligned) ? 1 : 0;
}

int SensorConfigFile::modifyIdUnEqualParameters(const std::string& text) {
    std::map<int, int> values;
    return SensorParameterParser::parseSensorParameter(text, values) ? modifyIdUnEqualParameters(values) : 0;
}

int SensorConfigFile::modifyParameter(int id, int value) {
    std::map<int, int> stored;
    if (!readParametersFromFile(stored))
        return 0;
    const auto found = stored.find(id);
    if (found != stored.end())
        found->second = value;
    return saveParametersToFile(stored);
}

int SensorConfigFile::readParameterById(int id, int& value) {
    std::map<int, int> stored;
    if (!readParametersFromFile(stored))
        return 0;
    const auto found = stored.find(id);
    if (found == stored.end())
        return 0;
    value = found->second;
    return 1;
}

int SensorConfigFile::isVersionEqual(int version) { return isStoredVersionEqual(VersionId, version); }

int SensorConfigFile::isVersion2Equal(int version) { return isStoredVersionEqual(Version2Id, version); }

int SensorConfigFile::isStoredVersionEqual(int id, int version) {
    int stored = 0;
    if (!readParameterById(id, stored))
        return 0;
    return stored == AnyVersion || stored == version ? 1 : 0;
}
