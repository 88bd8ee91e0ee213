#include "controller/SchemeFiles.h"

#include "controller/Journal.h"
#include "controller/Recorder.h"
#include "controller/SchemeParameters.h"
#include "host/BRFile.h"
#include "host/DevicePaths.h"
#include "host/SensorParameterParser.h"
#include "host/SystemHelper.h"

#include <cstdio>

namespace sensorcontrol {

namespace {

using FileState = OperationReport::FileState;

constexpr int ShellTimeLimit = 30; // seconds

void runShell(const std::string& command) { sy_system(command.c_str(), ShellTimeLimit); }

/// In a sentence: "sensor1.cfg was ...". Null for what is no damage.
const char* damageText(FileState state) {
    switch (state) {
    case FileState::Unreadable:
        return "not readable";
    case FileState::Empty:
        return "empty";
    case FileState::Broken:
        return "broken";
    default:
        return nullptr;
    }
}

} // namespace

SensorConfigFile* SchemeFiles::find(int scheme) const {
    const bool isThere = scheme >= 0 && static_cast<std::size_t>(scheme) < m_Schemes.size();
    return isThere ? m_Schemes[static_cast<std::size_t>(scheme)].get() : nullptr;
}

FileState SchemeFiles::inspect(SensorConfigFile& file) {
    std::string text;
    if (!file.isExist())
        return FileState::Missing;
    if (!file.readParametersFromFile(text))
        return FileState::Unreadable;
    std::map<int, int> values;
    if (!SensorParameterParser::parseSensorParameter(text, values))
        return FileState::Broken;
    return values.empty() ? FileState::Empty : FileState::Sound;
}

FileState SchemeFiles::note(SensorConfigFile& file, FileState state, bool isMadeAnew, const char* what) {
    const recorder::LogOnly stateTellsIt;
    if (const char* damage = damageText(state))
        m_Journal.init("%s was %s, %s", file.getFilePath().c_str(), damage, what);
    if (OperationReport* report = recorder::report(); report != nullptr && state != FileState::Sound)
        report->files.push_back({file.getFilePath(), state, isMadeAnew});
    return state;
}

void SchemeFiles::removeOutdated(int version, int version2) {
    m_FactoryState = inspect(m_Factory);
    const std::string removeFactoryFile = std::string("rm ") + paths::FactoryFile;
    if (!m_Factory.isVersionEqual(version)) {
        std::puts("sensor configure version 1 changed delete configure files ");
        runShell(removeFactoryFile);
        runShell(std::string("rm ") + paths::OldParameterFile);
    } else if (!m_Factory.isVersion2Equal(version2)) {
        std::puts("sensor configure version 2 changed delete configure files ");
        runShell(removeFactoryFile);
    } else {
        return;
    }
    if (m_FactoryState == FileState::Sound)
        m_FactoryState = FileState::OtherVersion;
}

void SchemeFiles::createFactoryFile(const std::string& all) {
    const bool isMade = m_Factory.saveParametersToFile(all) != 0;
    if (isMade)
        std::printf("create(%s) success\n", paths::FactoryFile);
    else
        m_Journal.init("create(%s) failed", paths::FactoryFile);
    note(m_Factory, m_FactoryState, isMade, isMade ? "made anew" : "could not be made anew");
    m_FactoryState = FileState::Sound;
}

int SchemeFiles::prepareSchemes(const std::string& all) {
    if (m_Schemes.empty())
        return 0;

    SensorConfigFile& first = *m_Schemes.front();
    if (first.isExist()) {
        std::puts("sensor1.cfg has exit");
        align(first, all);
    } else {
        std::puts("sensor1.cfg has not exit");
        if (BRFile::isExist(paths::OldParameterFile)) {
            std::printf("%s exit\n", paths::OldParameterFile);
            const std::string command = std::string("mv ") + paths::OldParameterFile + " " + first.getFilePath();
            runShell(command);
            std::puts(command.c_str());
            std::printf("strAllParameters=%s\n", all.c_str());
            align(first, all);
        } else {
            std::printf("%s not exit\n", paths::OldParameterFile);
            copyFactoryFile(first.getFilePath());
            note(first, FileState::Missing, first.isExist() != 0, "");
        }
    }

    for (std::size_t i = 1; i < m_Schemes.size(); ++i) {
        SensorConfigFile& file = *m_Schemes[i];
        const FileState state = inspect(file);
        if (state == FileState::Missing || state == FileState::Empty) {
            createDisabledScheme(file);
            note(file, state, file.isExist() != 0, "made anew");
        }
        align(file, all);
    }
    return 1;
}

void SchemeFiles::align(SensorConfigFile& file, const std::string& all) {
    const FileState state = inspect(file);
    const int isAligned = file.modifyIdUnEqualParameters(all);
    if (state == FileState::Empty)
        note(file, state, isAligned != 0, isAligned ? "filled with factory values" : "could not be filled");
    else if (state != FileState::Sound)
        note(file, state, false, "left alone");
    else if (!isAligned)
        m_Journal.init("%s can not be written", file.getFilePath().c_str());
}

void SchemeFiles::copyFactoryFile(const std::string& path) {
    const std::string command = std::string("cp ") + paths::FactoryFile + " " + path;
    runShell(command);
    std::puts(command.c_str());
}

void SchemeFiles::createDisabledScheme(const SensorConfigFile& file) {
    // A power cut between the copy and its change must not leave a scheme that takes part: the file gets its name last.
    SensorConfigFile draft(file.getFilePath() + ".new");
    copyFactoryFile(draft.getFilePath());
    if (!draft.modifyParameter(scheme::EnableId, 0)) {
        m_Journal.init("%s can not be made", file.getFilePath().c_str());
        return;
    }
    runShell("mv " + draft.getFilePath() + " " + file.getFilePath());
}

std::map<int, int> SchemeFiles::values(int scheme) const {
    std::map<int, int> values;
    if (SensorConfigFile* file = find(scheme))
        file->readParametersFromFile(values);
    return values;
}

int SchemeFiles::save(int scheme, const std::string& common, const std::string& especial) {
    if (!m_Factory.modifyParameters(especial)) {
        m_Journal.error("flush failed: %s", m_Factory.getFilePath().c_str());
        return 0;
    }
    std::printf("save param %d\n", scheme + 1);
    SensorConfigFile* file = find(scheme);
    if (file == nullptr) {
        m_Journal.error("flush failed: no parameter scheme %d", scheme);
        return 0;
    }
    for (auto [target, text] : {std::pair(file, common + especial), std::pair(&m_Especial, especial)}) {
        if (!target->saveParametersToFile(text)) {
            m_Journal.error("flush failed: %s", target->getFilePath().c_str());
            return 0;
        }
    }
    return 1;
}

void SchemeFiles::saveFactoryText(const std::string& text) {
    // Disabled in the one write: a power cut after a first one would leave every scheme enabled.
    std::map<int, int> disabled;
    SensorParameterParser::parseSensorParameter(text, disabled);
    if (const auto flag = disabled.find(scheme::EnableId); flag != disabled.end())
        flag->second = 0;
    for (std::size_t i = 0; i < m_Schemes.size(); ++i)
        i == 0 ? m_Schemes[i]->saveParametersToFile(text) : m_Schemes[i]->saveParametersToFile(disabled);
}

} // namespace sensorcontrol
