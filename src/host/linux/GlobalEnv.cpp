#include "host/GlobalEnv.h"

GlobalEnv* GlobalEnv::getInstance() {
    static GlobalEnv instance;
    return &instance;
}
