#pragma once

#include "host/Export.h"

class SENSORHOST_API DiskManager {
public:
    /// 1 if the path names a file that is there.
    static int isFileExist(const char* path);
};
