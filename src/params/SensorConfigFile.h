#pragma once

#include "host/BRMutex.h"
#include "host/Export.h"

#include <atomic>
#include <map>
#include <string>

/// A parameter string in a file, with two version entries. 1 is success, 0 failure. A lock covers each whole read and
/// each whole write; an operation that reads and then writes is not atomic as a whole.
class SENSORCONTROL_API SensorConfigFile {
public:
    static constexpr int NoVersion = -10000; ///< no version entry is written
    static constexpr int AnyVersion = 999;   ///< a stored version that equals every other
    static constexpr int VersionId = 10000;  ///< reserved ids of the version entries
    static constexpr int Version2Id = 10001;

    explicit SensorConfigFile(const std::string& path);
    SensorConfigFile(const SensorConfigFile&) = delete;
    SensorConfigFile& operator=(const SensorConfigFile&) = delete;

    void setVersion(int version) { m_nVersion = version; }
    void setVersion2(int version) { m_nVersion2 = version; }
    const std::string& getFilePath() const { return m_strFilePath; }
    int isExist() const;

    /// The file's text up to its first zero byte.
    int readParametersFromFile(std::string& text);
    /// 0 also if the text is no parameter string. Adds to the map.
    int readParametersFromFile(std::map<int, int>& values);

    /// Replaces the file's contents. Version entries that the text has take this object's versions; a text without
    /// any gets those that this object has, behind it. 0 if the text is no parameter string.
    int saveParametersToFile(const std::string& text);
    int saveParametersToFile(const std::map<int, int>& values);

    /// New values for the ids that the file has; others and the version entries are passed over.
    int modifyParameters(const std::map<int, int>& values);
    int modifyParameters(const std::string& text);

    /// Brings the file's ids into line with the argument's: ids that the file has keep the file's value, ids that it
    /// lacks take the argument's, all others go.
    int modifyIdUnEqualParameters(const std::map<int, int>& values);
    int modifyIdUnEqualParameters(const std::string& text);

    /// A new value for one id that the file has.
    int modifyParameter(int id, int value);
    int readParameterById(int id, int& value);

    /// 1 if the file's version entry equals the argument or is AnyVersion; 0 also without a file or an entry.
    int isVersionEqual(int version);
    int isVersion2Equal(int version);

private:
    int isStoredVersionEqual(int id, int version);

    std::atomic<int> m_nVersion{NoVersion};
    std::atomic<int> m_nVersion2{NoVersion};
    const std::string m_strFilePath;
    BRMutex m_FileMutex;
};
