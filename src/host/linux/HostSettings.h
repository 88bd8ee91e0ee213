#pragma once

#include "host/Export.h"

#include <memory>
#include <string>

/// The program's settings of the host classes. They are made before a controller starts and undone after the last one
/// is gone; the calls themselves may come from any thread.
namespace sensorhost {

class ClockSource;

/// The folder under which all files of the device live: parameter files, logs, XML, and the absolute paths within
/// sy_system lines. Empty, the start value, stands for the machine's own root. Under a root the missing parent folders
/// of files that are written are made. Serial ports and GPIO chips are always the machine's own.
SENSORHOST_API void setRootFolder(const std::string& folder);
SENSORHOST_API std::string getRootFolder();

/// Where a path of the device lies on this machine. A relative path stays as it is; ".." does not lead out of the root.
SENSORHOST_API std::string hostPath(const std::string& devicePath);

/// Lets a clock of the program's own replace the machine's; null brings the machine's back. The calling thread takes
/// part in the clock until it installs another one, so the same thread has to do both.
SENSORHOST_API void installClock(std::shared_ptr<ClockSource> clock);

/// What opens of a file are refused as if its rights forbade them, to the superuser too: those that only read, those
/// that write, or both. A program sees by it what it does about files that are there and out of its reach.
enum class AccessDenial { None, Reading, Writing, Both };

/// Forbids a file of the device, under the root in force, to BRFile, BRLogger and the XML classes: open and init give
/// 0, a log in use loses its lines; isExist sees the file all the same. None allows it again. Shell lines and what is
/// open are not held up.
SENSORHOST_API void denyAccess(const std::string& devicePath, AccessDenial denial);
/// What is forbidden of a file of this machine.
SENSORHOST_API AccessDenial deniedAccess(const std::string& hostFile);

using RebootHandler = int (*)(const char* reason, void* context);

/// What SystemHelper::rebootDevice calls. Null brings back the start value, which reports the reason on stderr,
/// restarts nothing and gives 0: a program that is to restart its machine has to say how.
SENSORHOST_API void setRebootHandler(RebootHandler handler, void* context);

} // namespace sensorhost
