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

bool isUsable(const ModuleConfigure& record) {
    return record.getModuleId() >= SensorFile::FirstModuleId && record.getModuleId() <= SensorFile::LastModuleId;
}

} // namespace

ModuleFolder::ModuleFolder(const ModuleSelection& selection) {
    ModuleSelection absolute = selection;
    absolute.folder = std::filesystem::absolute(selection.folder).lexically_normal().string();
    if (absolute.folder.size() > 1 && absolute.folder.back() == '/')
        absolute.folder.pop_back();
    select(absolute);
    m_File.setModuleConfigFileName(listPath(absolute));
    m_File.setSensorConfigFilePath(absolute.folder + "/sensorConfig");
    m_File.setMergeReport(&m_Report);
    ConsoleCapture console;
    m_bTexts = m_File.init(absolute.product, absolute.board) != 0;
    for (const std::string& line : console.finish())
        if (!line.starts_with(Success))
            m_Complaints.push_back(line);
}

void ModuleFolder::select(const ModuleSelection& selection) {
    const std::string path = listPath(selection);
    if (!std::filesystem::exists(path))
        throw Failure(Trouble, path + ": there is no such file",
                      {"try: --config with the folder that holds moduleConfig.xml and sensorConfig"});
    std::vector<ModuleConfigure> all;
    if (!ModuleConfigureParser::parse(path, selection.product, selection.board, m_Records) ||
        !ModuleConfigureParser::parse(path, "", "", all))
        throw Failure(Trouble, path + ": cannot be read as a list of modules",
                      {"try: is it well-formed XML, in UTF-8, of at most 1 MiB?"});
    const auto last = std::find_if(m_Records.rbegin(), m_Records.rend(), isUsable);
    if (last != m_Records.rend()) {
        m_nChosen = static_cast<std::size_t>(m_Records.rend() - last) - 1;
        return;
    }
    const bool isSelected = !selection.product.empty() || !selection.board.empty();
    if (isSelected && std::any_of(all.begin(), all.end(), isUsable))
        throw Failure(Usage,
                      path + ": no module fits --product '" + selection.product + "' --board '" + selection.board + "'",
                      {"try: sensorctl ui --config " + selection.folder + ", for all that are there"});
    throw Failure(Trouble, path + ": no module has an id from " + std::to_string(SensorFile::FirstModuleId) + " to " +
                               std::to_string(SensorFile::LastModuleId));
}

} // namespace sensorctl
