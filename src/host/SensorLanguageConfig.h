#pragma once

#include "host/Export.h"

#include <string>
#include <utility>
#include <vector>

/// One language of the web interface: its id and the folder of its files.
class SensorLanguageConfig {
public:
    SensorLanguageConfig() = default;
    SensorLanguageConfig(int languageId, std::string folderName)
        : m_nLanguageId(languageId), m_strFolderName(std::move(folderName)) {}

    int getLanguageId() const { return m_nLanguageId; }
    const std::string& getFolderName() const { return m_strFolderName; }

private:
    int m_nLanguageId = 0;
    std::string m_strFolderName;
};

/// Reads the list of languages.
class SENSORHOST_API SensorLanguageConfigParser {
public:
    /// Appends the languages of the file in file order. 1, or 0 if the file cannot be read.
    static int parse(const std::string& fileName, std::vector<SensorLanguageConfig>& languages);
};
