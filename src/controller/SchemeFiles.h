#pragma once

#include "controller/OperationReport.h"
#include "params/SensorConfigFile.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace sensorcontrol {

class Journal;

/// The parameter files of a controller: factory values, especial values and one file for each scheme. What a start
/// makes of them, what a flush and a reset write. Damage is told to the journal and to the report. Results are 1 and 0.
class SchemeFiles {
public:
    using Schemes = std::vector<std::unique_ptr<SensorConfigFile>>;

    /// The files belong to the controller.
    SchemeFiles(Journal& journal, SensorConfigFile& factory, SensorConfigFile& especial, const Schemes& schemes)
        : m_Journal(journal), m_Factory(factory), m_Especial(especial), m_Schemes(schemes) {}

    /// The file of a scheme; null for an index outside the list.
    SensorConfigFile* find(int scheme) const;

    /// A file of another version of the configuration goes, so that the start makes it anew.
    void removeOutdated(int version, int version2);
    bool hasFactoryFile() const { return m_Factory.isExist() != 0; }
    void createFactoryFile(const std::string& all);
    void alignFactoryFile(const std::string& all) { align(m_Factory, all); }
    /// Makes the scheme files that are missing and gives each exactly the ids of `all`. 0 without schemes.
    int prepareSchemes(const std::string& all);

    /// The values of a scheme's file; those that could be read at all.
    std::map<int, int> values(int scheme) const;

    /// The especial values to the factory file and to their own, all values to the scheme's.
    int save(int scheme, const std::string& common, const std::string& especial);
    /// The factory's text for every scheme; all but the first end up disabled.
    void saveFactoryText(const std::string& text);

private:
    static OperationReport::FileState inspect(SensorConfigFile& file);
    OperationReport::FileState note(SensorConfigFile& file, OperationReport::FileState state, bool isMadeAnew,
                                    const char* what);
    void align(SensorConfigFile& file, const std::string& all);
    void copyFactoryFile(const std::string& path);
    void createDisabledScheme(const SensorConfigFile& file);

    Journal& m_Journal;
    SensorConfigFile& m_Factory;
    SensorConfigFile& m_Especial;
    const Schemes& m_Schemes;
    OperationReport::FileState m_FactoryState = OperationReport::FileState::Sound; ///< as the start found it
};

} // namespace sensorcontrol
