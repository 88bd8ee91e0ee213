#pragma once

// The functions of the platform's imaging libraries that this system calls: the exposure library, the image sensor
// library and the pipeline library. Nothing may be called before DRV_init, ALG_sysInit and brewfi_init have run.

#include "host/Export.h"

#include <cstdint>

/// The pipeline's edge-enhancement record: 20 words of 32 bits on the device.
struct CSL_IpipeEdgeEnhanceConfig {
    std::int32_t words[19];
    const std::int32_t* curveTable; ///< 1,024 entries
};

extern "C" {

// Start and stop. Non-zero is failure.
SENSORHOST_API int DRV_init();
SENSORHOST_API int DRV_exit(); ///< after a failed ALG_sysInit only
SENSORHOST_API int ALG_sysInit();
SENSORHOST_API int brewfi_init();
SENSORHOST_API int brewfi_exit();

// Pipeline: temporal noise filter, DC subtraction, edge enhancement, display.
SENSORHOST_API int DRV_SetKTNFWorkMode(int mode); ///< 0 off, 1 on
SENSORHOST_API int DRV_SetKTNF_TYPE(int type);
SENSORHOST_API int DRV_SetKTNF_TNF_A0(int value);
SENSORHOST_API int DRV_SetKTNF_TNF_TM(int value);
SENSORHOST_API int DRV_isifSetDcSub(std::int16_t value);
SENSORHOST_API int DRV_ipipeSetEEEnable(int enable);
SENSORHOST_API int DRV_ipipeSetEdgeEnhance(const CSL_IpipeEdgeEnhanceConfig* config); ///< copies what it keeps
SENSORHOST_API int DRV_displaySetMode(int mode);

// Exposure: reads give the value, setters 0 on success.
SENSORHOST_API int BrAewb_UiGetBrtness();
SENSORHOST_API int BrAewb_UiSetBrtness(int value);
SENSORHOST_API int BrAewb_UiGetSatDgr();
SENSORHOST_API int BrAewb_UiSetSatDgr(int value);
SENSORHOST_API int BrAewb_UiGetContrast();
SENSORHOST_API int BrAewb_UiSetContrast(int value);
SENSORHOST_API int BrAewb_UiGetSharpness();
SENSORHOST_API int BrAewb_UiSetSharpness(int value);
SENSORHOST_API int BrAewb_UiGetHlcCtrl();
SENSORHOST_API int BrAewb_UiSetHlcCtrl(int value);
SENSORHOST_API int BrAewb_UiGetAeCtrlMode();
SENSORHOST_API int BrAewb_UiSetAeCtrlMode(int value);
SENSORHOST_API int BrAewb_UiGetNightColorMode();
SENSORHOST_API int BrAewb_UiSetNightColorMode(int constant, int value);
SENSORHOST_API int BrAewb_UiGetMaxGain4Auto();
SENSORHOST_API int BrAewb_UiSetMaxGain4Auto(int value);
SENSORHOST_API int BrAewb_UiGetFixGain4Manu();
SENSORHOST_API int BrAewb_UiSetFixGain4Manu(int value);
SENSORHOST_API int BrAewb_UiGetMaxShutr4Auto();
SENSORHOST_API int BrAewb_UiSetMaxShutr4Auto(int value);
SENSORHOST_API int BrAewb_UiGetFixShutr4Manu();
SENSORHOST_API int BrAewb_UiSetFixShutr4Manu(int value);
SENSORHOST_API int BrAewb_UiGetGainCtrlMode(); ///< 0 or 1
SENSORHOST_API int BrAewb_UiSetGainCtrlMode(int value);
SENSORHOST_API int BrAewb_UiGetShutrCtrlMode(); ///< 0 or 1
SENSORHOST_API int BrAewb_UiSetShutrCtrlMode(int value);
SENSORHOST_API int BrAewb_UiGetWbCtrlMode(); ///< packed word
SENSORHOST_API int BrAewb_UiSetWbCtrlMode(int value);
SENSORHOST_API int BrAewb_UiGetHdrMode(); ///< packed word
SENSORHOST_API int BrAewb_UiSetHdrMode(int value);
SENSORHOST_API int BrAewb_UiGetNrCtrl(); ///< packed word
SENSORHOST_API int BrAewb_UiSetNrCtrl(int value);
SENSORHOST_API int BrAewb_UiGetDayToNightTransition(); ///< in the unit of BrAewb_UiGetGain
SENSORHOST_API int BrAewb_UiSetDayToNightTransition(int value);
SENSORHOST_API int BrAewb_UiGetNightToDayTransition();
SENSORHOST_API int BrAewb_UiSetNightToDayTransition(int value);
SENSORHOST_API int BrAewb_UiSetDayNightStat(int value);
SENSORHOST_API int BrAewb_UiSetIncreaseValue(int value);
SENSORHOST_API int BrAewb_UiSetIrisCtrlMod(int value);
SENSORHOST_API int BrAewb_UiSetMirrorFlipMode(int value);
SENSORHOST_API int BrAewb_UiSetVideoSystem(int value);
SENSORHOST_API int BrAewb_UiGetGain();                                     ///< present gain, 4096 being 100
SENSORHOST_API int BrAewb_UiGetIso();                                      ///< present gain in ISO, scaled alike
SENSORHOST_API int braewb_ioctrlParam(int group, int command, int* value); ///< -1 on failure
}
