#include "ModuleFolder.h"

#include "ConsoleCapture.h"
#include "Failure.h"
#include "host/ModuleConfigureParser.h"

#include <algorithm>
#include <filesystem>

namespace sensorctl {

namespace {

constexpr const char* Success = "SensorFile::init  successs";

std::string listPath(const ModuleSelection& selection) { return selection.folder + "/moduleConfig.xml"; }

bool isModule(const ModuleConfigure& record) { return SensorFile::isModuleId(record.getModuleId()); }

/// Why the library found no module.
Failure noModule(const ModuleSelection& selection) {
    const std::string path = listPath(selection);
    std::vector<ModuleConfigure> all;
    ModuleConfigureParser::parse(path, "", "", all);
    const bool isSelected = !selection.product.empty() || !selection.board.empty();
    if (isSelected && std::any_of(all.begin(), all.end(), isModule))
        return {Usage,
                path + ": no module fits --product '" + selection.product + "' --board '" + selection.board + "'",
                {"try: sensorctl ui --config " + selection.folder + ", for all that are there"}};
    return {Trouble, path + ": no module has an id from " + std::to_string(SensorFile::FirstModuleId) + " to " +
                         std::to_string(SensorFile::LastModuleId)};
}

} // namespace

ModuleFolder::ModuleFolder(const ModuleSelection& selection) {
    ModuleSelection absolute = selection;
    absolute.folder = std::filesystem::absolute(selection.folder).lexically_normal().string();
    if (absolute.folder.size() > 1 && absolute.folder.back() == '/')
        absolute.folder.pop_back();
    const std::string path = listPath(absolute);
    if (!std::filesystem::exists(path))
        throw Failure(Trouble, path + ": there is no such file",
                      {"try: --config with the folder that holds moduleConfig.xml and sensorConfig"});
    if (!ModuleConfigureParser::parse(path, absolute.product, absolute.board, m_Records))
        throw Failure(Trouble, path + ": cannot be read as a list of modules",
                      {"try: is it well-formed XML, in UTF-8, of at most 1 MiB?"});
    load(absolute);

    // Behind the library's choice stand only records without an id of a module.
    const auto chosen = std::find_if(m_Records.rbegin(), m_Records.rend(), isModule);
    if (chosen == m_Records.rend())
        throw noModule(absolute);
    m_nChosen = static_cast<std::size_t>(m_Records.rend() - chosen) - 1;
}

void ModuleFolder::load(const ModuleSelection& selection) {
    m_File.setModuleConfigFileName(listPath(selection));
    m_File.setSensorConfigFilePath(selection.folder + "/sensorConfig");
    m_File.setMergeReport(&m_Report);
    ConsoleCapture console;
    m_bTexts = m_File.init(selection.product, selection.board) != 0;
    for (const std::string& line : console.finish())
        if (!line.starts_with(Success))
            m_Complaints.push_back(line);
}

} // namespace sensorctl
