#pragma once

#include "controller/ISensorController.h"

#include <atomic>

/// Base of the zoom modules that have a privacy-mask unit on their serial line. The unit answers every frame with its
/// exact echo.
class SENSORCONTROL_API ITrellisZoomSensorController : public ISensorController {
public:
    explicit ITrellisZoomSensorController(int moduleType);
    ~ITrellisZoomSensorController() override;

    int getMirrorValue(int& value) override;
    int getParameterFromSensor(int id, int& value) override;
    int setParameterToSensor(int id, int value) override;
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;

    /// Chooses the region that the operations below act on; 0: none. Before init has ended it is only remembered.
    int setRegion(int region);
    /// Always gives 0: the region is not read back.
    int getRegion(int& region);
    // Each fails without a chosen region, except clearAllMask.
    int setMask();
    int showMask();
    int hideMask();
    int clearMask();
    int clearAllMask();
    int increaseWidth();
    int decreaseWidth();
    int increaseHight();
    int decreaseHight();

    /// One exchange with the mask unit: sends the frame and compares the echo, at most three times. 1 or 0.
    int BRSendParam(const char* command, int length);

protected:
    std::atomic<int> m_nRegion{0};

private:
    int sendToRegion(int operation, const char* failure);
    int sendSize(int step, const char* failure);
    bool isRegionChosen();
    int sendMaskFrame(int operation, int operand, const char* failure);
};
