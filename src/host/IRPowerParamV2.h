#pragma once

#include <vector>

/// How strong the IR lights should be up to one zoom ratio. The board's own units.
class IRPowerItem {
public:
    void setZoomUp(int zoom) { m_nZoomUp = zoom; }
    void setFarPower(int power) { m_nFarPower = power; }
    void setMidPower(int power) { m_nMidPower = power; }
    void setNearPower(int power) { m_nNearPower = power; }

    int getZoomUp() const { return m_nZoomUp; }
    int getFarPower() const { return m_nFarPower; }
    int getMidPower() const { return m_nMidPower; }
    int getNearPower() const { return m_nNearPower; }

private:
    int m_nZoomUp = 0;
    int m_nFarPower = 0;
    int m_nMidPower = 0;
    int m_nNearPower = 0;
};

/// IR power by zoom ratio.
class IRPowerParamV2 {
public:
    void setIrPower(const std::vector<IRPowerItem>& items) { m_Items = items; }
    const std::vector<IRPowerItem>& getIrPower() const { return m_Items; }

private:
    std::vector<IRPowerItem> m_Items;
};
