#pragma once

/// Where the files of this system live on the device.
namespace sensorcontrol::paths {

// Written by the library.
inline constexpr const char* ParameterFolder = "/mnt/mtd/code/config_file";
inline constexpr const char* FactoryFile = "/mnt/mtd/code/config_file/sensor_Factory.cfg";
inline constexpr const char* EspecialFile = "/mnt/mtd/code/config_file/sensor_Especial.cfg";
inline constexpr const char* SchemeFilePrefix = "/mnt/mtd/code/config_file/sensor"; ///< then the number from 1, ".cfg"
inline constexpr const char* OldParameterFile = "/mnt/mtd/code/config_file/sensor.cfg";
inline constexpr const char* SchemeChoiceFile = "/mnt/mtd/code/config_file/sensor.xml";
inline constexpr const char* LogFolder = "/mnt/mtd/log";
inline constexpr const char* ErrorLog = "/mnt/mtd/log/SensorError.log";
inline constexpr const char* InitLog = "/mnt/mtd/log/SensorInit.log";

// Read by it.
inline constexpr const char* ModuleFolder = "/hd1/moduleConfig";
inline constexpr const char* SchemeCountFile = "/hd1/moduleConfig/sensorAbility.xml";
inline constexpr const char* ModuleListFile = "/hd1/moduleConfig/moduleConfig.xml";
inline constexpr const char* UiFolder = "/hd1/moduleConfig/sensorConfig";
inline constexpr const char* TuningFile = "/hd1/program/config/ISPParam.xml";
inline constexpr const char* DebugMarker = "/factory_setting/SensorControlDebug";

} // namespace sensorcontrol::paths
