// The imaging libraries of the platform. A product links the real ones (libbrsaewb.so, libbrssensr.so, libipnc.so) in
// place of this file; a camera whose modules are all on a serial port keeps it. Setters succeed, most reads give 0, the
// gain is the lowest.
#include "host/ImagingLibraries.h"

extern "C" {

int DRV_init() { return 0; }
int DRV_exit() { return 0; }
int ALG_sysInit() { return 0; }
int brewfi_init() { return 0; }
int brewfi_exit() { return 0; }

int DRV_SetKTNFWorkMode(int) { return 0; }
int DRV_SetKTNF_TYPE(int) { return 0; }
int DRV_SetKTNF_TNF_A0(int) { return 0; }
int DRV_SetKTNF_TNF_TM(int) { return 0; }
int DRV_isifSetDcSub(std::int16_t) { return 0; }
int DRV_ipipeSetEEEnable(int) { return 0; }
int DRV_ipipeSetEdgeEnhance(const CSL_IpipeEdgeEnhanceConfig*) { return 0; }
int DRV_displaySetMode(int) { return 0; }

int BrAewb_UiGetBrtness() { return 0; }
int BrAewb_UiSetBrtness(int) { return 0; }
int BrAewb_UiGetSatDgr() { return 0; }
int BrAewb_UiSetSatDgr(int) { return 0; }
int BrAewb_UiGetContrast() { return 0; }
int BrAewb_UiSetContrast(int) { return 0; }
int BrAewb_UiGetSharpness() { return 0; }
int BrAewb_UiSetSharpness(int) { return 0; }
int BrAewb_UiGetHlcCtrl() { return 0; }
int BrAewb_UiSetHlcCtrl(int) { return 0; }
int BrAewb_UiGetAeCtrlMode() { return 0; }
int BrAewb_UiSetAeCtrlMode(int) { return 0; }
int BrAewb_UiGetNightColorMode() { return 0; }
int BrAewb_UiSetNightColorMode(int, int) { return 0; }
int BrAewb_UiGetMaxGain4Auto() { return 0; }
int BrAewb_UiSetMaxGain4Auto(int) { return 0; }
int BrAewb_UiGetFixGain4Manu() { return 0; }
int BrAewb_UiSetFixGain4Manu(int) { return 0; }
int BrAewb_UiGetMaxShutr4Auto() { return 0; }
int BrAewb_UiSetMaxShutr4Auto(int) { return 0; }
int BrAewb_UiGetFixShutr4Manu() { return 0; }
int BrAewb_UiSetFixShutr4Manu(int) { return 0; }
int BrAewb_UiGetGainCtrlMode() { return 0; }
int BrAewb_UiSetGainCtrlMode(int) { return 0; }
int BrAewb_UiGetShutrCtrlMode() { return 0; }
int BrAewb_UiSetShutrCtrlMode(int) { return 0; }
int BrAewb_UiGetWbCtrlMode() { return 0; }
int BrAewb_UiSetWbCtrlMode(int) { return 0; }
int BrAewb_UiGetHdrMode() { return 0; }
int BrAewb_UiSetHdrMode(int) { return 0; }
int BrAewb_UiGetNrCtrl() { return 0; }
int BrAewb_UiSetNrCtrl(int) { return 0; }
int BrAewb_UiGetDayToNightTransition() { return 8 * 4096; } // must lie above the other one
int BrAewb_UiSetDayToNightTransition(int) { return 0; }
int BrAewb_UiGetNightToDayTransition() { return 2 * 4096; }
int BrAewb_UiSetNightToDayTransition(int) { return 0; }
int BrAewb_UiSetDayNightStat(int) { return 0; }
int BrAewb_UiSetIncreaseValue(int) { return 0; }
int BrAewb_UiSetIrisCtrlMod(int) { return 0; }
int BrAewb_UiSetMirrorFlipMode(int) { return 0; }
int BrAewb_UiSetVideoSystem(int) { return 0; }
int BrAewb_UiGetGain() { return 4096; }
int BrAewb_UiGetIso() { return 4096; }
int braewb_ioctrlParam(int, int, int* value) {
    *value = 0;
    return 0;
}
}
